#include "shell/people/ExportContacts.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "records/people/ContactExport.h"
#include "widgets/LongWork.h"

#include <QFileDialog>
#include <QSaveFile>
#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

bool ExportContacts::canExport(std::string_view entity)
{
    return entity == EntityContacts::entityName || entity == EntityCompany::entityName;
}

static void tellOfFailedExport(const QString &reason)
{
    const QString title = localized(u"The contacts could not be exported"_s);
    Alert::run({title, title, reason, {localized(u"OK"_s)}});
}

static void write(const std::vector<ObjectPtr> &records, const QString &path)
{
    std::vector<ContactPtr> contacts;
    std::vector<CompanyPtr> companies;
    for (const ObjectPtr &record : records) {
        // It may have gone while the user chose a file.
        if (record->isDeleted() || !record->context())
            continue;
        if (auto contact = std::dynamic_pointer_cast<EntityContacts>(record))
            contacts.push_back(std::move(contact));
        else if (auto company = std::dynamic_pointer_cast<EntityCompany>(record))
            companies.push_back(std::move(company));
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return tellOfFailedExport(file.errorString());
    LongWork work(records.size(), localized(u"Exporting contacts"_s));
    bool isWanted = true;
    const auto step = [&] { return isWanted = work.step(); };
    if (const auto error = ContactExport::write(file, contacts, companies, step))
        return tellOfFailedExport(error->message);
    if (!isWanted)
        return file.cancelWriting();
    if (!file.commit())
        tellOfFailedExport(file.errorString());
}

void ExportContacts::run(const std::vector<ObjectPtr> &selected, const std::vector<ObjectPtr> &all,
                         QWidget &window)
{
    std::vector<ObjectPtr> records = all;
    if (!selected.empty() && selected.size() < all.size()) {
        const QString title = localized(u"Export contacts"_s);
        const int answer =
            Alert::run({title,
                        title,
                        localized(u"%1 of %2 are selected."_s).arg(selected.size()).arg(all.size()),
                        {localized(u"All"_s), localized(u"Selected"_s), localized(u"Cancel"_s)}});
        if (answer != Alert::firstButton && answer != Alert::secondButton)
            return;
        if (answer == Alert::secondButton)
            records = selected;
    }
    auto *dialog = new QFileDialog(&window, localized(u"Export contacts"_s),
                                   QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                                   localized(u"vCards (*.vcf)"_s));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"vcf"_s);
    dialog->selectFile(localized(u"Contacts"_s) + u".vcf"_s);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                     [records](const QString &path) { write(records, path); });
    dialog->open();
}
