#include "objectstore/ChangesetCheck.h"

#include <sqlite3.h>

#include <optional>

namespace {

/// Reads from the front of a changeset. What is not there fails, and so does all that follows.
class ChangesetReader
{
public:
    explicit ChangesetReader(const QByteArray &changeset)
        : bytes(changeset)
    {}

    bool isAtEnd() const { return place == bytes.size(); }
    bool startsTable() const { return place < bytes.size() && bytes.at(place) == 'T'; }
    /// The count of columns, absent for a head that is none.
    std::optional<qint64> tableHead()
    {
        constexpr qint64 mostColumns = 2000; // Of a table of SQLite.
        const auto columns = skip(1) ? number() : std::nullopt;
        if (!columns || *columns < 1 || *columns > mostColumns || !skip(*columns))
            return std::nullopt;
        const qsizetype end = bytes.indexOf('\0', place);
        return end > place && skip(end + 1 - place) ? columns : std::nullopt;
    }
    bool skipChange(qint64 columns)
    {
        const int kind = static_cast<quint8>(bytes.at(place));
        if (kind != SQLITE_INSERT && kind != SQLITE_DELETE && kind != SQLITE_UPDATE)
            return false;
        return skip(2) && skipValues(columns) && (kind != SQLITE_UPDATE || skipValues(columns));
    }

private:
    bool skip(qint64 count)
    {
        if (count < 0 || count > bytes.size() - place)
            return false;
        place += count;
        return true;
    }
    /// Seven bits from each byte, as long as the eighth is set. Longer ones than of five bytes do not occur.
    std::optional<qint64> number()
    {
        qint64 value = 0;
        for (int count = 0; count < 5 && place < bytes.size(); ++count) {
            const auto byte = static_cast<quint8>(bytes.at(place++));
            value = value << 7 | (byte & 0x7f);
            if (byte < 0x80)
                return value;
        }
        return std::nullopt;
    }
    bool skipValues(qint64 columns)
    {
        for (; columns > 0; --columns) {
            if (place >= bytes.size() || !skipValue(static_cast<quint8>(bytes.at(place++))))
                return false;
        }
        return true;
    }
    bool skipValue(int type)
    {
        constexpr int undefined = 0;
        switch (type) {
        case undefined:
        case SQLITE_NULL:
            return true;
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return skip(8);
        case SQLITE_TEXT:
        case SQLITE_BLOB: {
            const auto size = number();
            return size && skip(*size);
        }
        default:
            return false;
        }
    }

    const QByteArray &bytes;
    qsizetype place = 0;
};

} // namespace

bool isWellFormedChangeset(const QByteArray &changeset)
{
    ChangesetReader reader(changeset);
    std::optional<qint64> columns;
    while (!reader.isAtEnd()) {
        if (reader.startsTable())
            columns = reader.tableHead();
        else if (!columns || !reader.skipChange(*columns))
            return false;
        if (!columns)
            return false;
    }
    return true;
}
