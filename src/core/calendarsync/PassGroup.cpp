#include "calendarsync/PassGroup.h"

#include "calendarsync/CalendarEvent.h"

#include <utility>
#include <vector>

namespace {

struct Waiting
{
    TaskPtr task;
    std::function<void()> afterwards;
};

int openGroups = 0;
std::vector<Waiting> waiting;

void runWaiting()
{
    const std::vector<Waiting> all = std::exchange(waiting, {});
    if (all.empty())
        return;
    std::vector<TaskPtr> tasks;
    for (const Waiting &one : all)
        tasks.push_back(one.task);
    CalendarEvent::syncCalendarToAppWithTasks(tasks);
    for (const Waiting &one : all) {
        if (one.afterwards && one.task->context() && !one.task->isDeleted())
            one.afterwards();
    }
}

} // namespace

PassGroup::PassGroup()
{
    ++openGroups;
}

PassGroup::~PassGroup()
{
    if (openGroups == 1)
        runWaiting();
    --openGroups;
}

void PassGroup::passFor(const TaskPtr &task, std::function<void()> afterwards)
{
    waiting.push_back({task, std::move(afterwards)});
    if (openGroups == 0)
        runWaiting();
}
