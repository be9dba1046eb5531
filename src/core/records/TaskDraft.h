#pragma once

#include "records/copies/MVTask.h"

#include <QByteArray>

#include <optional>
#include <variant>

/// What stands in the form of a task and is not saved yet, in a shape that can be kept in a file.
struct TaskDraft
{
    /// The URI of the stored task; empty for a new one.
    QString record;
    /// The form as it was left. It is bound to no row.
    MVTask edited;
    /// The row as the edit found it; of a new task, blank.
    MVTask base;
    /// Whether it belongs to the sample.
    bool isOfSample = false;

    /// The stored task, or null if it is a new one or gone.
    TaskPtr task() const;

    /// JSON of a fixed version. Linked records are told by their URIs.
    QByteArray encoded() const;

    enum class Unreadable { Damaged, FromNewerVersion };
    /// Reads what `encoded` has written. A linked record that is gone is no link.
    static std::variant<TaskDraft, Unreadable> decoded(const QByteArray &json);
};
