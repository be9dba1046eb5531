#pragma once

#include "foundation/Date.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// A value of a contact and what it is called, such as "home". Empty for a value without a label.
template <typename T>
struct CNLabeledValue
{
    QString label;
    T value;
    bool operator==(const CNLabeledValue &) const = default;
};

/// The labels that address books give to values by themselves; any other text was typed by somebody.
namespace CNLabel {

inline const QString home = QStringLiteral("home");
inline const QString work = QStringLiteral("work");
inline const QString other = QStringLiteral("other");
inline const QString iPhone = QStringLiteral("iPhone");
inline const QString mobile = QStringLiteral("mobile");
inline const QString main = QStringLiteral("main");
inline const QString homeFax = QStringLiteral("home fax");
inline const QString workFax = QStringLiteral("work fax");
inline const QString fax = QStringLiteral("fax");
inline const QString pager = QStringLiteral("pager");

} // namespace CNLabel

struct CNPostalAddress
{
    QString street;
    /// What stands beside the street: an apartment, a floor.
    QString extended;
    QString city;
    QString state;
    QString postalCode;
    QString country;

    bool isEmpty() const;
    bool operator==(const CNPostalAddress &) const = default;
};

/// A day of a year, or of every year.
struct CNBirthday
{
    std::optional<int> year;
    int month = 1;
    int day = 1;
    bool operator==(const CNBirthday &) const = default;
};

/// One of the notes of a contact.
struct CNNote
{
    QString title;
    /// Any number of lines.
    QString text;
    OptionalDate created;
    /// The title of the company that it is about, too.
    QString company = {};
    bool operator==(const CNNote &) const = default;
};

/// A contact as an address book or a vCard has it. Texts are empty where it has none.
struct CNContact
{
    /// What the address book calls it.
    QString identifier = {};
    QString givenName = {};
    QString familyName = {};
    QString organizationName = {};
    QString jobTitle = {};
    std::optional<CNBirthday> birthday = {};
    /// What stands in place of a birthday and is no day.
    QString unreadBirthday = {};
    /// Any number of lines.
    QString note = {};
    /// The same one by one, where somebody has told them apart; address books do not.
    std::vector<CNNote> notes = {};
    /// What no value above holds, each under the English name of what it is: "Full Name" of one that has more
    /// than two names, "Contact" of an organization, "Related", a second job title or birthday, and whatever
    /// else a card says under a name of its own.
    std::vector<CNLabeledValue<QString>> otherWords = {};
    /// The titles of the groups that it belongs to.
    QStringList groups = {};
    /// The bytes of a picture as they came, of whatever format.
    QByteArray imageData = {};
    /// Where the picture is, if that is somewhere on the web, from where nothing is fetched.
    QString imageAddress = {};
    /// It has a picture that could not be read.
    bool isImageMissing = false;
    /// It stands for an organization rather than for a person.
    bool isOrganization = false;
    /// It stands for a group, a place or a device, and says nothing here.
    bool isOfNobody = false;
    std::vector<CNLabeledValue<QString>> phoneNumbers = {};
    std::vector<CNLabeledValue<QString>> emailAddresses = {};
    std::vector<CNLabeledValue<CNPostalAddress>> postalAddresses = {};
    std::vector<CNLabeledValue<QString>> urlAddresses = {};

    bool hasName() const { return !givenName.isEmpty() || !familyName.isEmpty(); }
    bool operator==(const CNContact &) const = default;
};
