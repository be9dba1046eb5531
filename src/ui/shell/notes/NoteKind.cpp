#include "shell/notes/NoteKind.h"

#include "foundation/Localization.h"
#include "records/RecordKind.h"
#include "records/people/NoteForm.h"
#include "store/queries/DBWorker.h"

using namespace Qt::Literals::StringLiterals;

static std::vector<ListedRecord> rows()
{
    std::vector<ListedRecord> listed;
    const auto notes = DBWorker::allNote();
    for (const RowId row : notes.rows())
        listed.push_back({row});
    return listed;
}

static QString countInWords(int notes)
{
    if (notes == 0)
        return localized(u"No Notes"_s);
    return localizedCount(u"%1 notes"_s, notes);
}

RecordKind NoteKind::description()
{
    return {.list = {.tableName = u"tableViewNotes"_s,
                     .emptySentence = localized(u"What you want to keep in mind, in your own words."_s),
                     .deletingSentence = localized(u"Deleting the selected notes"_s),
                     .opens = RecordListDescription::Opens::OnSelection,
                     .besideSentence = localized(u"Select a note to read it here."_s),
                     .exports = {ExportFormat::ICalendar, ExportFormat::Csv}},
            .rows = [](const FilterEntry *) { return rows(); },
            .look =
                [](const ManagedObject &record) {
                    const auto &note = static_cast<const EntityNote &>(record);
                    return RecordLook{.title = note.title(), .detail = note.detail()};
                },
            .countInWords = countInWords,
            .form =
                [](const ObjectPtr &record) {
                    return record ? std::make_unique<NoteForm>(std::static_pointer_cast<EntityNote>(record))
                                  : std::make_unique<NoteForm>();
                },
            .paneName = u"DetailNonteViewController"_s,
            .windowName = u"WindowAddNewNote"_s,
            .windowTitle = localized(u"New Note"_s)};
}
