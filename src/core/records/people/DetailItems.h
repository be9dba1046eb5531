#pragma once

#include "records/people/ItemListAddress.h"
#include "records/people/ItemListEmailPhoneUrl.h"

/// The lists of form rows of a contact or a company. Each ends with a free one for the next entry.
class DetailItems
{
public:
    /// The lists of a new record: a free row each.
    DetailItems();
    /// Those of a stored one.
    explicit DetailItems(const EntityContacts &contact);
    explicit DetailItems(const EntityCompany &company);

    ItemListEmailPhoneUrl::Rows phones;
    ItemListEmailPhoneUrl::Rows urls;
    ItemListEmailPhoneUrl::Rows emails;
    ItemListAddress::Rows addresses;

    /// Adds a free row to each list, with the first type that the list does not use.
    void appendFreeRows();
    /// Something was typed: a list whose last row is no longer free gets a new one.
    void controlTextDidChange();

    /// Takes the free row from the end of each list, and makes the stored rows of a record those of the
    /// lists: rows without a text are not stored, and stored ones that are no longer in a list are deleted.
    /// Does not save the context.
    void storeFor(const ContactPtr &contact);
    void storeFor(const CompanyPtr &company);

private:
    void appendFreePhone();
    void appendFreeUrl();
    void appendFreeEmail();
    void appendFreeAddress();
};
