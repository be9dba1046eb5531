#include "records/DraggedRecords.h"

#include "store/queries/DBWorker.h"

#include <QMimeData>

using namespace Qt::Literals::StringLiterals;

static const QString format = u"application/x-morvane-records"_s;

QMimeData *DraggedRecords::of(const std::vector<ObjectPtr> &records)
{
    QStringList identifiers;
    QStringList titles;
    for (const ObjectPtr &record : records) {
        identifiers << DBWorker::getIdFromObject(record);
        if (const auto task = std::dynamic_pointer_cast<EntityTask>(record))
            titles << task->title();
    }
    auto *data = new QMimeData;
    data->setData(format, identifiers.join(u'\n').toUtf8());
    data->setText(titles.join(u'\n'));
    return data;
}

std::vector<TaskPtr> DraggedRecords::tasksIn(const QMimeData &data)
{
    std::vector<TaskPtr> tasks;
    const QStringList identifiers = QString::fromUtf8(data.data(format)).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &identifier : identifiers) {
        if (const auto task = std::dynamic_pointer_cast<EntityTask>(DBWorker::getObjectFromId(identifier)))
            tasks.push_back(task);
    }
    return tasks;
}
