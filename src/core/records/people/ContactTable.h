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
        Projects,
        Identifier,
        /// Names and addresses over again, which only counts where it says more than these.
        Repetition,
        /// What no field holds.
        Other
    };
    enum class Part {
        Value,
        Label,
        Street,
        Street2,
        City,
        State,
        Zip,
        Country,
        /// An address as one text.
        Whole,
        Year,
        Month,
        Day
    };

    Sort sort;
    Part part = Part::Value;
    /// Which of several values of its sort.
    int number = 1;
    /// What the value is called by the title of its column, such as "home" of "Home Phone".
    QString label = {};
    /// As the table has it.
    QString title = {};
    /// What stands between several values in one field; empty where there is only one.
    QString separators = {};
};

/// What the columns of a table are by their titles: in English, in the user's language or in another one of
/// the program, whichever explains most of them, or as other programs write them.
std::vector<Column> columnsOf(const QStringList &titles);
/// Whether such columns can name somebody.
bool hasNames(const std::vector<Column> &columns);

/// What `CNContact::otherWords` calls the projects of a contact, each of which is one of them.
inline const QString projects = QStringLiteral("Projects");

/// The contact of a row. What no field holds is among its `otherWords`, under the title of its column.
CNContact contactOf(const QStringList &fields, const std::vector<Column> &columns);

} // namespace ContactTable
