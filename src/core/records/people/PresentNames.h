#pragma once

#include "store/entities/Entities.h"

#include <QHash>
#include <QString>

/// The people and companies that a store has before an import, by what they are called.
class PresentNames
{
public:
    PresentNames();

    /// \param name a first and a last name, as the program shows them.
    bool hasContact(const QString &name) const { return contacts.contains(name); }
    bool hasCompany(const QString &title) const { return companies.contains(title); }
    /// The row of a contact with just these two names, of several one of them; 0 if there is none.
    RowId rowOfContact(const QString &first, const QString &last) const
    {
        return contactsByNames.value(keyOf(first, last));
    }
    /// Of several companies with one title the first is meant. 0 if there is none.
    RowId rowOfCompany(const QString &title) const { return companies.value(title); }
    /// Null if there is none, or none any more.
    CompanyPtr company(const QString &title) const;

    /// The contact of a name if it has no more than that, groups, projects and notes: a task, a project or a
    /// note brought it along. Null if there are several of that name, for a card could be that of another
    /// one.
    ContactPtr bareContact(const QString &name) const;
    /// Whether a company has no more than its title: people brought it along.
    bool isBareCompany(const QString &title) const;

    /// Two names as one text that no other two names give.
    static QString keyOf(const QString &first, const QString &last) { return first + u'\n' + last; }

private:
    /// 0 for several of one name.
    QHash<QString, RowId> contacts;
    QHash<QString, RowId> contactsByNames;
    QHash<QString, RowId> companies;
};
