#pragma once

#include "records/people/ItemListAddress.h"
#include "records/people/ItemListEmailPhoneUrl.h"

/// Which of the lists of a contact or a company.
enum class DetailKind { Phone, Address, Email, Url };

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

    /// The rows of a list that hold something, as a text that `take` understands. Two lists of the same text
    /// hold the same.
    QString kept(DetailKind kind) const;
    /// Makes the rows of a list those of such a text, and adds the free one. Stored rows and types that there
    /// are no more are left out. Anything else than such a text leaves an empty list.
    void take(DetailKind kind, const QString &kept);
    /// What becomes of a list that two have changed. What only one side has changed is as that side has it;
    /// what this side has changed stays so; what another one has added comes last.
    /// \param mine the list of this side, \param former what both began with, \param present the other side.
    static QString merged(const QString &mine, const QString &former, const QString &present);

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
