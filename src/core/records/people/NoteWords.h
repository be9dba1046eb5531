#pragma once

#include "store/entities/Entities.h"

#include <QString>

#include <vector>

/// The notes of somebody as one text, which is what address books have.
namespace notewords {

/// Whether a title is the name of somebody, in either order: people change the one that they prefer.
bool isNameOf(const EntityContacts &contact, const QString &title);
bool isNameOf(const QString &firstName, const QString &lastName, const QString &title);
/// The notes of a contact from the first one on.
std::vector<std::shared_ptr<EntityNote>> inOrder(const EntityContacts &contact);
/// The notes of a contact from the first one on. Those that are called as the contact have no title here.
QString of(const EntityContacts &contact);
/// The same of some of its notes.
QString of(const EntityContacts &contact, std::vector<std::shared_ptr<EntityNote>> notes);
/// Whether two texts have the same lines, in whatever order.
bool areSame(const QString &one, const QString &other);

} // namespace notewords
