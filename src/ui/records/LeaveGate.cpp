#include "records/LeaveGate.h"

#include "records/ShellAlerts.h"

bool LeaveGate::mayLeave()
{
    std::vector<Asked> unwanted;
    for (const Asked &asked : places) {
        // A place may go while the question about another one stands.
        if (!asked.widget || !asked.place->hasChanges())
            continue;
        asked.bringUp();
        const auto answer = ShellAlerts::alertDontSave();
        if (answer == ShellAlerts::DontSaveAnswer::Cancel)
            return false;
        if (!asked.widget)
            continue;
        if (answer == ShellAlerts::DontSaveAnswer::DontSave)
            unwanted.push_back(asked);
        else if (!asked.place->saveEdit())
            return false;
    }
    for (const Asked &asked : unwanted) {
        if (asked.widget)
            asked.place->dropEdit();
    }
    return true;
}
