#include "shell/people/OffersField.h"

#include "foundation/Localization.h"
#include "foundation/NotificationCenter.h"
#include "records/people/ContactForm.h"
#include "store/state/NotificationNames.h"
#include "widgets/Appearance.h"
#include "widgets/PngPicture.h"
#include "widgets/TextLabel.h"

#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

OffersField::OffersField(ContactForm &shownForm, QWidget *parent)
    : QWidget(parent)
    , form(shownForm)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, Theme::unit, 0, Theme::unit);
    column->setSpacing(Theme::unit / 2);
    for (std::size_t place = 0; place < ContactOffers::mostOffers; ++place) {
        QLabel *const line = makeTextLabel({}, Theme::FontRole::Body, Theme::text);
        line->setObjectName(u"labelOffer"_s);
        line->setTextFormat(Qt::RichText);
        line->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        line->setFocusPolicy(Qt::StrongFocus);
        line->setMinimumWidth(1);
        line->hide();
        // The line goes with its press.
        connect(
            line, &QLabel::linkActivated, this, [this, place] { press(place); }, Qt::QueuedConnection);
        column->addWidget(line);
        lines.push_back(line);
    }
    connect(&Appearance::shared(), &Appearance::changed, this, &OffersField::showOffers);
}

static QString wordsOf(const ContactOffers::Offer &offer)
{
    const QString name = readablePart(offer.name);
    return offer.present ? localized(u"%1 is already here"_s).arg(name) : name;
}

void OffersField::showOffers()
{
    const auto &offers = form.offers()->offers();
    for (std::size_t place = 0; place < lines.size(); ++place) {
        QLabel &line = *lines[place];
        if (place >= offers.size()) {
            if (line.hasFocus())
                line.window()->setFocus();
            line.hide();
            continue;
        }
        const ContactOffers::Offer &offer = offers[place];
        const QString words = wordsOf(offer);
        const QString detail = offer.present ? QString() : readablePart(offer.detail);
        line.setText(u"<a href=\"take\" style=\"color:%1\">%2</a> <span style=\"color:%3\">%4</span>"_s.arg(
            Theme::selectedText.name(), words.toHtmlEscaped(), Theme::secondaryText.name(),
            detail.toHtmlEscaped()));
        line.setToolTip(offer.present ? QString()
                                      : localized(u"Puts what the address book has into the empty fields"_s));
        line.setAccessibleName(detail.isEmpty() ? words : words + u", "_s + detail);
        line.setAccessibleDescription(line.toolTip());
        line.show();
    }
}

void OffersField::press(std::size_t place)
{
    const auto &offers = form.offers()->offers();
    if (place >= offers.size())
        return;
    const ContactPtr present = offers[place].present;
    if (!present)
        return form.takeOffer(place, pngPictureOf);
    if (!present->context() || present->isDeleted())
        return;
    if (QWidget *main = window()->parentWidget()) {
        main->raise();
        main->activateWindow();
    }
    NotificationCenter::defaultCenter().post(notifications::clickTableSearch, ObjectPtr(present));
}
