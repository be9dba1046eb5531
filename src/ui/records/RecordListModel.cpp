#include "records/RecordListModel.h"

/// Headings and gaps have numbers that no record has.
quint64 RecordListModel::stableIdAt(int row) const
{
    constexpr quint64 noRecord = quint64(1) << 63;
    if (kindOf(row) == RowKind::Item)
        return static_cast<quint64>(identifierAt(row));
    if (kindOf(row) == RowKind::Separator)
        return noRecord | static_cast<quint64>(row);
    return noRecord | qHash(index(row).data().toString());
}
