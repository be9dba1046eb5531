#include "CoreTest.h"

#include "calendarsync/CalendarEvent.h"

#include <QUrl>
#include <QUrlQuery>

namespace {

class WorkingCopy : public CoreTest
{};

TEST_F(WorkingCopy, FillsOnlyWhatIsStillEmpty)
{
    const TaskPtr row = add(u"stored"_qs);
    row->setDetails(u"details"_qs);
    row->setPriority(Priority::Medium);
    MVTask copy;
    copy.title = u"mine"_qs;
    copy.setTask(row);
    EXPECT_EQ(copy.title, u"mine"_qs);
    EXPECT_EQ(copy.details, u"details"_qs);
    EXPECT_EQ(copy.priority, Priority::Medium);
    row->setDetails(u"other"_qs);
    copy.setTask(row);
    EXPECT_EQ(copy.details, u"details"_qs);
    copy.rollback();
    EXPECT_EQ(copy.title, u"stored"_qs);
    EXPECT_EQ(copy.details, u"other"_qs);
}

TEST_F(WorkingCopy, MakesARowOnceAndWritesEveryField)
{
    const auto tag = context().insert<EntityTags>();
    MVTask copy;
    copy.title = u"call"_qs;
    copy.type = TaskType::EmailCall;
    copy.status = TaskStatus::Done;
    copy.dueDate = localDate(2026, 11, 25, 9);
    copy.dueSomeDay = false;
    copy.tags = {tag};
    copy.category = EntityCategory::title(u"Work"_qs);
    copy.save();
    const TaskPtr row = copy.task();
    EXPECT_TRUE(copy.isNewTask());
    EXPECT_EQ(row->creationDate(), Clock::now());
    EXPECT_EQ(row->lastModificationDate(), Clock::now());
    EXPECT_EQ(row->expirationDate(), Clock::now());
    EXPECT_EQ(row->wasCreatedOffCalendar(), true);
    EXPECT_EQ(row->tags(), std::vector<std::shared_ptr<EntityTags>>({tag}));
    EXPECT_EQ(tag->task(), std::vector<TaskPtr>({row}));
    EXPECT_FALSE(row->position());
    copy.save();
    EXPECT_FALSE(copy.isNewTask());
    EXPECT_EQ(copy.task(), row);

    // A reopened task keeps in its row when it was done.
    copy.changeStatusType(TaskStatus::Open, false);
    EXPECT_FALSE(copy.expirationDate);
    copy.save();
    EXPECT_EQ(row->expirationDate(), Clock::now());
}

TEST_F(WorkingCopy, CopiesOfManyHoldWhatEachOfThemHolds)
{
    const auto one = context().insert<EntityTags>();
    const auto other = context().insert<EntityTags>();
    std::vector<TaskPtr> rows;
    for (const QString &title : {u"none"_qs, u"one"_qs, u"both"_qs, u"unsaved"_qs})
        rows.push_back(add(title));
    rows[1]->setTags({other});
    rows[2]->setTags({one, other});
    ASSERT_FALSE(context().save());
    rows[1]->setTags({one});
    rows[3]->setTags({other});
    const auto copies = MVTask::copiesOf({rows[3], nullptr, rows[2], rows[1], rows[0], rows[2]});
    ASSERT_EQ(copies.size(), 5) << "what is gone has no copy";
    for (const auto &copy : copies) {
        const MVTask alone(copy->task());
        EXPECT_EQ(std::set(copy->tags.begin(), copy->tags.end()),
                  std::set(alone.tags.begin(), alone.tags.end()))
            << copy->title.toStdString();
        EXPECT_EQ(copy->title, alone.title);
        EXPECT_FALSE(copy->isChangedTask());
    }
}

TEST_F(WorkingCopy, TellsWhetherAnEditorChangedIt)
{
    EXPECT_TRUE(MVTask().isChangedTask());
    const TaskPtr row = add(u"task"_qs);
    MVTask copy(row);
    EXPECT_FALSE(copy.isChangedTask());
    copy.tags = {context().insert<EntityTags>()};
    copy.creationDate = localDate(2000, 1, 1);
    EXPECT_FALSE(copy.isChangedTask());
    copy.details = u""_qs;
    EXPECT_FALSE(copy.isChangedTask()) << "An empty text and none are the same";
    for (const auto &change : std::vector<std::function<void(MVTask &)>>{
             [](MVTask &task) { task.title = u"x"_qs; }, [](MVTask &task) { task.alert = Clock::now(); },
             [](MVTask &task) { task.endRepeat = Clock::now(); },
             [](MVTask &task) { task.colorCalendarA = 0.5; }, [](MVTask &task) { task.dueSomeDay = true; },
             [](MVTask &task) { task.position = 9; },
             [](MVTask &task) { task.category = EntityCategory::title(u"Work"_qs); }}) {
        MVTask changed(row);
        change(changed);
        EXPECT_TRUE(changed.isChangedTask());
    }
}

TEST_F(WorkingCopy, ReadsTheWordsOfThePopUps)
{
    MVTask copy;
    copy.changePriority(u"No Priority"_qs);
    EXPECT_EQ(copy.priority, Priority::None);
    copy.changePriority(u"High"_qs);
    EXPECT_EQ(copy.priorityString(), u"High"_qs);
    copy.changePriority(u"Highest"_qs);
    EXPECT_EQ(copy.priority, Priority::High);
    copy.changeType(u"Email/Call"_qs);
    EXPECT_TRUE(copy.isEmailCall());
    copy.changeStatus(u"Done"_qs, false);
    EXPECT_EQ(copy.expirationDate, Clock::now());
    copy.changeStatus(u"nonsense"_qs, false);
    EXPECT_EQ(copy.statusString(), u"Done"_qs);
    EXPECT_EQ(MVTask().statusString(), QString());
    copy.repeat = u"FREQ=DAILY RRULE FREQ=WEEKLY"_qs;
    EXPECT_EQ(copy.ruleForICalendar(), u"RRULE:FREQ=WEEKLY"_qs);
    EXPECT_FALSE(copy.isProgramRuleString());
}

TEST_F(WorkingCopy, MeasuresAlertsFromTheBaseDate)
{
    const TaskPtr meeting =
        add(u"meeting"_qs, TaskType::Appointment, localDate(2026, 11, 25, 9), localDate(2026, 11, 25, 10));
    EXPECT_EQ(MVTask::timeIntervalAlertOfTask(*meeting), 0.0);
    meeting->setAlert(localDate(2026, 11, 25, 8, 45));
    EXPECT_EQ(MVTask::timeIntervalAlertOfTask(*meeting), -900.0);
    const TaskPtr call =
        add(u"call"_qs, TaskType::EmailCall, localDate(2026, 11, 1), localDate(2026, 11, 25, 10));
    call->setSecondAlert(localDate(2026, 11, 25, 10, 1));
    EXPECT_EQ(MVTask::timeIntervalSecondAlertOfTask(*call), 60.0);
}

TEST_F(WorkingCopy, SeesWhatItCollidesWith)
{
    add(u"lunch"_qs, TaskType::Appointment, localDate(2026, 11, 25, 12), localDate(2026, 11, 25, 13));
    add(u"ring"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 25, 15));
    // What runs on into another day is looked for on the day of its end.
    add(u"trip"_qs, TaskType::Appointment, localDate(2026, 11, 25, 8), localDate(2026, 11, 26, 18));
    MVTask copy;
    copy.type = TaskType::Appointment;
    const auto collides = [&copy](int fromHour, int fromMinute, int toHour, int toMinute) {
        return copy.isCrossTaskAppointmentForStartDate(localDate(2026, 11, 25, fromHour, fromMinute),
                                                       localDate(2026, 11, 25, toHour, toMinute));
    };
    EXPECT_FALSE(collides(11, 0, 12, 0));
    EXPECT_FALSE(collides(13, 0, 14, 0));
    const ScriptedAlerts alerts({1000, 1000, 1000});
    EXPECT_TRUE(collides(11, 30, 12, 30));
    EXPECT_TRUE(collides(12, 30, 12, 40));
    ASSERT_EQ(alerts.asked().size(), 2u);
    EXPECT_EQ(alerts.asked()[0].title, u"Can't save Start Date"_qs);
    EXPECT_EQ(alerts.asked()[0].informativeText.simplified(),
              u"There is task 'lunch' with Start Date '12:00 PM' and Due Date '1:00 PM'"_qs);
    copy.type = TaskType::EmailCall;
    EXPECT_TRUE(collides(10, 0, 15, 0));
    EXPECT_EQ(alerts.asked()[2].informativeText,
              u"There is task  'ring'  with Start Date  '3:00\u202fPM'  "_qs);
}

TEST_F(WorkingCopy, StartsAToDoOnTheDayThatWasPicked)
{
    for (int day = 24; day <= 36; ++day) {
        MVTask copy;
        copy.type = TaskType::ToDo;
        const Date picked = MVDate::addDay(day, localDate(2026, 11, 30, 10));
        TaskManager::saveStartDate(picked, copy);
        EXPECT_EQ(copy.startDate, MVDate::getStartOfDay(picked));
        EXPECT_TRUE(MVDate::orTheSameDay(*copy.dueDate, picked));
    }
}

QString bodyOf(const MVTask &copy)
{
    return QUrl::fromPercentEncoding(copy.htmlBody().section(u"&body="_qs, 1).toLatin1())
        .replace(u"\r\n"_qs, u"\n"_qs);
}

TEST_F(WorkingCopy, BecomesAMailDraft)
{
    const auto contact = context().insert<EntityContacts>();
    for (const QString &address : {u"ann@example.org"_qs, u"lee@example.org"_qs}) {
        const auto email = context().insert<EntityEmail>();
        email->setMail(address);
        email->setContact(contact);
    }
    MVTask copy;
    copy.type = TaskType::ToDo;
    copy.title = u"Fish & chips"_qs;
    copy.delegateToUser = contact;
    copy.dueDate = localDate(2026, 11, 25, 23, 59);
    const QString draft = copy.htmlBody();
    EXPECT_TRUE(draft.startsWith(u"mailto:"_qs));
    const QString recipients = draft.mid(7, draft.indexOf(u'?') - 7);
    EXPECT_EQ(QStringList(recipients.split(u',')).size(), 2);
    EXPECT_TRUE(draft.contains(u"?subject=%4D%6F%72%76%61%6E%65&body=%"_qs));
    const QString body = bodyOf(copy);
    EXPECT_TRUE(body.contains(u"Task: Fish & chips"_qs)) << qPrintable(body);
    EXPECT_TRUE(body.contains(u"Due date: 11/25/26"_qs)) << qPrintable(body);
    EXPECT_FALSE(body.contains(u"Start date"_qs));
    copy.type = TaskType::Appointment;
    copy.startDate = localDate(2026, 11, 25, 9);
    const QString timed = copy.htmlBody();
    EXPECT_TRUE(QUrl::fromPercentEncoding(timed.toLatin1()).contains(u"Start date: 11/25/26, 9:00 AM"_qs));
    copy.title = u"Käse für <b>Zoë</b>"_qs;
    copy.details = u"one\ntwo"_qs;
    const QString words = bodyOf(copy);
    EXPECT_TRUE(words.contains(u"Task: Käse für <b>Zoë</b> \n"_qs)) << qPrintable(words);
    EXPECT_TRUE(words.contains(u"Details: one\ntwo \n"_qs)) << qPrintable(words);
}

TEST_F(WorkingCopy, GivesAMailDraftNoHeaderThatTheUserDidNotWrite)
{
    const auto contact = context().insert<EntityContacts>();
    const auto email = context().insert<EntityEmail>();
    email->setMail(u" ann@example.org?bcc=eve@example.org&x=1,eve@example.org\r\nBcc: eve@example.org"_qs);
    email->setContact(contact);
    MVTask copy;
    copy.title = u"a&bcc=eve@example.org\nBcc: eve@example.org"_qs;
    copy.delegateToUser = contact;
    const QUrl draft(copy.htmlBody());
    EXPECT_TRUE(draft.isValid());
    QStringList names;
    for (const auto &[name, value] : QUrlQuery(draft).queryItems())
        names.append(name);
    EXPECT_EQ(names, (QStringList{u"subject"_qs, u"body"_qs}));
    EXPECT_FALSE(copy.htmlBody().contains(u','));
    EXPECT_TRUE(bodyOf(copy).contains(copy.title));
}

} // namespace
