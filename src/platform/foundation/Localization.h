#pragma once

#include <QString>

/// The words of the program in the user's language. The key is the English text; a key without an entry is
/// answered as it is. The language is the first of `Region::preferredLocalizations` that has an entry.
QString localized(const QString &key);

/// The same from a table of its own, for example "RepeatPicker": its files are named "RepeatPicker.de.json".
QString localized(const QString &key, const QString &table);

/// The words for a number of things: the entry of a key like "%1 tasks" in the plural form that the number
/// has in the language of the entry, with the number in the place of every "%1". Other places stay for the
/// caller. An entry is a text for all numbers, or an object of texts by plural category ("one", "few",
/// "other", as CLDR names them); "=1" is the text for just that number.
QString localizedCount(const QString &key, qint64 count);

/// The language that words are told in: the first of the user's, for example "de", that has a table; else
/// "en".
QString languageOfWords();

/// Where the tables come from: a JSON object of key and text for each language, "de.json", in the resource
/// folder ":/translations" and any folders added. A table is read when the first word is asked of it.
class LocalizationTable
{
public:
    /// Adds a folder of tables. Entries of a folder added later win.
    static void loadDirectory(const QString &path);
    /// Takes a folder out again.
    static void unloadDirectory(const QString &path);
};
