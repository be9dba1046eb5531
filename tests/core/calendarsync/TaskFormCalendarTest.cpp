// A task in a form, where there are calendars.

#include "CalendarTest.h"

#include "contacts/CNContactStore.h"
#include "records/TaskFormChoices.h"
#include "records/TaskFormState.h"
#include "support/Becomes.h"
#include "workspace/PlatformConfiguration.h"

namespace {

class TaskFormCalendarTest : public CalendarTest
{
protected:
    /// The row of an event that came with a pass.
    TaskPtr rowOf(const QString &title)
    {
        pass();
        for (const TaskPtr &row : rows()) {
            if (row->title() == title)
                return row;
        }
        return nullptr;
    }
    void writeInvitation(const QString &organizer)
    {
        write(u"Work"_qs, u"meeting"_qs,
              u"SUMMARY:Meeting\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\n"
              u"ORGANIZER%1\nATTENDEE;CN=Bob:mailto:bob@example.org\n"_qs.arg(organizer));
    }
};

} // namespace

TEST_F(TaskFormCalendarTest, AnInvitationNamesTheOrganiserWhetherKnownOrNot)
{
    writeInvitation(u";CN=Ada Maria Bright:mailto:ada@example.org"_qs);
    const TaskPtr row = rowOf(u"Meeting"_qs);
    ASSERT_NE(row, nullptr);
    TaskFormState stranger(row);
    stranger.findInvitation();
    EXPECT_TRUE(stranger.invitation().hasAttendees);
    EXPECT_EQ(stranger.label(TaskFormRow::Contacts), u"Invitation from"_qs);
    EXPECT_EQ(stranger.previewText(TaskFormRow::Contacts), u"Ada Maria Bright"_qs);
    EXPECT_TRUE(stranger.isRowShownInPreview(TaskFormRow::Contacts));

    const ContactPtr ada = mainContext().insert<EntityContacts>();
    ada->setFirstName(u"Ada Maria"_qs);
    ada->setLastName(u"Bright"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    TaskFormState known(row);
    known.findInvitation();
    EXPECT_EQ(known.invitation().entityContactOrganizer, ada);

    writeInvitation(u":mailto:ada@example.org"_qs);
    connectStore();
    known.findInvitation();
    EXPECT_EQ(known.previewText(TaskFormRow::Contacts), u"ada@example.org"_qs);
    const auto mail = mainContext().insert<EntityEmail>();
    mail->setMail(u"Ada@Example.org"_qs);
    mail->setContact(ada);
    EXPECT_FALSE(DBWorker::saveContext());
    known.findInvitation();
    EXPECT_EQ(known.invitation().entityContactOrganizer, ada) << "by the address";
}

TEST_F(TaskFormCalendarTest, AnOrganiserIsRecognizedByTheAddressBooksOfTheDesktop)
{
    class Book : public ContactBackend
    {
    public:
        Result<std::vector<CNContainer>> containers() override
        {
            return std::vector<CNContainer>{{u"a"_qs, u"A"_qs}};
        }
        Result<std::vector<QByteArray>> cards(const CNContainer &) override
        {
            return std::vector<QByteArray>{
                "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Kay;Bob;;;\r\nEMAIL:bob@example.org\r\nEND:VCARD\r\n",
                "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Bright;Ada;;;\r\nEMAIL:ADA@example.org\r\nEND:VCARD\r\n"};
        }
    };
    CNContactStore::setBackendSource([] { return std::make_shared<Book>(); });
    writeInvitation(u":mailto:ada@example.org"_qs);
    const TaskPtr row = rowOf(u"Meeting"_qs);
    ASSERT_NE(row, nullptr);
    const auto shown = [](TaskFormState &form) { return form.previewText(TaskFormRow::Contacts); };
    TaskFormState unasked(row);
    unasked.findInvitation();
    EXPECT_FALSE(becomes([&] { return shown(unasked) != u"ada@example.org"_qs; }))
        << "without leave nobody is asked";
    PlatformConfiguration::setAuthorization(u"contacts"_qs, 3);
    TaskFormState form(row);
    form.findInvitation();
    EXPECT_TRUE(becomes([&] { return shown(form) == u"Ada Bright"_qs; }));
    const ContactPtr ada = mainContext().insert<EntityContacts>();
    ada->setFirstName(u"Ada"_qs);
    ada->setLastName(u"Bright"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    form.findInvitation();
    EXPECT_EQ(form.invitation().entityContactOrganizer, ada) << "without another question";
    {
        TaskFormState gone(row);
        gone.findInvitation();
    }
    PlatformConfiguration::setAuthorization(u"contacts"_qs, 0);
    CNContactStore::setBackendSource({});
}

TEST_F(TaskFormCalendarTest, ATaskWithoutGuestsIsNoInvitation)
{
    write(
        u"Work"_qs, u"alone"_qs,
        u"SUMMARY:Alone\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\nORGANIZER:mailto:a@example.org\n"_qs);
    const TaskPtr row = rowOf(u"Alone"_qs);
    ASSERT_NE(row, nullptr);
    TaskFormState form(row);
    form.findInvitation();
    EXPECT_FALSE(form.invitation().hasAttendees);
    EXPECT_EQ(form.label(TaskFormRow::Contacts), u"Delegate to user"_qs);
    EXPECT_FALSE(form.isRowShownInPreview(TaskFormRow::Contacts));
}

TEST_F(TaskFormCalendarTest, TheChosenCalendarGivesATaskItsTitleAndColourOnSaving)
{
    UserDefaults::standard().setObject(settings::defaultCalendar, u"Work"_qs);
    std::vector<QString> offered;
    for (const CalendarChooserRow &row : TaskFormChoices::calendars()) {
        if (const auto *calendar = std::get_if<EKCalendar>(&row))
            offered.push_back(calendar->title);
    }
    EXPECT_EQ(offered, (std::vector{u"Home"_qs, u"Work"_qs}));
    TaskFormState form({.createWithStartDate = localDate(2026, 11, 23),
                        .createWithDueDate = localDate(2026, 11, 23, 23, 59)});
    EXPECT_EQ(form.currentTask().typeCalendarID, u"Work"_qs);
    EXPECT_TRUE(form.isRowShown(TaskFormRow::Repeat));
    form.setTitle(u"report"_qs);
    form.setCalendar(u"Home"_qs);
    form.setRepeatPreset(RepeatPicker::EveryMonth);
    EXPECT_TRUE(form.save());
    EXPECT_EQ(form.currentTask().calendarTitle, u"Home"_qs);
    EXPECT_EQ(form.currentTask().colorCalendarA, 1.0);
    const auto written = files(u"Home"_qs);
    ASSERT_EQ(written.size(), 1);
    EXPECT_TRUE(written.first().contains(u"FREQ=MONTHLY"_qs)) << qPrintable(written.first());
    EXPECT_EQ(TaskFormState(form.currentTask().task()).previewText(TaskFormRow::Repeat), u"Every Month"_qs);
}

TEST_F(TaskFormCalendarTest, ACalendarThatIsNotOfferedAnyMoreGivesWayToThatOfNewTasks)
{
    UserDefaults::standard().setObject(settings::defaultCalendar, u"Work"_qs);
    const auto saved = [](const QString &title, const QString &calendar, const auto &meanwhile) {
        TaskFormState form(NewTaskRequest{.createWithStartDate = localDate(2026, 11, 23, 9),
                                          .createWithDueDate = localDate(2026, 11, 23, 10)});
        form.setTitle(title);
        form.setCalendar(calendar);
        meanwhile();
        EXPECT_TRUE(form.save());
        EXPECT_EQ(DBWorker::hideNotAccessTasksFromArray({form.currentTask().task()}).size(), 1);
        return form.currentTask();
    };
    const MVTask given = saved(u"given up"_qs, u"Home"_qs, [] { choose({u"Work"_qs}); });
    EXPECT_EQ(given.typeCalendarID + u' ' + given.calendarTitle, u"Work Work"_qs);
    EXPECT_EQ(files(u"Work"_qs).size(), 1);
    choose({u"Home"_qs, u"Work"_qs});
    const MVTask renamed = saved(u"renamed"_qs, u"Home"_qs, [this] {
        CalendarEvent::handleChangedCalendars();
        rename(u"Home"_qs, u"House"_qs);
        connectStore();
        CalendarEvent::handleChangedCalendars();
    });
    EXPECT_EQ(renamed.typeCalendarID + u' ' + renamed.calendarTitle, u"House House"_qs);
    const MVTask last = saved(u"last"_qs, u"Work"_qs, [] { choose({}); });
    EXPECT_EQ(last.typeCalendarID + last.calendarTitle, QString());
    choose({u"House"_qs});
    const MVTask other = saved(u"other"_qs, u"Work"_qs, [] {});
    EXPECT_EQ(other.typeCalendarID, u"House"_qs) << "that of new tasks is not chosen, so another one is";
}

TEST_F(TaskFormCalendarTest, AnEventStaysInItsCalendarThoughThatIsNotOffered)
{
    UserDefaults::standard().setObject(settings::defaultCalendar, u"Work"_qs);
    write(u"Home"_qs, u"one"_qs, u"SUMMARY:One\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\n"_qs);
    const TaskPtr row = rowOf(u"One"_qs);
    ASSERT_NE(row, nullptr);
    TaskFormState form(row);
    form.setPriority(Priority::Medium);
    choose({u"Work"_qs});
    EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Saved);
    EXPECT_EQ(row->typeCalendarID(), u"Home"_qs);
    EXPECT_TRUE(files(u"Work"_qs).isEmpty()) << "it would be there twice";
}

TEST_F(TaskFormCalendarTest, WithoutAccessThereIsNoRepetitionAndTheHeaderSaysSo)
{
    PlatformConfiguration::setAuthorization(u"events"_qs, 2);
    const TaskFormState form({.createWithStartDate = localDate(2026, 11, 23)});
    EXPECT_FALSE(form.isRowShown(TaskFormRow::Repeat));
    EXPECT_EQ(TaskFormChoices::calendarsHeader(form.hasCalendarAccess()),
              u"The app does not have access to your calendars"_qs);
}

TEST_F(TaskFormCalendarTest, TheLastDayOfTheMonthStaysTheLastDay)
{
    write(
        u"Home"_qs, u"rent"_qs,
        u"SUMMARY:Rent\nDTSTART:20261130T090000Z\nDTEND:20261130T100000Z\nRRULE:FREQ=MONTHLY;BYMONTHDAY=-1\n"_qs);
    const TaskPtr row = rowOf(u"Rent"_qs);
    ASSERT_NE(row, nullptr);
    TaskFormState form(row);
    CustomRepeat window = form.customRepeat();
    window.setInterval(2);
    form.setRepeat(RRule::stringFromRule(window.rule()));
    const ScriptedAlerts alerts({Alert::secondButton});
    ASSERT_EQ(form.finishEdit(), TaskFormState::EditEnd::Saved);
    const QString written = files(u"Home"_qs).first();
    EXPECT_TRUE(written.contains(u"INTERVAL=2"_qs)) << qPrintable(written);
    EXPECT_TRUE(written.contains(u"BYMONTHDAY=-1"_qs)) << qPrintable(written);
}

/// The window says what the store holds and what the calendar shows, whatever is picked.
TEST_F(TaskFormCalendarTest, ARuleOfOnesOwnIsTheSameInTheWindowTheStoreAndTheCalendar)
{
    // By the places in the window's list of frequencies.
    enum Frequency { Daily, Weekly, Monthly, Yearly };
    struct Pick
    {
        Frequency frequency;
        int interval;
        /// Turned over one after the other: a single one moves to the start, and can go only as one of
        /// several.
        std::vector<int> items;
    };
    const std::vector<Pick> picks = {
        {Daily, 3, {}},
        {Weekly, 1, {2}},
        {Weekly, 1, {1}},
        {Weekly, 2, {1, 3, 5}},
        {Monthly, 1, {}},
        {Monthly, 1, {23}},
        {Monthly, 2, {22}},
        {Monthly, 1, {22, 28}},
        {Yearly, 1, {}},
        {Yearly, 1, {3}},
        {Yearly, 1, {11}},
        {Yearly, 1, {3, 11}},
        // The start is no day of these.
        {Weekly, 1, {2, 2, 4, 1}},
        {Monthly, 1, {5, 5, 28, 22}},
        {Yearly, 1, {3, 3, 5, 11}},
    };
    const auto isExtra = [](const CustomRepeat &window) { return window.warning().contains(u"own date"_qs); };
    for (const Pick &pick : picks) {
        const std::string name = testing::PrintToString(std::pair(int(pick.frequency), pick.items));
        // A Sunday.
        const Date start = localDate(2026, 11, 22, 10);
        NewTaskRequest request;
        request.type = TaskType::Appointment;
        request.createWithStartDate = start;
        request.createWithDueDate = start + Seconds(3600);
        TaskFormState form(request);
        form.setTitle(u"Series"_qs);
        CustomRepeat window = form.customRepeat();
        window.frequencyChange(pick.frequency);
        window.setInterval(pick.interval);
        for (const int item : pick.items)
            window.setSelected(item, !window.isSelected(item));
        form.setRepeat(RRule::stringFromRule(window.rule()));
        ASSERT_TRUE(form.save()) << name;
        pass();

        // As another program shows them.
        const EKEventStore elsewhere(std::make_shared<FolderBackend>(root.path()));
        const auto events = elsewhere.eventsMatchingPredicate(elsewhere.predicateForEventsWithStartDate(
            start - Seconds(86400), start + Seconds(4 * 366 * 86400.0), {}));
        std::vector<Date> inCalendar;
        for (const EKEvent &event : events.value())
            inCalendar.push_back(*event.startDate);
        std::ranges::sort(inCalendar);
        inCalendar.resize(std::min<std::size_t>(inCalendar.size(), 3));
        EXPECT_EQ(inCalendar, window.nextDates(3)) << name;
        EXPECT_EQ(*rows().front()->startDate(), window.nextDates(1).front()) << name;
        const TaskFormState later(rows().front());
        EXPECT_EQ(later.customRepeat().nextDates(3), window.nextDates(3)) << name;
        EXPECT_EQ(later.customRepeat().warning().contains(u"follows"_qs), false) << name;
        EXPECT_EQ(isExtra(window), pick.items.size() == 4) << name;

        while (!rows().empty())
            CalendarEvent::removeEventCalendarFromTask(rows().front(), Span::FutureTasks, true);
        EXPECT_FALSE(DBWorker::saveContext());
        EXPECT_TRUE(files(u"Home"_qs).isEmpty());
    }
}
