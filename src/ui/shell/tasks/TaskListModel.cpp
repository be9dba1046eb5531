#include "shell/tasks/TaskListModel.h"

#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/ProjectManager.h"

using namespace Qt::Literals::StringLiterals;

TaskListModel::TaskListModel(ListType list, QObject *parent)
    : RecordListModel(parent)
    , type(list)
{}

void TaskListModel::fetch()
{
    const TaskListQuery list = query();
    groupedBy = list.groupedBy;
    setRows(list.fetch());
}

void TaskListModel::setRows(TaskRows rows)
{
    beginResetModel();
    dataSourceTasks = std::move(rows);
    endResetModel();
}

void TaskListModel::update(const std::set<RowId> &changed, const std::set<RowId> &held)
{
    // It keeps a reference.
    const TaskListQuery list = query();
    TaskRowsUpdate(dataSourceTasks, list, *this).run(changed, held);
}

bool TaskListModel::isRegroupedBy(const StoreChanges &changes) const
{
    return query().isRegroupedBy(changes);
}

ObjectPtr TaskListModel::recordAt(int row) const
{
    return row >= 0 && row < dataSourceTasks.size() ? dataSourceTasks.taskAt(row) : nullptr;
}

int TaskListModel::rowOf(const ObjectPtr &record) const
{
    const auto task = std::dynamic_pointer_cast<EntityTask>(record);
    return task ? dataSourceTasks.rowOf(*task) : -1;
}

RowKind TaskListModel::kindOf(int row) const
{
    switch (dataSourceTasks.kindOf(row)) {
    case TaskRows::Kind::Header:
        return RowKind::Header;
    case TaskRows::Kind::Separator:
        return RowKind::Separator;
    case TaskRows::Kind::Task:
        break;
    }
    return RowKind::Item;
}

QString TaskListModel::countInWords(int items) const
{
    if (items == 0)
        return localized(u"No Tasks"_s);
    return localizedCount(u"%1 tasks"_s, items);
}

int TaskListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : dataSourceTasks.size();
}

namespace {

struct HeaderText
{
    QString operator()(const CategoryPtr &category) const
    {
        return category ? Categories::shownTitle(category) : QString();
    }
    QString operator()(const ProjectPtr &project) const
    {
        return project ? ProjectManager::shownTitle(*project) : QString();
    }
    QString operator()(const ContactPtr &contact) const { return contact ? contact->fullName() : QString(); }
    QString operator()(const PriorityHeader &header) const
    {
        return Functional::priorityStringFromType(header.priority);
    }
    QString operator()(const DayHeader &header) const
    {
        if (Calendar::current().isDateInToday(header.day))
            return localized(u"Today"_s);
        return DateFormatter::string(header.day, u"d MMMM yyyy"_s);
    }
    QString operator()(const EntityNotValue &header) const
    {
        switch (header.type) {
        case EntityNotValue::NoCategory:
            return localized(u"No Category"_s);
        case EntityNotValue::NoProject:
            return localized(u"No Project"_s);
        case EntityNotValue::NoDelegate:
            return localized(u"No Contact"_s);
        case EntityNotValue::NoTasks:
            return localized(u"No Tasks"_s);
        case EntityNotValue::NoEvents:
            return localized(u"No events"_s);
        }
        return {};
    }
};

QString priorityInWords(Priority priority)
{
    switch (priority) {
    case Priority::High:
        return localized(u"High priority"_s);
    case Priority::Medium:
        return localized(u"Medium priority"_s);
    case Priority::Low:
        return localized(u"Low priority"_s);
    case Priority::None:
        break;
    }
    return {};
}

/// What a screen reader says of a row: all that its words, colours and marks show, but the tick, which it
/// says itself.
QString spoken(const TaskRowContent &content)
{
    QStringList parts = {content.title, content.project, content.dateLabel,
                         content.isOverdue ? localized(u"overdue"_s) : QString(),
                         priorityInWords(content.priority)};
    for (const TaskRowDetail &detail : content.details)
        parts << detail.text;
    if (content.repeats)
        parts << localized(u"repeats"_s);
    if (content.hasNote)
        parts << localized(u"has a note"_s);
    if (!content.hasCheckBox)
        parts << localized(u"cannot be changed"_s);
    parts.removeAll(QString());
    return parts.join(u", "_s);
}

/// What the headers of a grouping tell of the rows below them.
std::optional<TaskRowDetail::Kind> toldByHeader(GroupedBy grouping)
{
    switch (grouping) {
    case GroupedBy::Category:
        return TaskRowDetail::Kind::Category;
    case GroupedBy::Project:
        return TaskRowDetail::Kind::Project;
    case GroupedBy::Delegate:
        return TaskRowDetail::Kind::Person;
    case GroupedBy::Nothing:
    case GroupedBy::Priority:
    case GroupedBy::DayDone:
        break;
    }
    return std::nullopt;
}

} // namespace

QString TaskListModel::headerText(const GroupHeader &header)
{
    return std::visit(HeaderText(), header);
}

TaskRowContent TaskListModel::contentOf(const EntityTask &task) const
{
    TaskRowContent content = TaskRowContent::of(task, type);
    if (!showsProject)
        content.project.clear();
    // The list of a category says so above all of its rows.
    const auto told = type == ListType::Categories ? TaskRowDetail::Kind::Category : toldByHeader(groupedBy);
    if (told)
        std::erase_if(content.details, [&](const TaskRowDetail &detail) { return detail.kind == *told; });
    return content;
}

QVariant TaskListModel::taskData(const EntityTask &task, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return task.title();
    case ContentRole:
        return QVariant::fromValue(contentOf(task));
    case Qt::AccessibleTextRole:
        return spoken(contentOf(task));
    case Qt::CheckStateRole: {
        const TaskRowContent content = contentOf(task);
        if (!content.hasCheckBox)
            return {};
        return content.isChecked ? Qt::Checked : Qt::Unchecked;
    }
    default:
        return {};
    }
}

QVariant TaskListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const TaskRow row = dataSourceTasks.at(index.row());
    if (const auto *task = std::get_if<TaskPtr>(&row))
        return *task ? taskData(**task, role) : QVariant();
    const auto *header = std::get_if<GroupHeader>(&row);
    if (!header)
        return {};
    const auto *missing = std::get_if<EntityNotValue>(header);
    if (role == IsQuietRole)
        return missing && missing->isOnlyRow();
    const bool isText = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    return isText ? QVariant(headerText(*header)) : QVariant();
}
