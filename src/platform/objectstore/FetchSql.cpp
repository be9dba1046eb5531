#include "objectstore/FetchSql.h"

#include "foundation/Log.h"
#include "objectstore/SqlText.h"

#include <algorithm>

QByteArray fetchsql::rowResult(const std::vector<std::string> &columns)
{
    QByteArray result = "row.rowid";
    for (const std::string &column : columns)
        result += ", row." + quoted(column);
    return result;
}

namespace {

QByteArray isAmong(const std::vector<RowId> &rows)
{
    QByteArrayList numbers;
    for (const RowId row : rows)
        numbers.append(QByteArray::number(row));
    return "row.rowid IN (" + numbers.join(',') + ')';
}

QByteArray conditionOfIndex(const EntityDescription &entity, std::string_view name)
{
    const auto found = std::ranges::find(entity.indexes(), name, &IndexDescription::name);
    return found == entity.indexes().end() ? QByteArray() : bytes(found->where);
}

} // namespace

SqlFragment fetchsql::select(const ManagedObjectModel &model, const FetchRequest &request,
                             const QByteArray &result, const QByteArray &kept)
{
    const EntityDescription &entity = model.requireEntity(request.entityName);
    SqlFragment made;
    made.text = "SELECT " + result + " FROM " + quoted(entity.name()) + " row";
    if (auto problem = request.predicate.problemFor(model, entity)) {
        Log::line(
            QStringLiteral("Wrong predicate for %1: %2").arg(QString::fromUtf8(entity.table()), *problem));
        made.text += " WHERE 0";
        return made;
    }
    SqlFragment condition = request.predicate.sql(model, entity);
    QByteArrayList conditions;
    if (!request.predicate.isAlwaysTrue())
        conditions.append('(' + condition.text + ')');
    if (request.candidates)
        conditions.append(isAmong(*request.candidates));
    if (const QByteArray implied = conditionOfIndex(entity, request.partialIndex); !implied.isEmpty())
        conditions.append('(' + implied + ')');
    if (!kept.isEmpty())
        conditions.append(kept);
    if (!conditions.isEmpty())
        made.text += " WHERE " + conditions.join(" AND ");
    made.bindings = std::move(condition.bindings);
    return made;
}

QByteArray fetchsql::order(const EntityDescription &entity, const SortDescriptors &descriptors)
{
    QByteArray order;
    for (const SortDescriptor &descriptor : descriptors) {
        if (entity.columnOf(descriptor.key) < 0) {
            Log::line(QStringLiteral("%1 cannot be sorted by %2")
                          .arg(QString::fromUtf8(entity.table()), QString::fromStdString(descriptor.key)));
            continue;
        }
        order += (order.isEmpty() ? " ORDER BY row." : ", row.") + quoted(descriptor.key);
        if (descriptor.comparison == SortDescriptor::Comparison::LocalizedCaseInsensitive)
            order += " COLLATE LOCALIZED";
        if (!descriptor.isAscending)
            order += " DESC";
    }
    return order.isEmpty() ? QByteArray(" ORDER BY row.rowid") : order;
}
