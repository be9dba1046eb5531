#pragma once

#include "records/LocationChoice.h"
#include "shell/maps/Geocoder.h"

#include <QWidget>

#include <optional>

class MapView;
class QLabel;
class QLineEdit;
class QToolButton;

/// The page for a new place: a title, which can be searched for where there is a service, a map with a pin
/// where there are tiles, and the coordinates.
class LocationMap : public QWidget
{
    Q_OBJECT
public:
    explicit LocationMap(QWidget *parent = nullptr);

    /// Empties the page. The map begins near a place of known position; null for the whole world.
    void begin(const LocationPtr &nearby);
    void focusTitle();
    /// Whether something was put in.
    bool isTyped() const;
    /// What was put in. Absent, with the wrong field in focus, if the coordinates cannot be read; absent,
    /// too, while a title is searched for, which is done first where there is a service.
    std::optional<LocationTemp> locationTemp();

    void clickButtonSearchLocate();

private:
    void makeTitle();
    QWidget *makeCoordinates();
    QLineEdit *makeDegrees(const QString &name, const QString &word);
    void found(const QString &title, const MapPlace &place);
    void pinMoved(const MapPlace &place);
    void showCoordinates(const MapPlace &place);
    void coordinatesTyped();
    void say(const QString &words);
    bool hasDegrees() const;
    bool mustSearchFirst() const;
    std::optional<double> degreesOf(QLineEdit &field, double limit);

    Geocoder geocoder;
    /// Whether the answer is awaited to where the pin is, or else to what was searched.
    bool isAddressAsked = false;
    /// The title that was searched for last.
    QString searchedTitle;
    MapView *map;
    QLineEdit *fieldTitle = nullptr;
    QToolButton *buttonSearch = nullptr;
    QLineEdit *fieldLatitude = nullptr;
    QLineEdit *fieldLongitude = nullptr;
    QLabel *labelStatus = nullptr;
};
