#pragma once

#include <QString>

/// What the start window does: the way into the user's own records and into the sample, and what the program
/// puts in place before the user adds anything.
class StartWindowController
{
public:
    StartWindowController() = delete;

    // The three items.
    /// "Get Started": closes the start window and shows the user's own records. Words that are being typed
    /// are asked about before. False if the user stays with them, or the store could not be saved; then
    /// nothing has changed.
    static bool openStarted();
    /// "Sample": the same with a clean copy of the sample. What was changed in a former one is lost.
    static bool openBrowseSample();
    /// "User Guide".
    static void openHelp();

    /// "Open Main Window" of the File menu: closes the start window and shows the main one. If there is none
    /// yet, it is that of the user's own records.
    static void openMainWindow();

    // The sample.
    /// Puts a clean sample store in place. The store in use must be that of the sample. Without a prepared
    /// store that can be used, the sample is empty.
    static void restoreDatabase();
    /// Copies the prepared pictures into the folder of the pictures in use. One of the same name stays.
    static void copySampleImages();
    /// Moves the dates of all tasks and projects by so many days that the earliest start of an open task is
    /// yesterday, and saves. Nothing moves if that start is no older, or there is none.
    static void makeCorectSmpleDates();
    /// Whether there is a picture of that name in the folder in use.
    static bool imageExist(const QString &name);
    /// Lower-case letters, drawn at random; empty for a length below 1.
    static QString generateRandomString(int length);

    // Seeds.
    /// Seeds rows and settings that are missing, and saves. Runs at every launch: rows that are there stay as
    /// they are, rows that the user deleted come back.
    static void startValueUserDefaults();
    static void saveCustomType();
    static void saveCustomCategory();
    static void saveCustomCategoryContacts();
};
