#include "records/NewTaskRequest.h"

#include "records/dates/MVDate.h"

NewTaskRequest NewTaskRequest::ofCalendar(const MarkedSpan &span, TimePeriod period)
{
    NewTaskRequest request;
    request.createWithStartDate = span.start;
    request.createWithDueDate = span.due;
    request.showTodo = period == TimePeriod::AllDay;
    request.type = period == TimePeriod::AllDay ? TaskType::ToDo : TaskType::Appointment;
    return request;
}

MarkedSpan NewTaskRequest::today(Date now)
{
    return {MVDate::getStartOfDay(now), MVDate::getEndOfDay(now)};
}

NewTaskRequest NewTaskRequest::ofList(ListType list, Date now)
{
    NewTaskRequest request;
    request.typeTask = list;
    if (list == ListType::Today || list == ListType::Scheduled) {
        const MarkedSpan day = today(list == ListType::Today ? now : MVDate::addDayWithDate(now));
        request.createWithStartDate = day.start;
        request.createWithDueDate = day.due;
    }
    return request;
}
