#pragma once

#include "contacts/CNContact.h"
#include "store/entities/Entities.h"

#include <QHash>

/// Contacts and companies as address books, vCards and tables have them. Main thread only.
class ContactExport
{
public:
    /// Reads the types of the store.
    ContactExport();

    /// What an address book would have of a contact: names, company, job title, birthday, groups, picture,
    /// phones, mail, postal and web addresses, and its notes as one text. Types become the labels of their
    /// places; types of the user's own become labels of their titles.
    CNContact contactOf(const EntityContacts &contact) const;
    /// The same of a company, as an organization.
    CNContact contactOf(const EntityCompany &company) const;
    /// The same of a record that is one or the other.
    CNContact contactOf(const ManagedObject &record) const;
    /// The same without the picture, which takes long to read.
    CNContact detailsOf(const ManagedObject &record) const;

private:
    CNContact made(const EntityContacts &contact) const;
    CNContact made(const EntityCompany &company) const;
    template <typename Owner>
    void takeDetails(CNContact &contact, const Owner &owner) const;

    /// Labels of types by their identifiers.
    QHash<QString, QString> labels;
};
