#include "CalendarTest.h"

#include "calendarsync/CalendarChooser.h"
#include "calendarsync/SyncSettings.h"
#include "foundation/NotificationCenter.h"
#include "store/state/CloudUserDefaults.h"
#include "store/state/NotificationNames.h"

namespace {

class CalendarChooserTest : public CalendarTest
{
protected:
    static int rowOf(const CalendarChooser &chooser, const QString &title)
    {
        for (int row = 0; row < static_cast<int>(chooser.rows().size()); ++row)
            if (chooser.titleAt(row) == title)
                return row;
        ADD_FAILURE() << "no row " << qPrintable(title);
        return -1;
    }
    static QString stored(const QString &key) { return UserDefaults::standard().string(key); }
    static int eventRows() { return static_cast<int>(rows().size()); }
};

TEST_F(CalendarChooserTest, AClickChoosesACalendarOrGivesItUpAtOnce)
{
    choose({});
    CalendarChooser chooser;
    const int heading = 0;
    const int home = rowOf(chooser, u"Home"_qs);
    const int work = rowOf(chooser, u"Work"_qs);
    EXPECT_FALSE(chooser.toggle(heading));
    EXPECT_FALSE(chooser.setDefault(heading));
    EXPECT_FALSE(chooser.toggle(99));
    EXPECT_EQ(stored(settings::savedChooseCalendars), QString());

    EXPECT_TRUE(chooser.toggle(work));
    EXPECT_TRUE(chooser.toggle(home));
    EXPECT_TRUE(chooser.isSelected(home));
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"WorkΩHome"_qs);
    chooser.toggle(work);
    EXPECT_FALSE(chooser.isSelected(work));
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"Home"_qs);
    EXPECT_TRUE(CalendarChooser().isSelected(home)) << "the next window finds the choice";

    EXPECT_TRUE(chooser.isDefault(home)) << "one tick is enough";
    EXPECT_TRUE(chooser.setDefault(work));
    EXPECT_TRUE(chooser.isSelected(work)) << "new tasks must not go where nobody sees them";
    EXPECT_TRUE(chooser.isDefault(work));
    EXPECT_FALSE(chooser.isDefault(home));
    EXPECT_EQ(stored(settings::defaultCalendar), u"Work"_qs);
    chooser.toggle(work);
    EXPECT_TRUE(chooser.isDefault(home)) << "what is given up takes nothing new";
    chooser.toggle(home);
    EXPECT_FALSE(chooser.isDefault(home) || chooser.isDefault(work));
}

/// A tree of calendars of which "Work" may only be read.
class PartlyReadOnly : public FolderBackend
{
public:
    using FolderBackend::FolderBackend;
    Result<std::vector<EKCalendar>> calendars() override
    {
        auto found = FolderBackend::calendars();
        for (EKCalendar &calendar : found.value())
            calendar.allowsContentModifications = calendar.title != u"Work"_qs;
        return found;
    }
};

TEST_F(CalendarChooserTest, AReadOnlyCalendarCanBeChosenButIsNeverTheDefault)
{
    CalendarEvent::resetEventStore();
    EKEventStore::setSharedBackend(std::make_shared<PartlyReadOnly>(root.path()));
    choose({});
    CalendarChooser chooser;
    const int work = rowOf(chooser, u"Work"_qs);
    EXPECT_TRUE(chooser.toggle(work));
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"Work[<±>]Local/Work"_qs);
    EXPECT_TRUE(CalendarChooser().isSelected(work));
    EXPECT_FALSE(chooser.canBeDefault(work));
    EXPECT_FALSE(chooser.setDefault(work));
    EXPECT_FALSE(chooser.isDefault(work));
    EXPECT_EQ(CalendarEvent::getDefaultAccessCalendar(), std::nullopt);
}

TEST_F(CalendarChooserTest, WithoutAnyCalendarOneCanBeMade)
{
    CalendarEvent::resetEventStore();
    EXPECT_EQ(CalendarChooser().emptiness(), CalendarChooser::Emptiness::None);
    QDir(root.filePath(u"Local"_qs)).removeRecursively();
    connectStore();
    choose({});
    CalendarChooser chooser;
    EXPECT_EQ(chooser.emptiness(), CalendarChooser::Emptiness::NoCalendars);
    EXPECT_TRUE(chooser.makeCalendar());
    EXPECT_EQ(chooser.emptiness(), CalendarChooser::Emptiness::None);
    EXPECT_EQ(chooser.rows().size(), 2) << "its account and itself";
    EXPECT_TRUE(chooser.isSelected(1));
    EXPECT_TRUE(chooser.isDefault(1));
}

TEST_F(CalendarChooserTest, AClickLeavesTheOtherCalendarsAsTheyAreStoredByThen)
{
    choose({u"Work"_qs});
    CalendarEvent::handleChangedCalendars();
    CalendarChooser chooser;
    const int home = rowOf(chooser, u"Home"_qs);
    const int work = rowOf(chooser, u"Work"_qs);
    EXPECT_FALSE(chooser.reload());
    rename(u"Work"_qs, u"Job"_qs);
    connectStore();
    CalendarEvent::handleChangedCalendars();
    EXPECT_TRUE(chooser.toggle(home));
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"JobΩHome"_qs);
    EXPECT_TRUE(chooser.isSelected(work));
    EXPECT_TRUE(chooser.setDefault(work));
    EXPECT_EQ(stored(settings::defaultCalendar), u"Job"_qs);
    EXPECT_TRUE(chooser.toggle(work));
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"Home"_qs);

    QDir(folderOf(u"Work"_qs)).removeRecursively();
    connectStore();
    EXPECT_FALSE(chooser.toggle(work)) << "it is not there any more";
    EXPECT_FALSE(chooser.setDefault(work));
    EXPECT_EQ(stored(settings::savedChooseCalendars), u"Home"_qs);
    EXPECT_TRUE(chooser.reload());
    EXPECT_EQ(chooser.rows().size(), 2);
}

TEST_F(CalendarChooserTest, AtTheEndTheRowsAreThoseOfTheChosenCalendars)
{
    write(u"Home"_qs, u"one"_qs, u"SUMMARY:One\nDTSTART:20261122T090000Z\nDTEND:20261122T100000Z\n"_qs);
    write(u"Work"_qs, u"two"_qs, u"SUMMARY:Two\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\n"_qs);
    choose({});
    int told = 0;
    const Observation observation =
        NotificationCenter::defaultCenter().addObserver(notifications::iCloudChange, [&told] { ++told; });
    CalendarChooser chooser;
    chooser.toggle(rowOf(chooser, u"Home"_qs));
    EXPECT_EQ(eventRows(), 0) << "not while one is still choosing";
    CalendarChooser::finish();
    ASSERT_EQ(eventRows(), 1);
    EXPECT_EQ(rows().front()->title(), u"One"_qs);
    EXPECT_FALSE(mainContext().hasChanges());
    EXPECT_EQ(told, 1);
    EXPECT_EQ(stored(settings::needPopToRootDetailHome), u"YES"_qs);
}

TEST_F(CalendarChooserTest, ThePanelsChoicesAreNumbersThatAPassFollows)
{
    write(u"Home"_qs, u"far"_qs, u"SUMMARY:Far\nDTSTART:20270501T090000Z\nDTEND:20270501T100000Z\n"_qs);
    write(u"Home"_qs, u"often"_qs,
          u"SUMMARY:Often\nDTSTART:20261122T090000Z\nDTEND:20261122T100000Z\nRRULE:FREQ=DAILY;COUNT=9\n"_qs);
    const auto count = [] {
        SyncSettings::finish();
        return eventRows();
    };
    CloudUserDefaults::removeObjectForKey(settings::syncPeriodType);
    CloudUserDefaults::removeObjectForKey(settings::frequencyCalendarPeriod);
    EXPECT_EQ(SyncSettings::syncPeriod(), CalendarSyncPeriod::ThreeMonths);
    EXPECT_EQ(SyncSettings::syncFrequency(), CalendarFrequencyDay::One);
    const int least = count();
    SyncSettings::setSyncPeriod(CalendarSyncPeriod::SixMonths);
    EXPECT_EQ(CloudUserDefaults::integerForKey(settings::syncPeriodType), 1);
    EXPECT_EQ(count(), least + 1) << "the event in May is near enough now";
    SyncSettings::setSyncFrequency(CalendarFrequencyDay::Seven);
    EXPECT_EQ(CloudUserDefaults::integerForKey(settings::frequencyCalendarPeriod), 2);
    EXPECT_GT(count(), least + 3);
    SyncSettings::setSyncFrequency(CalendarFrequencyDay::One);
    EXPECT_GT(eventRows(), least + 1) << "nothing goes before the next pass";
    EXPECT_EQ(count(), least + 1);
    CloudUserDefaults::setInteger(17, settings::syncPeriodType);
    EXPECT_EQ(SyncSettings::syncPeriod(), CalendarSyncPeriod::ThreeMonths);
    CloudUserDefaults::removeObjectForKey(settings::syncPeriodType);
    CloudUserDefaults::removeObjectForKey(settings::frequencyCalendarPeriod);
}

TEST_F(CalendarChooserTest, TheOrderOfNamesIsKept)
{
    EXPECT_EQ(SyncSettings::displayOrder(), ContactsDisplayOrder::FirstLast);
    SyncSettings::setDisplayOrder(ContactsDisplayOrder::LastFirst);
    EXPECT_EQ(UserDefaults::standard().integer(settings::contactDisplayOrder), 1);
    EXPECT_EQ(stored(settings::displayOrderDescription), u"Last, First"_qs);
    EXPECT_EQ(SyncSettings::displayOrder(), ContactsDisplayOrder::LastFirst);
    UserDefaults::standard().removeObject(settings::contactDisplayOrder);
    UserDefaults::standard().removeObject(settings::displayOrderDescription);
}

} // namespace
