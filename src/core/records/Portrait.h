#pragma once

#include <QString>

class EntityCompany;
class EntityContacts;

/// How a person or a company looks at a glance: a picture, or initials where there is none.
struct Portrait
{
    /// The name of the picture in the image store; empty without one.
    QString photoName = {};
    /// At most two letters; empty for somebody without a name.
    QString initials = {};

    bool operator==(const Portrait &) const = default;

    /// The first letters of two names in the order that the user prefers.
    static QString initialsOf(const QString &firstName, const QString &lastName);
    /// The first letter of a title.
    static QString initialsOf(const QString &title);
    static Portrait of(const EntityContacts &contact);
    static Portrait of(const EntityCompany &company);
};
