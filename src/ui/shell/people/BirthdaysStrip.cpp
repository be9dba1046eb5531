#include "shell/people/BirthdaysStrip.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "objectstore/StoreChanges.h"
#include "records/people/Birthdays.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/state/NotificationNames.h"
#include "widgets/Direction.h"
#include "widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QLabel>

using namespace Qt::Literals::StringLiterals;

constexpr int daysAhead = 28;
/// The others are in the calendars.
constexpr std::size_t mostShown = 6;

BirthdaysStrip::BirthdaysStrip(QWidget *parent)
    : QWidget(parent)
    , label(makeTextLabel({}, Theme::FontRole::Small, Theme::text))
{
    setObjectName(u"birthdaysStrip"_s);
    label->setObjectName(u"labelBirthdays"_s);
    label->setTextFormat(Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setFocusPolicy(Qt::TabFocus);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(
        Direction::margins(*this, Theme::contentMargin, 0, Theme::contentMargin, Theme::unit));
    row->addWidget(label, 1);
    hide();
    soon.setSingleShot(true);
    midnight.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &BirthdaysStrip::load);
    connect(&midnight, &QTimer::timeout, this, &BirthdaysStrip::load);
    connect(label, &QLabel::linkActivated, this, [this](const QString &link) {
        const auto place = link.toULongLong();
        if (place >= contacts.size())
            return;
        const ObjectList<EntityContacts> found(
            mainContext(), organiserModel().requireEntity(EntityContacts::entityName), {contacts[place]});
        if (const ContactPtr contact = found.at(0))
            Q_EMIT pressed(contact);
    });
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) {
            if (changes.concerns(EntityContacts::entityName))
                soon.start(0);
        }));
    // The screen stands before it is asked who has birthday.
    soon.start(0);
}

static QString dayInWords(Date day)
{
    const Calendar calendar = Calendar::current();
    if (calendar.isDateInToday(day))
        return localized(u"today"_s);
    if (calendar.isDateInTomorrow(day))
        return localized(u"tomorrow"_s);
    return DateFormatter::string(
        day, DateFormatter::patternFromTemplate(u"EEEdMMM"_s, DateFormatter::Language::OfWords),
        DateFormatter::Language::OfWords);
}

void BirthdaysStrip::load()
{
    const Calendar calendar = Calendar::current();
    const Date today = calendar.startOfDay(Clock::now());
    const auto birthdays =
        Birthdays::between(today, calendar.dateByAdding(CalendarUnit::Day, daysAhead, today));
    midnight.start(
        std::chrono::ceil<std::chrono::milliseconds>(calendar.startOfNextDay(today) - Clock::now()));
    contacts.clear();
    QStringList words;
    for (const Birthdays::Birthday &one : birthdays) {
        if (contacts.size() == mostShown)
            break;
        words << u"<a href=\"%1\" style=\"color:%2\">%3</a> %4"_s.arg(
            QString::number(contacts.size()), Theme::accent.name(),
            firstPart(Birthdays::inWords(one)).toHtmlEscaped(), dayInWords(one.day).toHtmlEscaped());
        contacts.push_back(one.contact);
    }
    if (birthdays.size() > mostShown)
        words << localized(u"%1 more"_s).arg(birthdays.size() - mostShown);
    label->setText(localized(u"Birthdays"_s).toHtmlEscaped() + u": "_s + words.join(u" · "_s));
    setVisible(!birthdays.empty());
}
