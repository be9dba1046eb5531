#include "records/people/NoteForm.h"

#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

MissingField NoteForm::clickButtonSave()
{
    if (values.title.isEmpty())
        return MissingField::Title;
    values.creationDate = MVDate::date();
    if (!row || !row->context())
        row = mainContext().insert<EntityNote>();
    row->setCreationDate(values.creationDate);
    row->setTitle(values.title);
    row->setDetail(values.detail);
    row->setContact(values.contact);
    return DBWorker::saveOrTell() ? MissingField::None : MissingField::Store;
}
