#include "records/RepeatBan.h"

#include "calendarsync/CalendarEvent.h"
#include "records/Functional.h"
#include "records/copies/MVTask.h"

static bool isBarred(const QString &repeat)
{
    return !repeat.isEmpty() && !CalendarEvent::isAccessChangeRepeatTaskWithMessage(true);
}

bool RepeatBan::concerns(const EntityTask &task)
{
    return isBarred(task.repeat());
}

bool RepeatBan::concerns(const MVTask &task)
{
    return isBarred(task.repeat);
}

void RepeatBan::tell()
{
    if (const QString message = CalendarEvent::messageForBanChangeRepeat(); !message.isEmpty())
        Functional::messageAlertWithTitle(QStringLiteral("This is a repeating task."), message);
}
