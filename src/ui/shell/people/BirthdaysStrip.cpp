#include "shell/people/BirthdaysStrip.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "objectstore/StoreChanges.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/state/NotificationNames.h"
#include "widgets/Appearance.h"
#include "widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QLabel>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

constexpr int daysAhead = 28;

/// Whether anybody came, went, or has another birthday or name.
static bool concernsBirthdays(const StoreChanges &changes)
{
    if (!changes.concerns(EntityContacts::entityName))
        return false;
    using Contact = EntityContacts;
    constexpr std::array told = {Contact::column<"birthday">(), Contact::column<"firstName">(),
                                 Contact::column<"lastName">()};
    const auto isOfContact = [](const ObjectPtr &object) {
        return object->entity().name() == EntityContacts::entityName;
    };
    return changes.isUnknown || std::ranges::any_of(changes.inserted, isOfContact) ||
           std::ranges::any_of(changes.deleted, isOfContact) ||
           std::ranges::any_of(changes.updated, [&](const StoreChanges::Update &one) {
               return isOfContact(one.object) &&
                      (one.columns.none() || std::ranges::any_of(told, [&](int column) {
                           return one.columns.test(static_cast<std::size_t>(column));
                       }));
           });
}

BirthdaysStrip::BirthdaysStrip(QWidget *parent)
    : QWidget(parent)
    , label(makeTextLabel({}, Theme::FontRole::Small, Theme::text))
{
    setObjectName(u"birthdaysStrip"_s);
    label->setObjectName(u"labelBirthdays"_s);
    label->setTextFormat(Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setFocusPolicy(Qt::TabFocus);
    label->setWordWrap(false);
    label->setMinimumWidth(1);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(label, 1);
    soon.setSingleShot(true);
    midnight.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &BirthdaysStrip::load);
    connect(&midnight, &QTimer::timeout, this, &BirthdaysStrip::load);
    // The colour of the links stands in the words.
    connect(&Appearance::shared(), &Appearance::changed, this, &BirthdaysStrip::showBirthdays);
    connect(label, &QLabel::linkActivated, this, [this](const QString &link) {
        const auto place = link.toULongLong();
        if (place >= birthdays.size())
            return;
        const ObjectList<EntityContacts> found(mainContext(),
                                               organiserModel().requireEntity(EntityContacts::entityName),
                                               {birthdays[place].contact});
        if (const ContactPtr contact = found.at(0))
            Q_EMIT pressed(contact);
    });
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) {
            if (concernsBirthdays(changes))
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
    birthdays = Birthdays::between(today, calendar.dateByAdding(CalendarUnit::Day, daysAhead, today));
    midnight.start(
        std::chrono::ceil<std::chrono::milliseconds>(calendar.startOfNextDay(today) - Clock::now()));
    showBirthdays();
}

void BirthdaysStrip::showBirthdays()
{
    const QString separator = u" · "_s;
    const QString heading = localized(u"Birthdays"_s) + u": "_s;
    const QString more = separator + localized(u"%1 more"_s);
    int room = width() - label->fontMetrics().horizontalAdvance(heading + more.arg(birthdays.size()));
    QStringList shown;
    QStringList spoken;
    for (const Birthdays::Birthday &one : birthdays)
        spoken << firstPart(Birthdays::inWords(one)) + u' ' + dayInWords(one.day);
    label->setAccessibleName(heading + spoken.join(u", "_s));
    for (const Birthdays::Birthday &one : birthdays) {
        const QString name = firstPart(Birthdays::inWords(one));
        const QString day = dayInWords(one.day);
        room -= label->fontMetrics().horizontalAdvance(name + u' ' + day + separator);
        if (room < 0)
            break;
        shown << u"<a href=\"%1\" style=\"color:%2\">%3</a> %4"_s.arg(
            QString::number(shown.size()), Theme::selectedText.name(), name.toHtmlEscaped(),
            day.toHtmlEscaped());
    }
    QString words = heading.toHtmlEscaped() + shown.join(separator);
    if (const auto hidden = birthdays.size() - static_cast<std::size_t>(shown.size()); hidden > 0)
        words += shown.isEmpty() ? QString::number(hidden) : more.arg(hidden);
    label->setText(birthdays.empty() ? QString() : words);
    label->setVisible(!birthdays.empty());
}

void BirthdaysStrip::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    showBirthdays();
}
