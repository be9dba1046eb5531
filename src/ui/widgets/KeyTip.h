#pragma once

#include <QKeySequence>
#include <QStringList>

class QHelpEvent;
class QWidget;

/// Tips that tell the keys of a control.
namespace keytip {

/// "Edit (Return)"; the words alone without keys.
QString of(const QString &words, const QKeySequence &keys);
/// Answers the wish for a tip about one part of a control; none for an empty tip.
void show(const QHelpEvent &event, QWidget &control, const QRect &part, const QString &tip);

} // namespace keytip
