#include "records/TaskMerge.h"

#include "records/MVTask.h"

namespace {

template <typename Value>
bool isSame(const Value &one, const Value &other)
{
    return one == other;
}

/// Null and empty say the same.
bool isSame(const QString &one, const QString &other)
{
    return one.isEmpty() ? other.isEmpty() : one == other;
}

class Merge
{
public:
    Merge(MVTask &editedTask, const MVTask &baseTask, const MVTask &presentTask)
        : edited(editedTask)
        , base(baseTask)
        , present(presentTask)
    {}

    /// One group of values.
    template <typename... Values>
    void together(Values MVTask::*...values)
    {
        const bool isUntouched = (isSame(edited.*values, base.*values) && ...);
        const bool isPresent = (isSame(edited.*values, present.*values) && ...);
        if (!isUntouched || isPresent)
            return;
        ((edited.*values = present.*values), ...);
        isChanged = true;
    }

    bool changed() const { return isChanged; }

private:
    MVTask &edited;
    const MVTask &base;
    const MVTask &present;
    bool isChanged = false;
};

} // namespace

bool TaskMerge::follow(MVTask &edited, const MVTask &base, const MVTask &present)
{
    Merge merge(edited, base, present);
    // What a form shows.
    merge.together(&MVTask::title);
    merge.together(&MVTask::details);
    merge.together(&MVTask::type, &MVTask::startDate, &MVTask::dueDate, &MVTask::dueSomeDay, &MVTask::alert,
                   &MVTask::secondAlert, &MVTask::repeat, &MVTask::endRepeat);
    merge.together(&MVTask::status, &MVTask::expirationDate);
    merge.together(&MVTask::priority);
    merge.together(&MVTask::category);
    merge.together(&MVTask::location);
    merge.together(&MVTask::delegateToUser, &MVTask::company);
    merge.together(&MVTask::project);
    merge.together(&MVTask::tags);
    merge.together(&MVTask::typeCalendarID, &MVTask::calendarTitle, &MVTask::colorCalendarR,
                   &MVTask::colorCalendarG, &MVTask::colorCalendarB, &MVTask::colorCalendarA);
    // What goes with the row.
    merge.together(&MVTask::calendarID);
    merge.together(&MVTask::allowsContentModifications);
    merge.together(&MVTask::wasCreatedOffCalendar);
    merge.together(&MVTask::lastModificationDate);
    merge.together(&MVTask::position);
    merge.together(&MVTask::remindID);
    merge.together(&MVTask::repeatInfoUser);
    return merge.changed();
}
