#include "records/RecordRemoval.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Localization.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

using namespace Qt::Literals::StringLiterals;

bool RecordRemoval::isWanted(std::size_t count)
{
    const QString message = count == 1 ? u"Are you sure you want to delete the selected item?"_s
                                       : u"Are you sure you want to delete the selected items?"_s;
    return Alert::run({{}, localized(message), {}, {localized(u"Delete"_s), localized(u"Cancel"_s)}}) ==
           Alert::firstButton;
}

void RecordRemoval::remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                           const StepBlock &step)
{
    if (!isWanted(records.size()))
        return;
    RecordsTransaction transaction(u"Delete"_s);
    for (const ObjectPtr &record : records) {
        // It may have gone while the user was asked.
        if (!record->isDeleted() && record->context())
            mainContext().deleteObject(record);
        if (step && !step())
            break;
    }
    DBWorker::tellOfFailure(transaction.commit());
    removed();
}
