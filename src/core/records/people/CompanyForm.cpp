#include "records/people/CompanyForm.h"

#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

CompanyForm::CompanyForm() = default;

CompanyForm::CompanyForm(const CompanyPtr &company)
    : items(*company)
    , photo(company->photoName())
    , row(company)
{
    values.details = company->details();
    values.keyPhoto = company->keyPhoto();
    values.photoName = company->photoName();
    values.title = company->title();
    values.contact = company->contact();
}

MissingField CompanyForm::clickButtonSave()
{
    if (values.title.isEmpty())
        return MissingField::Title;
    // One that was deleted meanwhile is stored anew, so that nothing typed is lost.
    const bool isNew = !row || !row->context() || row->isDeleted();
    values.title = values.title.trimmed();
    values.photoName = photo.photoName();
    if (isNew)
        row = mainContext().insert<EntityCompany>();
    writeValues();
    items.storeFor(row);
    const bool isSaved = DBWorker::saveOrTell();
    if (isSaved)
        photo.finish();
    items = DetailItems(*row);
    return isSaved ? MissingField::None : MissingField::Store;
}

void CompanyForm::writeValues()
{
    row->setTitle(values.title);
    row->setKeyPhoto(values.keyPhoto);
    row->setPhotoName(values.photoName);
    row->setContact(values.contact);
    row->setDetails(values.details);
}
