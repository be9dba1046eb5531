#pragma once

#include "contacts/CNContact.h"

#include <QStringList>

#include <optional>
#include <vector>

/// How many values of each sort the records of a table of contacts have at most, and so how many columns.
struct ContactTableWidth
{
    int phones = 0;
    int emails = 0;
    int urls = 0;
    int addresses = 0;

    void widenTo(const CNContact &contact);
};

/// Contacts as rows of a table: what its columns are called, and what stands in them.
namespace ContactTable {

/// The titles in the user's language.
QStringList titles(const ContactTableWidth &width);
/// The fields of a contact in the order of the titles. Pictures have no field.
QStringList fields(const CNContact &contact, const ContactTableWidth &width);

/// What a column holds.
struct Column
{
    enum class Sort {
        FirstName,
        LastName,
        FullName,
        Company,
        JobTitle,
        Birthday,
        Phone,
        Email,
        Url,
        Address,
        Note,
        Groups,
        Projects
    };
    enum class Part { Value, Label, Street, Street2, City, State, Zip, Country };

    Sort sort;
    Part part = Part::Value;
    /// Which of several values of its sort.
    int number = 1;
    /// What the value is called by the title of its column, such as "home" of "Home Phone".
    QString label = {};

    /// What a title says, in the user's language, in English, or as other programs write it; absent for a
    /// column that is none of a contact.
    static std::optional<Column> of(const QString &title);
};

/// What `CNContact::otherWords` calls the groups and the projects of a contact, each of which is one of them.
inline const QString groups = QStringLiteral("Groups");
inline const QString projects = QStringLiteral("Projects");

/// The contact of a row. Fields that have no column are left out.
CNContact contactOf(const QStringList &fields, const std::vector<std::optional<Column>> &columns);

} // namespace ContactTable
