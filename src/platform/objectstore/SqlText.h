#pragma once

#include <QByteArray>

#include <string_view>

/// A name as an SQL identifier. Names of models hold no quotation marks.
inline QByteArray quoted(const QByteArray &name)
{
    return '"' + name + '"';
}
inline QByteArray quoted(std::string_view name)
{
    return quoted(QByteArray(name.data(), static_cast<qsizetype>(name.size())));
}
