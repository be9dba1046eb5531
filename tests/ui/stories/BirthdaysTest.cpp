// Who has birthday, in the day, the week and the month. The frozen day is Saturday 2026-11-21.

#include "calendarviews/BirthdaysLine.h"
#include "calendarviews/DaysCalendarView.h"
#include "calendarviews/EventGridWeek.h"
#include "calendarviews/EventsForDaysGridWeek.h"
#include "calendarviews/EventsGridMonth.h"
#include "records/DetailStack.h"
#include "shell/calendars/CalendarViewController.h"
#include "ui/support/Reader.h"
#include "ui/support/ShellTest.h"

#include <QMenu>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;
using Type = CalendarViewController::CalendarType;

class BirthdaysTest : public ShellTest
{
protected:
    ContactPtr born(const QString &name, int year, int month, int day)
    {
        const auto contact = context().insert<EntityContacts>();
        contact->setFirstName(name);
        contact->setBirthday(localDate(year, month, day));
        EXPECT_FALSE(DBWorker::saveContext());
        return contact;
    }
    CalendarViewController &calendar()
    {
        return static_cast<CalendarViewController &>(*controller().currentScreen());
    }
    DetailStack &stack() { return *calendar().detailStack(); }
    CalendarPage &page() { return *calendar().calendarPage(); }
    void show(Type type)
    {
        window().resize(1280, 900);
        run(ActionId::ShowCalendar);
        calendar().showCalendar(type);
        settle();
    }
    BirthdaysLine &line() { return *page().findChild<BirthdaysLine *>(); }
    EventsGridMonth &month() { return static_cast<EventsGridMonth &>(*page().mainGrid()); }
    QStringList told() { return Reader::namesIn(line()); }
    QString shownPerson()
    {
        settle();
        const DetailViewController *pane = stack().top();
        const auto contact = pane ? std::dynamic_pointer_cast<EntityContacts>(pane->record()) : nullptr;
        return contact ? contact->firstName() : QString();
    }
};

TEST_F(BirthdaysTest, StandAboveTheDaysAndFollowThePeople)
{
    const Reader reader;
    const int before = [&] {
        show(Type::Week);
        return static_cast<DaysCalendarView &>(page()).hours()->countIn(6);
    }();
    EXPECT_TRUE(line().isHidden()) << "nobody has birthday";
    EXPECT_EQ(line().neededHeight(), 0);
    const ContactPtr ann = born(u"Ann"_s, 1990, 11, 21);
    born(u"Bob"_s, 1980, 11, 18);
    born(u"Eve"_s, 1980, 11, 24);
    settle();
    EXPECT_FALSE(line().isHidden());
    EXPECT_EQ(told(), (QStringList{u"Wednesday, November 18, 2026: Birthday of Bob, 46"_s,
                                   u"Saturday, November 21, 2026: Birthday of Ann, 36"_s}));
    EXPECT_EQ(static_cast<DaysCalendarView &>(page()).hours()->countIn(6), before) << "it is no item";
    EXPECT_TRUE(static_cast<DaysCalendarView &>(page()).wholeDays()->placed().empty());
    ann->setBirthday(localDate(1990, 11, 20));
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_TRUE(told().contains(u"Friday, November 20, 2026: Birthday of Ann, 36"_s));
    calendar().daysControllerSelectButton(1);
    settle();
    EXPECT_EQ(told(), QStringList{u"Tuesday, November 24, 2026: Birthday of Eve, 46"_s});
    // Who does not want them has the line no more.
    run(ActionId::CalendarBirthdays);
    settle();
    EXPECT_TRUE(line().isHidden());
    run(ActionId::CalendarBirthdays);
    settle();
    EXPECT_FALSE(line().isHidden());
}

TEST_F(BirthdaysTest, OpenThePersonByMouseKeysAndScreenReader)
{
    born(u"Ann"_s, 1990, 11, 21);
    born(u"Bob"_s, 1980, 11, 18);
    born(u"Cid"_s, 1985, 11, 18);
    show(Type::Week);
    const double column = (line().width() - 50.0) / 7;
    const auto pressAt = [&](int day) {
        QTest::mouseClick(&line(), Qt::LeftButton, {},
                          QPoint(static_cast<int>(50 + column * (day + 0.5)), line().height() / 2));
    };
    pressAt(1);
    EXPECT_EQ(shownPerson(), QString()) << "nobody on Monday";
    pressAt(6);
    EXPECT_EQ(shownPerson(), u"Ann"_s);
    // Of two, the user says who.
    line().setFocus();
    QTest::keyClick(&line(), Qt::Key_Home);
    QTest::keyClick(&line(), Qt::Key_Return);
    auto *menu = page().findChild<QMenu *>(u"menuBirthdays"_s);
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions()[1]->text(), u"Cid, 41"_s);
    menu->actions()[1]->trigger();
    menu->close();
    EXPECT_EQ(shownPerson(), u"Cid"_s);
    const Reader reader;
    Reader::press(Reader::find(line(), QAccessible::Link, u"Saturday"_s));
    EXPECT_EQ(shownPerson(), u"Ann"_s);
}

TEST_F(BirthdaysTest, StandBesideTheNumberOfTheirDayInAMonth)
{
    for (int number = 0; number < 12; ++number)
        add(u"Task %1"_s.arg(number), [](MVTask &task) {
            task.startDate = localDate(2026, 11, 18);
            task.dueDate = localDate(2026, 11, 18, 23, 59, 59);
        });
    show(Type::Month);
    // November 2026 begins on a Sunday, as its first row does.
    constexpr int slot = 17;
    const int hidden = month().layoutOfItems().hiddenIn({slot / 7, slot % 7});
    ASSERT_GT(hidden, 0);
    const std::size_t bars = month().placed().size();
    born(u"Bob"_s, 1980, 11, 18);
    born(u"Leap"_s, 1996, 2, 29);
    settle();
    EXPECT_EQ(month().layoutOfItems().hiddenIn({slot / 7, slot % 7}), hidden);
    EXPECT_EQ(month().placed().size(), bars);
    const Reader reader;
    EXPECT_NE(
        Reader::find(month(), QAccessible::Cell, u"Wednesday, November 18, 12 items, Birthday of Bob, 46"_s),
        nullptr)
        << qPrintable(Reader::namesIn(month()).join(u'\n'));
    QTest::mouseClick(&month(), Qt::LeftButton, {},
                      month().visual(month().birthdaysFrame(slot)).center().toPoint());
    EXPECT_EQ(shownPerson(), u"Bob"_s);
    stack().removeAllDetail();
    month().goToDay(localDate(2026, 11, 17));
    QTest::keyClick(&month(), Qt::Key_B);
    EXPECT_EQ(shownPerson(), QString()) << "nobody on the 17th";
    month().goToDay(localDate(2026, 11, 18));
    QTest::keyClick(&month(), Qt::Key_B);
    EXPECT_EQ(shownPerson(), u"Bob"_s);
    // Who was born on 29 February has the last day of the month in other years.
    calendar().calendarGoToDate(localDate(2027, 2, 1));
    settle();
    EXPECT_TRUE(
        Reader::namesIn(month()).join(u'\n').contains(u"February 28, 0 items, Birthday of Leap, 31"_s))
        << qPrintable(Reader::namesIn(month()).join(u'\n'));
}

TEST_F(BirthdaysTest, StandOnPaper)
{
    for (const Type type : {Type::Day, Type::Week, Type::Month}) {
        const auto picture = [&] {
            show(type);
            const std::unique_ptr<CalendarPage> copy = page().copyForPaper();
            copy->fitToPaper(1.4);
            QImage image(copy->size(), QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            copy->paintForPaper(painter);
            return image;
        };
        const QImage without = picture();
        const ContactPtr ann = born(u"Ann"_s, 1990, 11, 21);
        EXPECT_NE(picture(), without);
        context().deleteObject(ann);
        ASSERT_FALSE(DBWorker::saveContext());
        EXPECT_EQ(picture(), without);
    }
}
