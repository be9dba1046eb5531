#pragma once

#include "contacts/CNContact.h"
#include "foundation/Error.h"
#include "store/entities/Entities.h"
#include "store/state/StepBlock.h"

#include <vector>

class QIODevice;

/// Contacts and companies as vCards (3.0), which the import and other programs read. Main thread only.
namespace ContactExport {

/// What an address book would have of a contact: names, company, birthday, picture, phones, mail, postal and
/// web addresses. Types become the labels of their places; types of the user's own become labels of their
/// titles.
CNContact contactOf(const EntityContacts &contact);
/// The same of a company, as an organization.
CNContact contactOf(const EntityCompany &company);

/// Writes them one after the other, each held in memory only while it is written. `step` is called after
/// each; where it wants no more, what is written stays.
OptionalError write(QIODevice &device, const std::vector<ContactPtr> &contacts,
                    const std::vector<CompanyPtr> &companies = {}, const StepBlock &step = {});

} // namespace ContactExport
