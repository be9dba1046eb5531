#pragma once

/// What the program puts in place before the user adds anything.
class StartWindowController
{
public:
    StartWindowController() = delete;

    /// Seeds rows and settings that are missing, and saves. Runs at every launch: rows that are there stay as
    /// they are, rows that the user deleted come back.
    static void startValueUserDefaults();
    static void saveCustomType();
    static void saveCustomCategory();
    static void saveCustomCategoryContacts();
};
