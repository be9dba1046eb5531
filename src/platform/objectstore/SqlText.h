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
/// A text of a model as bytes.
inline QByteArray bytes(std::string_view text)
{
    return {text.data(), static_cast<qsizetype>(text.size())};
}
