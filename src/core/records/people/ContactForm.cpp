#include "records/people/ContactForm.h"

#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

ContactForm::ContactForm() = default;

ContactForm::ContactForm(const ContactPtr &contact)
    : items(*contact)
    , photo(contact->photoName())
    , row(contact)
{
    values.birthday = contact->birthday();
    values.firstName = contact->firstName();
    values.lastName = contact->lastName();
    values.keyPhoto = contact->keyPhoto();
    values.photoName = contact->photoName();
    values.company = contact->company();
    values.contactCategory = contact->contactCategory();
    values.project = contact->project();
}

MissingField ContactForm::clickButtonSave()
{
    if (values.firstName.isEmpty() && values.lastName.isEmpty())
        return MissingField::FirstName;
    // One that was deleted meanwhile is stored anew, so that nothing typed is lost.
    const bool isNew = !row || !row->context() || row->isDeleted();
    values.firstName = values.firstName.trimmed();
    values.lastName = values.lastName.trimmed();
    values.photoName = photo.photoName();
    if (isNew)
        row = mainContext().insert<EntityContacts>();
    writeValues();
    items.storeFor(row);
    const bool isSaved = DBWorker::saveOrTell();
    if (isSaved)
        photo.finish();
    items = DetailItems(*row);
    return isSaved ? MissingField::None : MissingField::Store;
}

void ContactForm::writeValues()
{
    row->setFirstName(values.firstName);
    row->setLastName(values.lastName);
    row->setBirthday(values.birthday);
    row->setKeyPhoto(values.keyPhoto);
    row->setPhotoName(values.photoName);
    row->setCompany(values.company);
    row->setContactCategory(values.contactCategory);
    row->setProject(values.project);
}
