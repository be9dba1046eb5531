// Which calendars are followed, and how far: the two windows, worked with mouse and keys.

#include "calendarsync/CalendarEvent.h"
#include "calendarsync/SyncSettings.h"
#include "eventkit/FolderBackend.h"
#include "records/DetailStack.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "store/state/CloudUserDefaults.h"
#include "store/state/NotificationNames.h"
#include "store/state/SettingsKeys.h"
#include "ui/support/ShellTest.h"
#include "widgets/RowItemView.h"
#include "workspace/PlatformConfiguration.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace {

class CalendarsTest : public ShellTest
{
protected:
    CalendarsTest()
    {
        for (const QString &title : {u"Home"_s, u"Work"_s})
            QDir().mkpath(root.filePath(u"Local/"_s + title));
        writeEvent(u"Work"_s, u"Meeting"_s, u"20261122T090000Z"_s);
        writeEvent(u"Work"_s, u"Far away"_s, u"20270401T090000Z"_s);
        PlatformConfiguration::setAuthorization(u"events"_s, 3);
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(std::make_shared<FolderBackend>(root.path()));
        UserDefaults::standard().removeObject(settings::savedChooseCalendars);
        UserDefaults::standard().removeObject(settings::defaultCalendar);
    }
    ~CalendarsTest() override
    {
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(nullptr);
        PlatformConfiguration::setAuthorization(u"events"_s, 0);
        CloudUserDefaults::removeObjectForKey(settings::syncPeriodType);
    }

    /// \param lines are added to it.
    void writeEvent(const QString &calendar, const QString &title, const QString &start,
                    const QString &lines = {}) const
    {
        QFile file(root.filePath(u"Local/%1/%2.ics"_s.arg(calendar, title)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(
            u"BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//EN\r\nBEGIN:VEVENT\r\nUID:%1\r\n"
            "DTSTAMP:20260101T000000Z\r\nSUMMARY:%1\r\nDTSTART:%2\r\n%3END:VEVENT\r\nEND:VCALENDAR\r\n"_s
                .arg(title, start, lines)
                .toUtf8());
    }
    QWidget &open(ActionId command, const char *name)
    {
        run(command);
        auto *window = this->window().findChild<QWidget *>(QString::fromLatin1(name));
        EXPECT_NE(window, nullptr);
        return *window;
    }
    static void click(QListView &table, int row, Qt::MouseButton button = Qt::LeftButton)
    {
        const QPoint place = table.visualRect(table.model()->index(row, 0)).center();
        QTest::mouseClick(table.viewport(), button, {}, place);
    }
    static QString stored(const QString &key) { return UserDefaults::standard().string(key); }

    QTemporaryDir root;
};

TEST_F(CalendarsTest, WhatSomebodyHasInACalendarIsCountedWhileTheCalendarIsShown)
{
    const auto chooseOrGiveUp = [this](int row) {
        QWidget &chooser = open(ActionId::Calendars, "CalendarsAppleWindow");
        click(find<QListView>(chooser, "tableCalendars"), row);
        chooser.close();
        settle();
    };
    chooseOrGiveUp(2);
    const TaskPtr meeting = context().fetchFirst<EntityTask>(
        EntityTask::fetchRequest().where(Predicate::format("title = %@", u"Meeting"_s)));
    ASSERT_TRUE(meeting);
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_s);
    meeting->setDelegateToUser(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    controller().goToList(SidebarItem::People);
    settle();
    static_cast<TabsViewController &>(*controller().currentScreen()).selectItem(ann);
    settle();
    const auto &strip = find<QWidget>(window(), "waitingStrip");
    ASSERT_TRUE(strip.isVisible());
    chooseOrGiveUp(2);
    EXPECT_FALSE(strip.isVisible());
    chooseOrGiveUp(2);
    EXPECT_TRUE(strip.isVisible());
}

TEST_F(CalendarsTest, ChosenCalendarsBringTheirEventsWhenTheWindowCloses)
{
    QWidget &chooser = open(ActionId::Calendars, "CalendarsAppleWindow");
    auto &table = find<QListView>(chooser, "tableCalendars");
    click(table, 0);
    EXPECT_EQ(stored(settings::savedChooseCalendars), QString()) << "a heading cannot be picked";
    click(table, 2);
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"Work"_s);
    QTest::keyClick(&table, Qt::Key_Up);
    QTest::keyClick(&table, Qt::Key_Space);
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"WorkΩHome"_s);
    click(table, 1);
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"Work"_s);

    QTimer::singleShot(0, &chooser, [] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        EXPECT_EQ(menu->actions().front()->text(), u"Set Default"_s);
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    Q_EMIT table.customContextMenuRequested(table.visualRect(table.model()->index(2, 0)).center());
    EXPECT_EQ(stored(settings::defaultCalendar), u"Work"_s);

    EXPECT_EQ(ShellTest::stored(u"Meeting"_s), nullptr) << "not while one is still choosing";
    QTest::mouseClick(&find<QPushButton>(chooser, "buttonSave"), Qt::LeftButton);
    EXPECT_FALSE(chooser.isVisible());
    EXPECT_NE(ShellTest::stored(u"Meeting"_s), nullptr);
}

TEST_F(CalendarsTest, TheOpenWindowShowsWhatChangesElsewhere)
{
    UserDefaults::standard().setObject(settings::savedChooseCalendars, u"Work"_s);
    QWidget &chooser = open(ActionId::Calendars, "CalendarsAppleWindow");
    auto &table = find<QListView>(chooser, "tableCalendars");
    table.setCurrentIndex(table.model()->index(2, 0));
    QDir().mkpath(root.filePath(u"Local/Aunts"_s));
    EKEventStore::setSharedBackend(std::make_shared<FolderBackend>(root.path()));
    NotificationCenter::defaultCenter().post(notifications::eventStoreChanged);
    ASSERT_EQ(table.model()->rowCount(), 4);
    EXPECT_EQ(table.model()->index(1, 0).data().toString(), u"Aunts"_s);
    QTest::keyClick(&table, Qt::Key_Space);
    EXPECT_EQ(stored(settings::savedChooseCalendars), QString()) << "the same calendar is the present one";
    QTest::mouseClick(&find<QPushButton>(chooser, "buttonSave"), Qt::LeftButton);
}

TEST_F(CalendarsTest, TheLastCalendarIsGivenUpAndWithItAllWorkOnThem)
{
    UserDefaults::standard().setObject(settings::savedChooseCalendars, u"Work"_s);
    QWidget &chooser = open(ActionId::Calendars, "CalendarsAppleWindow");
    click(find<QListView>(chooser, "tableCalendars"), 2);
    EXPECT_EQ(stored(settings::savedChooseCalendars), QString());
    QTest::mouseClick(&find<QPushButton>(chooser, "buttonSave"), Qt::LeftButton);
    EXPECT_EQ(ShellTest::stored(u"Meeting"_s), nullptr);
    const TaskPtr task = add(u"own"_s, [](MVTask &copy) {
        copy.type = TaskType::Appointment;
        copy.startDate = localDate(2026, 11, 23, 9);
        copy.dueDate = localDate(2026, 11, 23, 10);
    });
    EXPECT_EQ(task->calendarID(), QString());
    for (const QString &title : {u"Home"_s, u"Work"_s})
        EXPECT_FALSE(QDir(root.filePath(u"Local/"_s + title)).entryList().join(u' ').contains(u"own"_s));
}

TEST_F(CalendarsTest, GuestsThatCameSinceAreSeenAtTheNextChangeOfMode)
{
    UserDefaults::standard().setObject(settings::savedChooseCalendars, u"Work"_s);
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    EXPECT_FALSE(DBWorker::saveContext());
    showList(SidebarItem::NotDone);
    clickRow(static_cast<int>(shownTitles().indexOf(u"Meeting"_s)));
    key(Qt::Key_Return);
    auto *pane = static_cast<TaskDetailViewController *>(controller().detailStack()->top());
    ASSERT_NE(pane, nullptr);
    const auto &row = find<RowItemView>(*pane, "rowContacts");
    QTest::qWait(10);
    EXPECT_TRUE(row.isRowHidden());
    writeEvent(u"Work"_s, u"Meeting"_s, u"20261122T090000Z"_s,
               u"ORGANIZER;CN=Ada:mailto:ada@example.org\r\nATTENDEE;CN=Bob:mailto:bob@example.org\r\n"_s);
    EKEventStore::setSharedBackend(std::make_shared<FolderBackend>(root.path()));
    CalendarEvent::resetEventStore();
    QTest::mouseClick(&find<QPushButton>(*pane, "buttonEdit"), Qt::LeftButton);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return find<QLabel>(*pane, "labelContactsPreview").text() == u"Ada"_s; }));
    EXPECT_FALSE(row.isRowHidden());
}

TEST_F(CalendarsTest, TheSettingsReachFurtherAheadOnceThePanelIsClosed)
{
    UserDefaults::standard().setObject(settings::savedChooseCalendars, u"Work"_s);
    QWidget &panel = open(ActionId::Preferences, "PreferencesWindow");
    auto &half = find<QRadioButton>(panel, "radioButtonSixMonthPeriod");
    EXPECT_FALSE(half.isChecked());
    EXPECT_TRUE(find<QRadioButton>(panel, "radioButtonThreeMonthPeriod").isChecked());
    QTest::mouseClick(&half, Qt::LeftButton, {}, {8, half.height() / 2});
    EXPECT_EQ(SyncSettings::syncPeriod(), CalendarSyncPeriod::SixMonths);
    EXPECT_EQ(ShellTest::stored(u"Far away"_s), nullptr);
    // Another device changes its mind meanwhile.
    CloudUserDefaults::setInteger(2, settings::frequencyCalendarPeriod);
    NotificationCenter::defaultCenter().post(notifications::preferences);
    EXPECT_TRUE(find<QRadioButton>(panel, "radioButtonFrequencyMonth").isChecked());
    CloudUserDefaults::removeObjectForKey(settings::frequencyCalendarPeriod);
    QTest::keyClick(&panel, Qt::Key_Escape);
    EXPECT_NE(ShellTest::stored(u"Far away"_s), nullptr);
}

TEST_F(CalendarsTest, WithoutAccessTheWindowSaysSo)
{
    PlatformConfiguration::setAuthorization(u"events"_s, 2);
    QWidget &chooser = open(ActionId::Calendars, "CalendarsAppleWindow");
    EXPECT_TRUE(find<QLabel>(chooser, "labelNoAccess").isVisible());
    EXPECT_FALSE(find<QListView>(chooser, "tableCalendars").isVisible());
    QTest::keyClick(&chooser, Qt::Key_Escape);
    EXPECT_FALSE(chooser.isVisible());
}

TEST_F(CalendarsTest, AnAnswerIsChangedInThePreferences)
{
    PlatformConfiguration::setAuthorization(u"events"_s, 2);
    QWidget &refused = open(ActionId::Calendars, "CalendarsAppleWindow");
    QTest::mouseClick(&find<QPushButton>(refused, "buttonEmpty"), Qt::LeftButton);
    EXPECT_FALSE(refused.isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    auto *panel = window().findChild<QWidget *>(u"PreferencesWindow"_s);
    ASSERT_NE(panel, nullptr);
    auto &calendars = find<QCheckBox>(*panel, "switchCalendars");
    EXPECT_FALSE(calendars.isChecked());
    calendars.click();
    EXPECT_EQ(PlatformConfiguration().authorization(u"events"_s), 3);
    QWidget *chooser = window().findChild<QWidget *>(u"CalendarsAppleWindow"_s);
    ASSERT_NE(chooser, nullptr) << "none is chosen yet";
    auto &table = find<QListView>(*chooser, "tableCalendars");
    EXPECT_TRUE(table.isVisible());
    click(table, 2);
    chooser->close();
    EXPECT_NE(ShellTest::stored(u"Meeting"_s), nullptr);

    calendars.click();
    EXPECT_EQ(PlatformConfiguration().authorization(u"events"_s), 2);
    panel->close();
    EXPECT_NE(ShellTest::stored(u"Meeting"_s), nullptr) << "the tasks stay";
    PlatformConfiguration::setAuthorization(u"events"_s, 3);
}

} // namespace
