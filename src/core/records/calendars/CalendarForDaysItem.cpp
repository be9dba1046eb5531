#include "records/calendars/CalendarForDaysItem.h"

#include "records/calendars/Truncation.h"
#include "records/copies/MVTask.h"
#include "records/dates/MVDate.h"

CalendarForDaysItem::CalendarForDaysItem(std::shared_ptr<MVTask> wanted)
{
    setObj(std::move(wanted));
}

void CalendarForDaysItem::setObj(std::shared_ptr<MVTask> wanted)
{
    constexpr qint64 quarterOfAnHour = 900;
    task = std::move(wanted);
    title = task->title;
    row = -1;
    startDueDate = task->isEmailCall();
    workSeconds = 1;
    durationEvent = 1;
    if (startDueDate) {
        workSeconds = quarterOfAnHour;
        duration = 1;
    } else if (task->startDate && task->dueDate) {
        workSeconds = truncated<qint64>((*task->dueDate - *task->startDate).count());
        durationEvent = MVDate::durationEvent(MVDate::getStartOfDay(*task->startDate),
                                              MVDate::getEndOfDay(*task->dueDate));
    }
}
