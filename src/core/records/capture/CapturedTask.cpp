#include "records/capture/CapturedTask.h"

#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/ProjectManager.h"
#include "records/TaskFormState.h"
#include "records/dates/MVDate.h"
#include "recurrence/RRule.h"
#include "recurrence/RecurrenceSentence.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int usualMinutes = 60;

Date atMinute(Date day, int minute)
{
    return MVDate::setTimeWithCurrentDate(day, minute / 60, minute % 60, 0);
}

/// The first and the last moment of the task; absent without a day.
std::optional<MarkedSpan> spanOf(const Capture &capture)
{
    if (!capture.day)
        return {};
    const Date lastDay = capture.lastDay.value_or(*capture.day);
    if (!capture.minute)
        return MarkedSpan{MVDate::getStartOfDay(*capture.day), MVDate::getEndOfDay(lastDay)};
    const Date start = atMinute(*capture.day, *capture.minute);
    const Date due = capture.lastMinute
                         ? atMinute(lastDay, *capture.lastMinute)
                         : Calendar::current().dateByAdding(CalendarUnit::Minute, usualMinutes,
                                                            atMinute(lastDay, *capture.minute));
    return MarkedSpan{start, due};
}

} // namespace

NewTaskRequest CapturedTask::request(const Capture &capture, const NewTaskRequest &ofList)
{
    NewTaskRequest request = ofList;
    if (const auto span = spanOf(capture)) {
        request.typeTask.reset();
        request.createWithStartDate = span->start;
        request.createWithDueDate = span->due;
        request.type = capture.minute ? TaskType::Appointment : TaskType::ToDo;
        request.showTodo = !capture.minute;
    } else if (capture.isSomeday) {
        request.typeTask = ListType::Someday;
        request.createWithStartDate.reset();
        request.createWithDueDate.reset();
        request.type = TaskType::ToDo;
    }
    if (capture.project)
        request.createWithProject = capture.project;
    if (capture.person) {
        request.createWithContact = capture.person;
        // As where a person is chosen in the form.
        request.createWithCompany = capture.person->company();
    }
    if (capture.category)
        request.createWithCategory = capture.category;
    return request;
}

TaskPtr CapturedTask::save(const Capture &capture, const NewTaskRequest &ofList)
{
    if (capture.title.trimmed().isEmpty())
        return nullptr;
    TaskFormState form(request(capture, ofList));
    form.setTitle(capture.title);
    if (capture.priority)
        form.setPriority(*capture.priority);
    // A place that is not there yet is committed together with the task.
    std::shared_ptr<EntityLocation> newPlace;
    if (!capture.place.isEmpty()) {
        auto place = DBWorker::locationOf(capture.place);
        if (!place) {
            place = newPlace = mainContext().insert<EntityLocation>();
            place->setTitle(capture.place);
        }
        form.setLocation(place);
    }
    if (capture.repeat && capture.day) {
        RecurrenceRule rule = *capture.repeat;
        rule.startDate = spanOf(capture)->start;
        form.setRepeat(RRule::stringFromRule(rule));
    }
    if (form.save())
        return form.currentTask().task();
    if (newPlace)
        mainContext().deleteObject(newPlace);
    return nullptr;
}

QString CapturedTask::inWords(const Capture &capture)
{
    using Style = DateFormatter::Style;
    QStringList parts;
    const auto dayInWords = [](Date day) {
        return DateFormatter::string(day, DateFormatter::patternFromTemplate(u"EEEMMMdyyyy"_s));
    };
    if (capture.isSomeday)
        parts.append(localized(u"Someday"_s));
    if (capture.day)
        parts.append(capture.lastDay ? dayInWords(*capture.day) + u" – "_s + dayInWords(*capture.lastDay)
                                     : dayInWords(*capture.day));
    if (const auto span = spanOf(capture); span && capture.minute)
        parts.append(DateFormatter::string(span->start, Style::None, Style::Short) + u" – "_s +
                     DateFormatter::string(span->due, Style::None, Style::Short));
    if (capture.repeat)
        parts.append(RecurrenceSentence::of(*capture.repeat, RecurrencePickerLanguages::current()));
    if (capture.priority)
        parts.append(Functional::priorityStringFromType(*capture.priority));
    if (capture.category)
        parts.append(Categories::shownTitle(capture.category));
    if (capture.project)
        parts.append(ProjectManager::shownTitle(*capture.project));
    if (capture.person)
        parts.append(fullNameWith(capture.person->firstName(), capture.person->lastName()));
    if (!capture.place.isEmpty())
        parts.append(capture.place);
    return parts.join(u" · "_s);
}
