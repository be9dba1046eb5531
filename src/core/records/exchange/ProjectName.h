#pragma once

#include "store/entities/Entities.h"

#include <QString>

/// Projects that a task or a person of a file names: no more than their titles is known.
namespace projectname {

/// The first project of a title; null for none.
ProjectPtr found(const QString &title);

/// A new project of a title, which begins as one that the user makes. Without an identifier it gets the one
/// by which `knownByName` finds it.
ProjectPtr made(const QString &title, const QString &identifier = {});

/// Whether no more is known of a project than its title and when it was made.
bool isBare(const EntityProject &project);

/// The bare project that a file of an earlier import named, until the file comes that has it whole and knows
/// its right identifier; null for none.
ProjectPtr knownByName(const QString &title);

/// Whether a project was made when a task named it, by its right identifier, so that a file which has it
/// whole and says since when it is there completes it.
bool isCompletedBy(OptionalDate creationDateOfFile, const EntityProject &project);

} // namespace projectname
