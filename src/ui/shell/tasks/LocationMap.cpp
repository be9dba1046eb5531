#include "shell/tasks/LocationMap.h"

#include "foundation/Localization.h"
#include "shell/maps/MapView.h"
#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/Theme.h"
#include "workspace/PlatformConfiguration.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

constexpr int searchIconSize = 16;
constexpr int nearZoom = 15;
constexpr int regionZoom = 10;

LocationMap::LocationMap(QWidget *parent)
    : QWidget(parent)
    , geocoder(PlatformConfiguration().text(u"geocoder"_s))
    , map(new MapView(PlatformConfiguration().text(u"tiles"_s)))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(Theme::unit);
    makeTitle();
    auto *line = new QHBoxLayout;
    line->setSpacing(Theme::unit);
    line->addWidget(fieldTitle, 1);
    line->addWidget(buttonSearch);
    labelStatus = new QLabel;
    labelStatus->setObjectName(u"labelStatus"_s);
    Appearance::setFont(*labelStatus, Theme::FontRole::Small);
    labelStatus->setWordWrap(true);
    labelStatus->hide();
    column->addLayout(line);
    column->addWidget(labelStatus);
    column->addWidget(map, 1);
    column->addWidget(makeCoordinates());
    if (!map->isConfigured()) {
        map->hide();
        column->addStretch(1);
    }
    map->setObjectName(u"mapView"_s);
    connect(map, &MapView::pinMoved, this, &LocationMap::pinMoved);
    connect(&geocoder, &Geocoder::found, this, &LocationMap::found);
    connect(&geocoder, &Geocoder::nothingFound, this, [this] { say(localized(u"No place was found."_s)); });
    connect(&geocoder, &Geocoder::failed, this,
            [this] { say(localized(u"Places cannot be searched at the moment."_s)); });
}

void LocationMap::makeTitle()
{
    fieldTitle = new QLineEdit;
    fieldTitle->setObjectName(u"fieldTitle"_s);
    fieldTitle->setAccessibleName(localized(u"Title"_s));
    fieldTitle->setPlaceholderText(
        localized(geocoder.isConfigured() ? u"Name or address"_s : u"Name of the place"_s));
    buttonSearch = new QToolButton;
    buttonSearch->setObjectName(u"buttonSearchLocate"_s);
    buttonSearch->setIcon(Icons::icon(u"search"_s, Theme::accent));
    buttonSearch->setIconSize({searchIconSize, searchIconSize});
    buttonSearch->setAutoRaise(true);
    buttonSearch->setFocusPolicy(Qt::StrongFocus);
    buttonSearch->setAccessibleName(localized(u"Search"_s));
    buttonSearch->setToolTip(localized(u"Search"_s));
    if (!geocoder.isConfigured())
        buttonSearch->hide();
    connect(buttonSearch, &QToolButton::clicked, this, &LocationMap::clickButtonSearchLocate);
}

QLineEdit *LocationMap::makeDegrees(const QString &name, const QString &word)
{
    auto *field = new QLineEdit;
    field->setObjectName(name);
    field->setAccessibleName(word);
    field->setPlaceholderText(word);
    connect(field, &QLineEdit::editingFinished, this, &LocationMap::coordinatesTyped);
    return field;
}

QWidget *LocationMap::makeCoordinates()
{
    auto *widget = new QWidget;
    auto *line = new QHBoxLayout(widget);
    line->setContentsMargins({});
    line->setSpacing(Theme::unit);
    fieldLatitude = makeDegrees(u"fieldLatitude"_s, localized(u"Latitude"_s));
    fieldLongitude = makeDegrees(u"fieldLongitude"_s, localized(u"Longitude"_s));
    line->addWidget(fieldLatitude);
    line->addWidget(fieldLongitude);
    return widget;
}

void LocationMap::begin(const LocationPtr &nearby)
{
    geocoder.cancel();
    for (QLineEdit *field : {fieldTitle, fieldLatitude, fieldLongitude})
        field->clear();
    searchedTitle.clear();
    say({});
    if (nearby)
        map->showPin({.latitude = *nearby->latitude(), .longitude = *nearby->longitude()}, regionZoom);
    else
        map->showPin({}, MapProjection::leastZoom);
}

void LocationMap::focusTitle()
{
    fieldTitle->setFocus();
}

bool LocationMap::isTyped() const
{
    return hasDegrees() || !fieldTitle->text().trimmed().isEmpty();
}

void LocationMap::say(const QString &words)
{
    labelStatus->setText(words);
    labelStatus->setVisible(!words.isEmpty());
}

// Searching

void LocationMap::clickButtonSearchLocate()
{
    if (fieldTitle->text().trimmed().isEmpty())
        return focusTitle();
    say(localized(u"Searching…"_s));
    searchedTitle = fieldTitle->text();
    isAddressAsked = false;
    geocoder.search(fieldTitle->text());
}

void LocationMap::found(const QString &title, const MapPlace &place)
{
    say({});
    fieldTitle->setText(title);
    fieldTitle->setCursorPosition(0);
    // A pin that the user has put somewhere stays there: only its address was asked for.
    if (isAddressAsked)
        return;
    showCoordinates(place);
    map->showPin(place, std::max(map->zoom(), nearZoom));
}

void LocationMap::pinMoved(const MapPlace &place)
{
    showCoordinates(place);
    isAddressAsked = true;
    geocoder.address(place);
}

// Coordinates

void LocationMap::showCoordinates(const MapPlace &place)
{
    fieldLatitude->setText(LocationChoice::degreesText(place.latitude));
    fieldLongitude->setText(LocationChoice::degreesText(place.longitude));
}

void LocationMap::coordinatesTyped()
{
    const auto latitude = LocationChoice::degrees(fieldLatitude->text(), LocationChoice::mostLatitude);
    const auto longitude = LocationChoice::degrees(fieldLongitude->text(), LocationChoice::mostLongitude);
    if (latitude && longitude)
        map->showPin({.latitude = *latitude, .longitude = *longitude});
}

std::optional<double> LocationMap::degreesOf(QLineEdit &field, double limit)
{
    const auto degrees = LocationChoice::degrees(field.text(), limit);
    if (!degrees) {
        say(localized(u"Coordinates are degrees, such as 52.5 and 13.4."_s));
        field.setFocus();
        field.selectAll();
    }
    return degrees;
}

bool LocationMap::hasDegrees() const
{
    return !fieldLatitude->text().trimmed().isEmpty() || !fieldLongitude->text().trimmed().isEmpty();
}

/// A title of which nobody knows yet where it is.
bool LocationMap::mustSearchFirst() const
{
    const bool isSearchable = geocoder.isConfigured() && !fieldTitle->text().trimmed().isEmpty();
    return isSearchable && !hasDegrees() && fieldTitle->text() != searchedTitle;
}

std::optional<LocationTemp> LocationMap::locationTemp()
{
    if (mustSearchFirst())
        clickButtonSearchLocate();
    if (!hasDegrees()) {
        if (geocoder.isAsking())
            return std::nullopt;
        return LocationTemp{fieldTitle->text(), {}, {}};
    }
    const auto latitude = degreesOf(*fieldLatitude, LocationChoice::mostLatitude);
    if (!latitude)
        return std::nullopt;
    const auto longitude = degreesOf(*fieldLongitude, LocationChoice::mostLongitude);
    if (!longitude)
        return std::nullopt;
    return LocationTemp{fieldTitle->text(), *latitude, *longitude};
}
