#include "calendarviews/CalendarGrid.h"

#include "foundation/Localization.h"
#include "records/DraggedRecords.h"
#include "records/RepeatBan.h"
#include "records/ShellAlerts.h"
#include "records/TaskManager.h"
#include "store/queries/DBWorker.h"
#include "widgets/Accessibility.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

// Dragging

/// Says why an item cannot be changed.
void CalendarGrid::refuse(const MVTask &task)
{
    if (!task.allowsContentModifications.value_or(true))
        ShellAlerts::alertEditingEvent(localized(task.calendarTitle));
    else if (RepeatBan::concerns(task))
        RepeatBan::tell();
    else if (task.status == TaskStatus::Done)
        tell(localized(u"What is done stays where it is."_s));
}

/// A sentence beside the mouse or the keyboard, which goes by itself.
void CalendarGrid::tell(const QString &sentence)
{
    const QRect place = visual(frameOf(spot)).toAlignedRect();
    QToolTip::showText(mapToGlobal(place.bottomLeft()), sentence, this, place);
    Accessibility::announce(*this, sentence);
}

/// A message ends the drag before it has begun: a box cannot stand while the button is held.
bool CalendarGrid::startDrag()
{
    const std::shared_ptr<MVTask> event = eventOf(held->from).event();
    if (!movesItems() || held->zone == Zone::None) {
        held.reset();
        return false;
    }
    if (!CalendarDrag::isMovable(*event)) {
        held.reset();
        refuse(*event);
        return false;
    }
    held->isActive = true;
    return true;
}

void CalendarGrid::dragTo(QPointF point, Qt::KeyboardModifiers modifiers)
{
    if (!held->isActive) {
        const bool isFarEnough = (point - held->pressedAt).manhattanLength() >= dragDistance;
        if (!isFarEnough || !startDrag())
            return;
    }
    if (const auto dates = datesAt(*held, point, modifiers.testFlag(Qt::AltModifier)))
        held->dates = *dates;
    showDrag();
}

void CalendarGrid::showDrag()
{
    draggedPlaces = layoutOfDrag(*held);
    Q_EMIT momentShown(momentOf(*held));
    update();
}

void CalendarGrid::cancelDrag()
{
    markCancelled();
    if (held)
        endDrag(false);
}

/// The task is there, was not given other dates meanwhile, and can still be written.
bool CalendarGrid::isStillTheSame(const Drag &dragged) const
{
    const ObjectPtr stored = DBWorker::getObjectFromId(DBWorker::getIdFromObject(dragged.task));
    if (stored != dragged.task)
        return false;
    const MVTask now(dragged.task);
    return TaskDates::of(now) == dragged.before && (!dragged.isActive || CalendarDrag::isMovable(now));
}

void CalendarGrid::endDrag(bool saves)
{
    const Drag finished = *held;
    held.reset();
    draggedPlaces.clear();
    Q_EMIT momentShown(std::nullopt);
    update();
    if (saves && finished.isActive && finished.dates != finished.before)
        save(finished);
}

/// Where it is refused, what is stored comes back into its place.
void CalendarGrid::save(const Drag &finished)
{
    if (!isStillTheSame(finished))
        return reload();
    const QPointer<CalendarGrid> self = this;
    MVTask copy(finished.task);
    finished.dates.putInto(copy);
    const bool isSaved = TaskManager::saveTaskTemp(copy, true);
    if (!self)
        return;
    const TaskPtr task = copy.task();
    // The user may have given it up when asked about a series.
    const bool isMoved = isSaved && task && TaskDates::of(MVTask(task)) != finished.before;
    takenBy = isMoved && finished.isByKeys ? std::optional(finished) : std::nullopt;
    if (takenBy)
        takenBy->task = task;
    reload();
    if (isMoved && finished.isByKeys && !goToTask(task) && finished.dates.due)
        Q_EMIT wentTo(finished.dates.start ? *finished.dates.start : *finished.dates.due, task);
}

// Tasks from elsewhere

void CalendarGrid::dragEnterEvent(QDragEnterEvent *event)
{
    if (!DraggedRecords::tasksIn(*event->mimeData()).empty())
        event->acceptProposedAction();
}

void CalendarGrid::dragMoveEvent(QDragMoveEvent *event)
{
    showDropAt(logical(event->position()));
    Q_EMIT draggedAt(event->position().toPoint());
    event->acceptProposedAction();
}

void CalendarGrid::dragLeaveEvent(QDragLeaveEvent *)
{
    dropPlace.reset();
    update();
}

void CalendarGrid::showDropAt(QPointF point)
{
    dropPlace = dropFrame(point);
    update();
}

QRectF CalendarGrid::dropFrame(QPointF point) const
{
    for (int slot = 0; slot < slotRows() * columnCount(); ++slot) {
        if (slotFrame(slot).contains(point))
            return slotFrame(slot);
    }
    return {};
}

/// Messages wait until the source has its mouse back.
void CalendarGrid::dropEvent(QDropEvent *event)
{
    dropPlace.reset();
    update();
    const std::vector<TaskPtr> tasks = DraggedRecords::tasksIn(*event->mimeData());
    event->acceptProposedAction();
    QMetaObject::invokeMethod(
        this, [this, tasks, point = logical(event->position())] { plan(tasks, point); },
        Qt::QueuedConnection);
}

void CalendarGrid::plan(const std::vector<TaskPtr> &tasks, QPointF point)
{
    const QPointer<CalendarGrid> self = this;
    for (const TaskPtr &task : tasks) {
        MVTask copy(task);
        if (!copy.allowsContentModifications.value_or(true) || RepeatBan::concerns(copy)) {
            refuse(copy);
            continue;
        }
        if (!planAt(copy, point))
            continue;
        TaskManager::saveTaskTemp(copy, true);
        if (!self)
            return;
    }
    reload();
    if (!tasks.empty())
        goToTask(tasks.front());
}
