#include "shell/people/PeopleKinds.h"

#include "foundation/Localization.h"
#include "records/people/CompanyForm.h"
#include "records/people/ContactForm.h"
#include "records/people/ContactRemoval.h"
#include "shell/people/ContactViewController.h"
#include "shell/people/OffersField.h"
#include "shell/people/PeopleDetailViewControllers.h"
#include "store/entities/MainContext.h"

using namespace Qt::Literals::StringLiterals;

static const RowHeights peopleRows{.item = 56};

template <typename Pane>
static RecordPane *makePane(std::unique_ptr<FormModel> form, FormView *view)
{
    return new Pane(std::move(form), view);
}

template <typename Form, typename Entity>
static std::unique_ptr<FormModel> makeForm(const ObjectPtr &record)
{
    return record ? std::make_unique<Form>(std::static_pointer_cast<Entity>(record))
                  : std::make_unique<Form>();
}

// Contacts

static QColor colorOf(const EntityContactCategory &category)
{
    return QColor::fromRgbF(static_cast<float>(category.colorR().value_or(0)),
                            static_cast<float>(category.colorG().value_or(0)),
                            static_cast<float>(category.colorB().value_or(0)));
}

static RecordLook lookOfContact(const ManagedObject &record)
{
    const auto &contact = static_cast<const EntityContacts &>(record);
    RecordLook shown{.title = contact.fullName(), .portrait = Portrait::of(contact)};
    if (shown.title.isEmpty())
        shown.title = localized(u"No Name"_s);
    if (const CompanyPtr company = contact.company())
        shown.detail = company->title();
    if (const auto category = contact.contactCategory())
        shown.mark = colorOf(*category);
    return shown;
}

static QString contactsInWords(int people)
{
    if (people == 0)
        return localized(u"No People"_s);
    return localizedCount(u"%1 people"_s, people);
}

/// Who of the typed name is in the address books.
static QWidget *makeOffers(FormModel &form, const FormRow &, std::function<void()> &sync)
{
    auto *field = new OffersField(static_cast<ContactForm &>(form));
    sync = [field] { field->showOffers(); };
    return field;
}

RecordKind PeopleKinds::contacts()
{
    return {.list = {.tableName = u"tableViewContacts"_s,
                     .secondType = ToolBarButton::ImportContacts,
                     .toldOf = {EntityCompany::entityName, EntityContactCategory::entityName},
                     .emptySentence = localized(u"The people you work and live with."_s),
                     .filteredSentence = localized(u"Nobody passes the filter."_s),
                     .deletingSentence = localized(u"Deleting the selected people"_s),
                     .rowHeights = peopleRows,
                     .opens = RecordListDescription::Opens::OnSelection,
                     .besideSentence = localized(u"Select somebody to see them here."_s),
                     .exports = {ExportFormat::VCard, ExportFormat::Csv}},
            .look = lookOfContact,
            .countInWords = contactsInWords,
            .form = makeForm<ContactForm, EntityContacts>,
            .paneName = DetailContactViewController::name,
            .windowName = u"WindowNewContacts"_s,
            .windowTitle = localized(u"New Contact"_s),
            .pane = makePane<DetailContactViewController>,
            .ownControl = makeOffers,
            .remove = ContactRemoval::remove,
            .screen = [](const RecordKind &kind) -> TabsViewController * {
                return new ContactViewController(kind, nullptr);
            }};
}

TabsViewController *PeopleKinds::screenOfGroup(const RecordKind &contacts,
                                               const std::shared_ptr<EntityContactGroup> &group)
{
    return new ContactViewController(contacts, group);
}

// Companies

static std::vector<ListedRecord> rowsOfCompanies()
{
    std::vector<ListedRecord> listed;
    const auto companies = DBWorker::allCompany();
    for (const RowId row : companies.rows())
        listed.push_back({row});
    return listed;
}

/// They are counted, not loaded: there may be very many.
static QString employeesOf(const EntityCompany &company)
{
    const auto itself = DBWorker::getObjectFromId(company.uri());
    const int count = mainContext().count(EntityContacts::fetchRequest().where(
        Predicate::format("company == %@", std::static_pointer_cast<EntityCompany>(itself))));
    return localizedCount(u"%1 employees"_s, count);
}

static RecordLook lookOfCompany(const ManagedObject &record)
{
    const auto &company = static_cast<const EntityCompany &>(record);
    return {.title = company.title(), .detail = employeesOf(company), .portrait = Portrait::of(company)};
}

static QString companiesInWords(int companies)
{
    if (companies == 0)
        return localized(u"No Companies"_s);
    return localizedCount(u"%1 companies"_s, companies);
}

RecordKind PeopleKinds::companies()
{
    return {.list = {.tableName = u"tableViewCompanies"_s,
                     .secondType = ToolBarButton::ImportContacts,
                     .toldOf = {EntityContacts::entityName},
                     .emptySentence = localized(u"Companies and the people who work there."_s),
                     .deletingSentence = localized(u"Deleting the selected companies"_s),
                     .rowHeights = peopleRows,
                     .opens = RecordListDescription::Opens::OnSelection,
                     .besideSentence = localized(u"Select a company to see it here."_s),
                     .exports = {ExportFormat::VCard, ExportFormat::Csv}},
            .rows = [](const FilterEntry *) { return rowsOfCompanies(); },
            .look = lookOfCompany,
            .countInWords = companiesInWords,
            .form = makeForm<CompanyForm, EntityCompany>,
            .paneName = CompanyDetailViewController::name,
            .windowName = u"WindowNewCompany"_s,
            .windowTitle = localized(u"New Company"_s),
            .pane = makePane<CompanyDetailViewController>,
            .remove = ContactRemoval::remove};
}
