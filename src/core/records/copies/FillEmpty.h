#pragma once

#include <QString>

#include <vector>

// How a working copy takes a value of its row: only for a field that holds nothing yet.

inline void fill(QString &field, const QString &value)
{
    if (field.isEmpty())
        field = value;
}

/// For optional values and links.
template <typename T>
void fill(T &field, const T &value)
{
    if (!field)
        field = value;
}

template <typename T>
void fill(std::vector<T> &field, const std::vector<T> &value)
{
    if (field.empty())
        field = value;
}
