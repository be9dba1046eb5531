#pragma once

#include "records/people/ContactReader.h"

#include <QByteArray>
#include <QString>

#include <memory>

class QIODevice;

/// The contacts of one origin, a file or an address book, which can be read as often as they are needed. A
/// file is not held in memory.
class ContactCards
{
public:
    static ContactCards ofFile(const QString &path);
    /// A text of vCards. \param name that of the address book.
    static ContactCards ofText(const QString &name, const QByteArray &text);

    /// Whether a file is one of vCards by the ending of its name.
    static bool isFileOfCards(const QString &path);
    /// The patterns of such files for a file dialog, between blanks.
    static QString patternsOfFiles();

    /// What the user calls the origin: the name of the file or of the address book.
    const QString &name() const { return shownName; }
    /// How they are written: a file whose name ends with ".csv" is a table, anything else are vCards.
    ContactReader::Form form() const { return writtenForm; }
    /// The length in bytes.
    qint64 size() const;
    /// The text from its beginning; null, with the reason in `reason`, if the file cannot be read.
    struct Opened
    {
        std::unique_ptr<QIODevice> device;
        /// In the words of the system; empty without a failure.
        QString reason;
    };
    Opened open() const;

private:
    QString shownName;
    QString filePath;
    QByteArray content;
    ContactReader::Form writtenForm = ContactReader::Form::VCards;
};
