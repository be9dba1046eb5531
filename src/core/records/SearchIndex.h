#pragma once

#include "objectstore/StoreChanges.h"

#include <QString>

/// Keeps the texts by which records are found: a row of the index for each text of a record.
class SearchIndex
{
public:
    SearchIndex() = delete;

    /// Brings the index up to date with what a commit changes.
    static void follow(const StoreChanges &changes);
    /// Adds the texts of a task, project, contact, company or note; ignores any other object.
    static void addIndexWithObject(const ObjectPtr &object);
    /// Takes out all texts of such a record, also of one that is deleted already.
    static void deleteIndexWithObjects(const ObjectPtr &object);
    /// Gives a record that changed the rows of its present texts. What it would write again stays untouched.
    static void updateIndexWithObject(const ObjectPtr &object);
    /// Lets a command that makes thousands of records index each as it goes, in steps between which the
    /// window answers, instead of all of them at its commit. It must outlive the commit.
    class Ahead
    {
    public:
        Ahead();
        ~Ahead();
        Ahead(const Ahead &) = delete;
        Ahead &operator=(const Ahead &) = delete;

        /// Adds the texts of a record that is new and complete.
        void add(const ObjectPtr &object);
        /// The commit has succeeded: what was added needs no further look.
        void committed();
    };
    /// Adds one text; an empty one is left out.
    static void insertEntitySearchIndexString(const QString &string, const QString &atObjectId);
};
