#pragma once

#include "foundation/Error.h"

#include <QString>

/// The questions and messages that several screens share.
namespace ShellAlerts {

enum class DontSaveAnswer { Save, Cancel, DontSave };

/// What to do with changes that would be lost.
DontSaveAnswer alertDontSave();
void alertSelectOneTask();
void alertSelectOneProject();
/// An event of a calendar that cannot be written cannot be changed.
void alertEditingEvent(const QString &calendarTitle);
/// What stands in a form cannot be saved, for that reason.
void tellOfMissingTitle(const QString &reason);
/// Says what went wrong, if anything did.
void presentError(const OptionalError &error);
/// Text was found that the user had typed and not saved; it is about to open again.
void tellOfDrafts();
/// Such text could not be read; it lies in these files.
void tellOfUnreadableDrafts(const QStringList &files);
/// The task that such text was typed for cannot take it; it is about to open as a new one.
void tellOfTextWithoutPlace(const QString &title);

} // namespace ShellAlerts
