#include "records/ShellAlerts.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"

using namespace Qt::Literals::StringLiterals;

static void tell(const QString &message, const QString &informativeText = {})
{
    Alert::run({.title = {},
                .message = message,
                .informativeText = informativeText,
                .buttons = {localized(u"OK"_s)}});
}

ShellAlerts::DontSaveAnswer ShellAlerts::alertDontSave()
{
    const int answer =
        Alert::run({.title = {},
                    .message = localized(u"Do you want to save the changes you have made?"_s),
                    .informativeText = localized(u"Your changes will be lost if you don't save them"_s),
                    .buttons = {localized(u"Save"_s), localized(u"Cancel"_s), localized(u"Don't Save"_s)},
                    .takingAway = {2}});
    switch (answer) {
    case Alert::firstButton:
        return DontSaveAnswer::Save;
    case Alert::thirdButton:
        return DontSaveAnswer::DontSave;
    default:
        return DontSaveAnswer::Cancel;
    }
}

void ShellAlerts::alertSelectOneTask()
{
    tell(localized(u"Select one task"_s));
}

void ShellAlerts::alertSelectOneProject()
{
    tell(localized(u"Select one project"_s));
}

void ShellAlerts::alertEditingEvent(const QString &calendarTitle)
{
    QString message = localized(u"You can't change events in the %@ calendar"_s);
    tell(message.replace(u"%@"_s, calendarTitle),
         localized(u"Only the calendar administrator can make changes to read-only calendar"_s));
}

void ShellAlerts::tellOfMissingTitle(const QString &reason)
{
    tell(reason, localized(u"Type one, or leave without saving."_s));
}

void ShellAlerts::tellOfDrafts()
{
    tell(localized(u"Morvane has found text that was not saved"_s),
         localized(u"It opens again as you left it. Save it, or give it up."_s));
}

void ShellAlerts::tellOfUnreadableDrafts(const QStringList &files)
{
    tell(localized(u"Text that was not saved could not be read"_s),
         localized(u"It was put aside in %1"_s).arg(files.join(u'\n')));
}

void ShellAlerts::tellOfTextWithoutPlace(const QString &title)
{
    tell(localized(u"“%1” is done or cannot be changed"_s).arg(title),
         localized(u"What you had typed for it opens as a new task. Save it, or give it up."_s));
}

void ShellAlerts::presentError(const OptionalError &error)
{
    if (error)
        Alert::run(
            {.title = {}, .message = error->message, .informativeText = {}, .buttons = {localized(u"OK"_s)}});
}
