#include "objectstore/SqlFunctions.h"

#include "foundation/TextFolding.h"

#include <QString>

#include <sqlite3.h>

namespace {

bool hasText(sqlite3_value *value)
{
    return sqlite3_value_type(value) != SQLITE_NULL;
}

QByteArrayView bytesOf(sqlite3_value *value)
{
    const auto *start = reinterpret_cast<const char *>(sqlite3_value_text(value));
    return QByteArrayView(start, sqlite3_value_bytes(value));
}

QString textOf(sqlite3_value *value)
{
    return QString::fromUtf8(bytesOf(value));
}

void folded(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (!hasText(arguments[0]))
        return sqlite3_result_null(context);
    const QByteArray text = foldedForSearch(textOf(arguments[0])).toUtf8();
    sqlite3_result_text(context, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

enum class Place { Anywhere, Start, End };

template <Place place>
bool hasPart(const auto &text, const auto &part)
{
    // Qt finds nothing at the ends of a null text, not even the empty part.
    if (part.isEmpty())
        return true;
    if constexpr (place == Place::Start)
        return text.startsWith(part);
    else if constexpr (place == Place::End)
        return text.endsWith(part);
    else
        return text.indexOf(part) >= 0;
}

template <Place place, bool isFolded>
void partTest(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (!hasText(arguments[0]) || !hasText(arguments[1]))
        return sqlite3_result_null(context);
    if constexpr (isFolded)
        sqlite3_result_int(context,
                           hasPart<place>(foldedForSearch(textOf(arguments[0])), textOf(arguments[1])));
    else
        sqlite3_result_int(context, hasPart<place>(textOf(arguments[0]), textOf(arguments[1])));
}

int compareLocalized(void *, int leftLength, const void *left, int rightLength, const void *right)
{
    const QString leftText = QString::fromUtf8(static_cast<const char *>(left), leftLength);
    const QString rightText = QString::fromUtf8(static_cast<const char *>(right), rightLength);
    return localizedCaseInsensitiveCompare(leftText, rightText);
}

using Function = void (*)(sqlite3_context *, int, sqlite3_value **);

void addFunction(sqlite3 *database, const char *name, int arguments, Function function)
{
    sqlite3_create_function_v2(database, name, arguments, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                               function, nullptr, nullptr, nullptr);
}

} // namespace

void registerSqlFunctions(sqlite3 *database)
{
    addFunction(database, "folded", 1, folded);
    addFunction(database, "contains_text", 2, partTest<Place::Anywhere, false>);
    addFunction(database, "begins_with", 2, partTest<Place::Start, false>);
    addFunction(database, "ends_with", 2, partTest<Place::End, false>);
    addFunction(database, "contains_text_folded", 2, partTest<Place::Anywhere, true>);
    addFunction(database, "begins_with_folded", 2, partTest<Place::Start, true>);
    addFunction(database, "ends_with_folded", 2, partTest<Place::End, true>);
    sqlite3_create_collation(database, "LOCALIZED", SQLITE_UTF8, nullptr, compareLocalized);
}
