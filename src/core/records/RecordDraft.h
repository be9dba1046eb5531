#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

/// The words that stand in the form of a record of any kind and are not saved yet, in a shape that can be
/// kept in a file. A task keeps more (`TaskDraft`).
struct RecordDraft
{
    QString entity;
    /// The URI of the stored record; empty for a new one.
    QString record;
    /// What was typed, by the names of the form's rows; rows that say what the record says are left out.
    QMap<QString, QString> texts;
    /// Whether it belongs to the sample.
    bool isOfSample = false;

    /// JSON of a fixed version.
    QByteArray encoded() const;
    /// Reads what `encoded` has written; absent if it is anything else, or of a newer version.
    static std::optional<RecordDraft> decoded(const QByteArray &json);
};
