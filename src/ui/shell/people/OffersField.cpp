#include "shell/people/OffersField.h"

#include "foundation/Localization.h"
#include "foundation/NotificationCenter.h"
#include "records/people/ContactForm.h"
#include "store/state/NotificationNames.h"
#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/PngPicture.h"
#include "widgets/TextLabel.h"

#include <QAccessibleActionInterface>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

/// A line that the mouse presses on its words, and the keys anywhere in it.
class OfferLine : public QLabel
{
public:
    explicit OfferLine(std::function<void()> onPress)
        : pressed(std::move(onPress))
    {
        setObjectName(u"labelOffer"_s);
        Appearance::setFont(*this, Theme::FontRole::Body);
        Appearance::colourText(*this, Theme::secondaryText);
        setTextFormat(Qt::RichText);
        setWordWrap(true);
        setTextInteractionFlags(Qt::LinksAccessibleByMouse);
        setFocusPolicy(Qt::StrongFocus);
        setMinimumWidth(1);
        // The ring of the focus stands around the words.
        setMargin(Theme::unit / 4);
        hide();
        const auto actions = [this] {
            return std::vector<AccessibleAction>{
                {QAccessibleActionInterface::pressAction(), pressed, u"Return"_s}};
        };
        Accessibility::describe(*this, {.role = QAccessible::Button, .actions = actions});
        QObject::connect(this, &QLabel::linkActivated, this, [this] { pressed(); });
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        const int key = event->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space)
            pressed();
        else
            QLabel::keyPressEvent(event);
    }
    void paintEvent(QPaintEvent *event) override
    {
        QLabel::paintEvent(event);
        QPainter painter(this);
        if (hasFocus())
            MorvaneStyle::drawFocusRing(painter, rect(), Theme::controlRadius, Theme::accent);
    }

private:
    std::function<void()> pressed;
};

OffersField::OffersField(ContactForm &shownForm, QWidget *parent)
    : QWidget(parent)
    , form(shownForm)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, Theme::unit, 0, Theme::unit);
    column->setSpacing(Theme::unit / 2);
    for (std::size_t place = 0; place < ContactOffers::mostOffers; ++place) {
        // The line goes with its press.
        auto *line = new OfferLine([this, place] {
            QMetaObject::invokeMethod(
                this, [this, place] { press(place); }, Qt::QueuedConnection);
        });
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
                focusPreviousChild();
            line.hide();
            continue;
        }
        const ContactOffers::Offer &offer = offers[place];
        const QString words = wordsOf(offer);
        const QString detail = offer.present ? QString() : readablePart(offer.detail);
        line.setText(u"<a href=\"take\" style=\"color:%1\">%2</a> %3"_s.arg(
            Theme::selectedText.name(), words.toHtmlEscaped(), detail.toHtmlEscaped()));
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
