#pragma once

#include <QKeyEvent>

/// The keys that clear the value of a field.
namespace ClearKey {

inline bool is(const QKeyEvent &event)
{
    return event.modifiers() == Qt::NoModifier &&
           (event.key() == Qt::Key_Delete || event.key() == Qt::Key_Backspace);
}

} // namespace ClearKey
