#include "records/RecordListModel.h"

/// Headings and gaps have numbers that no record has. Two headings of the same words stand above others.
quint64 RecordListModel::stableIdAt(int row) const
{
    constexpr quint64 noRecord = quint64(1) << 63;
    if (kindOf(row) == RowKind::Item)
        return static_cast<quint64>(identifierAt(row));
    if (kindOf(row) == RowKind::Separator)
        return noRecord | static_cast<quint64>(row);
    const int below = nearestItem(row, 1);
    return noRecord |
           qHash(index(row).data().toString(), static_cast<std::size_t>(below < 0 ? 0 : identifierAt(below)));
}
