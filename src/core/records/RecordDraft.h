#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

/// What stands in the form of a record of any kind and is not saved yet, in a shape that can be kept in a
/// file. A task has a shape of its own (`TaskDraft`).
struct RecordDraft
{
    QString entity;
    /// The URI of the stored record; empty for a new one.
    QString record;
    /// What the rows say, as `FormModel::kept` gives it, by their names; empty rows that were empty before
    /// are left out. Drafts of former versions have edited rows only.
    QMap<QString, QString> values;
    /// What the record said in those rows when the form was last in step with it; empty in drafts of former
    /// versions.
    QMap<QString, QString> formerValues = {};
    /// Whether it belongs to the sample.
    bool isOfSample = false;

    /// Whether a row says something else than the record did.
    bool isEdited(const QString &row) const
    {
        return !formerValues.contains(row) || values.value(row) != formerValues.value(row);
    }
    /// JSON of a fixed version.
    QByteArray encoded() const;
    /// Reads what `encoded` has written; absent if it is anything else, or of a newer version.
    static std::optional<RecordDraft> decoded(const QByteArray &json);
};
