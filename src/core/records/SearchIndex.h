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
    /// Adds one text; an empty one is left out.
    static void insertEntitySearchIndexString(const QString &string, const QString &atObjectId);
};
