// A task in a form: what the change of one field does to others and to the rows.

#include "CoreTest.h"
#include "records/Functional.h"
#include "records/TaskFormState.h"
#include "records/TaskManager.h"

using namespace Qt::Literals::StringLiterals;
using Picker = DatePickerState::Type;

namespace {

class TaskFormTest : public CoreTest
{
protected:
    static void pick(TaskFormState &form, Picker type, Date date)
    {
        DatePickerState picker = form.openPicker(type);
        EXPECT_TRUE(picker.showPopover);
        form.acceptDate(picker, date);
    }
    static void setType(TaskFormState &form, TaskType type)
    {
        form.setType(Functional::typeStringFromType(type));
    }
    /// A form with everything that hangs on its dates.
    static void fill(TaskFormState &form, Date start, Date due)
    {
        pick(form, Picker::StartDate, start);
        pick(form, Picker::DueDate, due);
        pick(form, Picker::Alert, start - Seconds(3600));
        pick(form, Picker::SecondAlert, start - Seconds(7200));
        form.setRepeatPreset(RepeatPicker::EveryWeek);
    }
    template <typename Entity>
    std::shared_ptr<Entity> make()
    {
        return context().insert<Entity>();
    }
    ProjectPtr project(OptionalDate start, OptionalDate due)
    {
        const ProjectPtr made = make<EntityProject>();
        made->setTitle(u"House"_s);
        made->setStartDate(start);
        made->setDueDate(due);
        return made;
    }

    const Date noon = localDate(2026, 11, 23, 12);
};

} // namespace

TEST_F(TaskFormTest, ANewTaskBeginsWithWhatItIsGiven)
{
    const ContactPtr contact = make<EntityContacts>();
    const CompanyPtr company = make<EntityCompany>();
    const TaskFormState plain({.typeTask = ListType::Someday, .createWithCompany = company});
    EXPECT_TRUE(plain.isSomeday());
    EXPECT_EQ(plain.currentTask().status, TaskStatus::Open);
    EXPECT_EQ(plain.currentTask().priority, Priority::None);
    EXPECT_EQ(plain.currentTask().company, company);
    EXPECT_EQ(plain.currentTask().delegateToUser, nullptr);
    for (const TaskFormRow row : {TaskFormRow::StartDate, TaskFormRow::Alert, TaskFormRow::SecondAlert})
        EXPECT_FALSE(plain.isRowShown(row));
    const TaskFormState given({.createWithStartDate = noon,
                               .createWithContact = contact,
                               .createWithCompany = company,
                               .type = TaskType::Appointment});
    EXPECT_EQ(given.currentTask().delegateToUser, contact);
    EXPECT_EQ(given.currentTask().company, company);
    EXPECT_TRUE(given.currentTask().isAppointment());
    EXPECT_EQ(given.currentTask().startDate, noon);
    EXPECT_EQ(given.types(), (std::vector{TaskType::ToDo, TaskType::Appointment, TaskType::EmailCall}));
    EXPECT_EQ(TaskFormState({.type = TaskType::Appointment, .showTodo = false}).types(),
              (std::vector{TaskType::Appointment, TaskType::EmailCall}));
}

TEST_F(TaskFormTest, ANewTaskIsOnTheListItIsMadeFrom)
{
    const auto save = [](const NewTaskRequest &request, const QString &title) {
        TaskFormState form(request);
        form.setTitle(title);
        EXPECT_TRUE(form.save()) << qPrintable(title);
    };
    const Date now = localDate(2026, 11, 21, 23, 30);
    save(NewTaskRequest::ofList(ListType::Inbox, now), u"Inbox"_s);
    save(NewTaskRequest::ofList(ListType::Today, now), u"Today"_s);
    save(NewTaskRequest::ofList(ListType::Scheduled, now), u"Scheduled"_s);
    save(NewTaskRequest::ofList(ListType::Someday, now), u"Someday"_s);
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList(u"Inbox"_s));
    EXPECT_EQ(titles(DBWorker::allTodayTasks()), QStringList(u"Today"_s));
    EXPECT_EQ(titles(DBWorker::allScheduledTasks()), QStringList(u"Scheduled"_s));
    EXPECT_EQ(titles(DBWorker::allSomedayTasks()), QStringList(u"Someday"_s));
}

TEST_F(TaskFormTest, ClearingTheStartOfARepeatingToDoClearsWhatHangsOnIt)
{
    TaskFormState form{NewTaskRequest()};
    fill(form, noon, localDate(2026, 11, 24));
    ASSERT_TRUE(form.currentTask().secondAlert);
    EXPECT_TRUE(form.isRowShown(TaskFormRow::EndRepeat));
    form.clearDate(Picker::StartDate);
    EXPECT_FALSE(form.currentTask().alert);
    EXPECT_FALSE(form.currentTask().secondAlert);
    EXPECT_EQ(form.currentTask().repeat, QString());
    EXPECT_TRUE(form.currentTask().dueDate);
    for (const TaskFormRow row :
         {TaskFormRow::Alert, TaskFormRow::SecondAlert, TaskFormRow::EndRepeat, TaskFormRow::Repeat})
        EXPECT_FALSE(form.isRowShown(row));
}

TEST_F(TaskFormTest, ADueDateMattersToTheseOnlyForAnEmailOrCall)
{
    TaskFormState appointment({.type = TaskType::Appointment});
    fill(appointment, noon, noon + Seconds(3600));
    appointment.clearDate(Picker::DueDate);
    EXPECT_TRUE(appointment.currentTask().alert);

    TaskFormState call({.type = TaskType::EmailCall});
    pick(call, Picker::DueDate, noon);
    pick(call, Picker::Alert, noon - Seconds(60));
    EXPECT_TRUE(call.isRowShown(TaskFormRow::Alert));
    EXPECT_FALSE(call.isRowShown(TaskFormRow::StartDate));
    EXPECT_EQ(call.label(TaskFormRow::EndDate), u"Start Date"_s);
    call.clearDate(Picker::DueDate);
    EXPECT_FALSE(call.currentTask().alert);
    EXPECT_FALSE(call.isRowShown(TaskFormRow::Alert));
}

TEST_F(TaskFormTest, AnotherTypeClearsBothDatesBothAlertsAndTheRepetition)
{
    for (const TaskType type : {TaskType::Appointment, TaskType::EmailCall}) {
        TaskFormState form{NewTaskRequest()};
        fill(form, noon, localDate(2026, 11, 24));
        setType(form, type);
        for (const Picker picker : {Picker::StartDate, Picker::DueDate, Picker::Alert, Picker::SecondAlert})
            EXPECT_FALSE(form.dateOf(picker));
        EXPECT_EQ(form.currentTask().repeat, QString());
    }
    TaskFormState someday({.typeTask = ListType::Someday});
    setType(someday, TaskType::Appointment);
    EXPECT_FALSE(someday.isSomeday());
}

TEST_F(TaskFormTest, AStartTakesBackSomedayAndAnAppointmentAsksForItsEnd)
{
    TaskFormState form({.typeTask = ListType::Someday});
    pick(form, Picker::StartDate, noon);
    EXPECT_FALSE(form.isSomeday());

    TaskFormState appointment({.type = TaskType::Appointment});
    int wanted = 0;
    appointment.pickerWanted = [&](int row) {
        EXPECT_EQ(row, static_cast<int>(TaskFormRow::EndDate));
        ++wanted;
    };
    pick(appointment, Picker::StartDate, noon);
    EXPECT_EQ(wanted, 1);
    pick(appointment, Picker::DueDate, noon + Seconds(600));
    pick(appointment, Picker::StartDate, noon + Seconds(60));
    EXPECT_EQ(wanted, 1);
}

TEST_F(TaskFormTest, ClearingTheFirstAlertLetsTheSecondMoveUp)
{
    TaskFormState form{NewTaskRequest()};
    fill(form, noon, localDate(2026, 11, 24));
    const OptionalDate second = form.currentTask().secondAlert;
    form.clearDate(Picker::Alert);
    EXPECT_EQ(form.currentTask().alert, second);
    EXPECT_FALSE(form.currentTask().secondAlert);
    EXPECT_TRUE(form.isRowShown(TaskFormRow::SecondAlert));
    form.clearDate(Picker::Alert);
    EXPECT_FALSE(form.isRowShown(TaskFormRow::SecondAlert));
}

TEST_F(TaskFormTest, AProjectIsRefusedIfTheTaskLeavesItsDates)
{
    TaskFormState form{NewTaskRequest()};
    pick(form, Picker::StartDate, noon);
    const ProjectPtr fitting = project(localDate(2026, 11, 1), localDate(2026, 11, 30));
    const ProjectPtr later = project(localDate(2026, 12, 1), {});
    EXPECT_TRUE(form.setProject(fitting));
    ScriptedAlerts alerts({Alert::firstButton});
    EXPECT_FALSE(form.setProject(later));
    EXPECT_EQ(alerts.asked().size(), 1U);
    EXPECT_EQ(form.currentTask().project, fitting);
    EXPECT_TRUE(form.setProject(nullptr));
    EXPECT_EQ(form.currentTask().project, nullptr);
}

TEST_F(TaskFormTest, NoDateOutsideTheProjectIsOffered)
{
    const ProjectPtr house = project(localDate(2026, 11, 10), localDate(2026, 11, 30));
    TaskFormState form({.createWithProject = house});
    const DatePickerState open = form.openPicker(Picker::StartDate);
    EXPECT_EQ(open.minDate, localDate(2026, 11, 10));
    EXPECT_EQ(open.maxDate, localDate(2026, 11, 30, 23, 59, 59));
    // The task's own dates are narrower.
    pick(form, Picker::StartDate, localDate(2026, 11, 15));
    pick(form, Picker::DueDate, localDate(2026, 11, 20));
    EXPECT_LT(*form.openPicker(Picker::StartDate).maxDate, localDate(2026, 11, 21));
    EXPECT_EQ(form.openPicker(Picker::Alert).minDate, OptionalDate());
}

TEST_F(TaskFormTest, TheCompanyFollowsTheContact)
{
    TaskFormState form{NewTaskRequest()};
    const ContactPtr contact = make<EntityContacts>();
    const CompanyPtr company = make<EntityCompany>();
    contact->setCompany(company);
    form.setDelegate(contact);
    EXPECT_EQ(form.currentTask().company, company);
    form.setDelegate(nullptr);
    EXPECT_EQ(form.currentTask().company, nullptr);
}

TEST_F(TaskFormTest, ARuleOfOnesOwnIsReadBackWithItsSentence)
{
    TaskFormState form{NewTaskRequest()};
    pick(form, Picker::StartDate, noon);
    CustomRepeat repeat = form.customRepeat();
    repeat.setInterval(3);
    form.setRepeat(RRule::stringFromRule(repeat.rule()));
    EXPECT_EQ(form.repeatPicker().presetOf(form.currentTask().startDate), RepeatPicker::Custom);
    EXPECT_EQ(form.previewText(TaskFormRow::Repeat), u"Repeats every 3 weeks"_s);
    form.setRepeatPreset(RepeatPicker::EveryMonth);
    EXPECT_EQ(form.previewText(TaskFormRow::Repeat), u"Every Month"_s);
    form.setRepeatPreset(RepeatPicker::Never);
    EXPECT_EQ(form.currentTask().repeat, u""_s);
}

TEST_F(TaskFormTest, TheEndOfAnEditSavesOnlyWhatChangedAndKeepsARefusedOne)
{
    const TaskPtr row = add(u"report"_s);
    TaskFormState form(row);
    const OptionalDate before = row->lastModificationDate();
    EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Unchanged);
    EXPECT_EQ(row->lastModificationDate(), before);
    form.setTitle(u"report, second part"_s);
    EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Saved);
    EXPECT_EQ(row->title(), u"report, second part"_s);
    setType(form, TaskType::Appointment);
    ScriptedAlerts alerts({Alert::firstButton});
    EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Refused);
    EXPECT_EQ(row->type(), TaskType::ToDo);
    form.rollback();
    EXPECT_TRUE(form.currentTask().isToDo());
    form.changeStatusNow(true);
    EXPECT_EQ(row->status(), TaskStatus::Done);
    EXPECT_FALSE(form.canEdit());
}

TEST_F(TaskFormTest, AChangeFromElsewhereIsNotUndoneByTheEndOfAnEdit)
{
    MVTask made;
    made.title = u"Dentist"_s;
    made.type = TaskType::ToDo;
    made.status = TaskStatus::Open;
    made.priority = Priority::None;
    made.startDate = noon;
    made.dueDate = noon;
    made.details = u"Bring the card"_s;
    ASSERT_TRUE(TaskManager::saveTaskTemp(made, true));
    const TaskPtr row = made.task();
    const Date later = noon + Seconds(86400.0);
    const auto moveElsewhere = [&](const QString &details, Date start) {
        row->setDetails(details);
        row->setStartDate(start);
        row->setDueDate(start);
        ASSERT_FALSE(DBWorker::saveContext());
    };

    TaskFormState idle(row);
    TaskFormState busy(row);
    busy.setTitle(u"Dr. Aalto"_s);
    moveElsewhere(u"Bring the insurance card"_s, later);
    EXPECT_EQ(idle.finishEdit(), TaskFormState::EditEnd::Unchanged);
    EXPECT_EQ(row->startDate(), later);
    EXPECT_EQ(busy.finishEdit(), TaskFormState::EditEnd::Saved);
    EXPECT_EQ(row->title(), u"Dr. Aalto"_s);
    EXPECT_EQ(row->details(), u"Bring the insurance card"_s);
    EXPECT_EQ(row->startDate(), later);

    // Dates belong together: where the user has moved one of them, none comes from elsewhere.
    TaskFormState moving(row);
    const Date latest = later + Seconds(5 * 86400.0);
    pick(moving, Picker::DueDate, latest);
    moveElsewhere(u"And the X-ray"_s, noon);
    moving.followRow();
    EXPECT_EQ(moving.currentTask().startDate, later);
    EXPECT_EQ(moving.currentTask().details, u"And the X-ray"_s);
    EXPECT_EQ(moving.finishEdit(), TaskFormState::EditEnd::Saved);
    EXPECT_EQ(row->startDate(), later);
    EXPECT_GE(row->dueDate(), latest);
    moving.rollback();
    moveElsewhere(u"Nothing"_s, noon);
    EXPECT_EQ(moving.finishEdit(), TaskFormState::EditEnd::Unchanged);
    EXPECT_EQ(row->details(), u"Nothing"_s);
}

TEST_F(TaskFormTest, ATitleOfBlanksDoesNotMeanThatTheTaskHasGone)
{
    TaskFormState form(add(u"Call"_s));
    form.setTitle(u"   "_s);
    EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Saved);
    EXPECT_FALSE(form.isGone());
}

TEST_F(TaskFormTest, NoDateOfAProjectThatBeginsInTheDayIsLost)
{
    const Date morning = localDate(2026, 11, 24, 9, 30);
    TaskFormState form({.createWithProject = project(morning, std::nullopt)});
    const DatePickerState picker = form.openPicker(Picker::StartDate);
    ASSERT_TRUE(picker.minDate);
    EXPECT_LE(*picker.minDate, localDate(2026, 11, 24));
}

TEST_F(TaskFormTest, ATickThatTheRulesRefuseIsTakenBack)
{
    const TaskPtr row = add(u"visit"_s, TaskType::Appointment, localDate(2026, 11, 23, 9));
    TaskFormState form(row);
    const ScriptedAlerts alerts({Alert::firstButton});
    form.changeStatusNow(true);
    EXPECT_EQ(alerts.asked().size(), 1U);
    EXPECT_EQ(row->status(), TaskStatus::Open);
    EXPECT_EQ(form.currentTask().status, TaskStatus::Open);
}

TEST_F(TaskFormTest, ThePreviewLeavesOutWhatHasNothingToSay)
{
    TaskFormState form{NewTaskRequest()};
    form.setCategory(nullptr);
    for (const TaskFormRow row : {TaskFormRow::Category, TaskFormRow::Priority, TaskFormRow::StartDate,
                                  TaskFormRow::Location, TaskFormRow::Details, TaskFormRow::Contacts})
        EXPECT_FALSE(form.isRowShownInPreview(row)) << static_cast<int>(row);
    form.setPriority(Priority::High);
    form.setDetails(u"two pages"_s);
    pick(form, Picker::StartDate, noon);
    for (const TaskFormRow row : {TaskFormRow::Title, TaskFormRow::Type, TaskFormRow::Status,
                                  TaskFormRow::Priority, TaskFormRow::StartDate, TaskFormRow::Details})
        EXPECT_TRUE(form.isRowShownInPreview(row)) << static_cast<int>(row);
    EXPECT_EQ(form.previewText(TaskFormRow::StartDate), u"Nov 23, 2026"_s);
}
