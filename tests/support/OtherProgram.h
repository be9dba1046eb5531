#pragma once

#include <QString>

#include <gtest/gtest.h>
#include <sqlite3.h>

/// Writes to a store as another program does: by SQL, on a connection of its own.
inline void writeElsewhere(const QString &path, const char *sql)
{
    sqlite3 *connection = nullptr;
    ASSERT_EQ(sqlite3_open_v2(path.toUtf8().constData(), &connection, SQLITE_OPEN_READWRITE, nullptr),
              SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection);
    sqlite3_close(connection);
}
