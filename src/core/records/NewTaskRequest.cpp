#include "records/NewTaskRequest.h"

NewTaskRequest NewTaskRequest::ofCalendar(const MarkedSpan &span, TimePeriod period)
{
    NewTaskRequest request;
    request.createWithStartDate = span.start;
    request.createWithDueDate = span.due;
    request.showTodo = period == TimePeriod::AllDay;
    request.type = period == TimePeriod::AllDay ? TaskType::ToDo : TaskType::Appointment;
    return request;
}
