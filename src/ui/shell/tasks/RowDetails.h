#pragma once

#include "records/TaskRowContent.h"

#include <QRect>
#include <QStringList>

class RowWriter;

/// What rows tell of a task beside its title and its date, in every list alike.
namespace rowdetails {

/// How wide a detail is with its sign, in the small font.
int widthOf(const TaskRowDetail &detail);
/// How wide a text is in a font; 0 for none.
int widthOf(const QString &text, const QFont &font);
/// Nothing for an empty place.
void write(const RowWriter &writer, const QRect &where, const TaskRowDetail &detail);

/// The icons behind the title.
QStringList signsOf(bool repeats, bool hasNote);

} // namespace rowdetails
