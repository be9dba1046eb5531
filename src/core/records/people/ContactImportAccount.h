#pragma once

#include <QStringList>

/// What has become of the contacts of an import.
struct ContactImportAccount
{
    int added = 0;
    /// The names of contacts and companies that were known by these alone, and took what their card says.
    QStringList filledContacts;
    QStringList filledCompanies;
    /// Those that came as cards of their own.
    int addedCompanies = 0;
    /// All that are new, also those that only a contact names.
    int companies = 0;
    /// Those that are new since a card names them.
    int groups = 0;
    int projects = 0;
    /// The full names of those that were there before, and of those among them that lack something that the
    /// card has.
    QStringList existing;
    QStringList poorer;
    /// The names of those of the first that have nothing in common with their cards by which somebody is
    /// reached, so that these may be other people.
    QStringList namesakes;
    /// What was not imported, each with its reason in the user's language.
    QStringList refused;
    /// The names of those whose picture was none, or could not be had or kept.
    QStringList withoutPicture;
    /// The names of those whose picture is on the web; its address stands in a note.
    QStringList withPictureOnWeb;
    /// The names of those of whom something stands in a note, since no field holds it: a birthday without a
    /// year, words in place of a birthday, a job title that is no category.
    QStringList withoutYear;
    QStringList unreadBirthdays;
    QStringList otherJobTitles;
    /// The names of those of whom other words stand in a note: a nickname, a department, a second name.
    QStringList withOtherWords;
    bool wasStopped = false;
    /// False if the store could not be written, which the user was told. The contacts wait for the next save.
    bool isSaved = true;

    /// All of it for the user to read, a sentence each; names only of the first few.
    QStringList sentences() const;
};
