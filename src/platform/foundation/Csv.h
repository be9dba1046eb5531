#pragma once

#include <QByteArray>
#include <QStringConverter>
#include <QStringDecoder>
#include <QStringList>

#include <optional>

class QIODevice;

// Comma-separated values (RFC 4180).

namespace Csv {

/// What a file begins with, so that spreadsheets read it as UTF-8.
inline const QByteArray byteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");

/// A record as a line of UTF-8 that ends with CR LF. A field with a comma, a quote, a line end or a blank at
/// its edge is quoted.
///
/// Spreadsheets take a field that begins with "=", "+", "-" or "@" for a formula, and a formula can do harm.
/// Such a field gets an apostrophe before it, which spreadsheets read as "this is text". A field of a sign
/// and the characters of a phone number gets none: it can compute nothing but a number, other programs read
/// phone numbers as they stand, and "'+49 30 1" would be none. `CsvReader` takes the apostrophe away again.
/// \param separator a comma, a semicolon or a tab.
QByteArray line(const QStringList &fields, char16_t separator = u',');

} // namespace Csv

/// Reads the records of a text one after the other, however long the text is. It takes what programs write:
/// UTF-8 with or without a byte order mark, UTF-16 with one, else Latin-1; commas, semicolons or tabs between
/// the fields, by what the first line has most of; any line ends, also inside of quotes; and a last record
/// without one.
class CsvReader
{
public:
    struct Record
    {
        QStringList fields = {};
        /// The number of the line that it begins in, from 1 on.
        qint64 line = 0;
        /// False for a record that is longer than any is; its fields are left out.
        bool isBearable = true;
        /// False where the text ends inside of quotes, so that something is missing.
        bool isWhole = true;
    };
    /// A record of more bytes is not read.
    static constexpr qsizetype mostBytes = 16 * 1024 * 1024;

    /// \param source must be open for reading, and outlive the reader.
    explicit CsvReader(QIODevice &source);

    /// The next record that is no empty line; absent at the end of the text.
    std::optional<Record> next();
    /// How many bytes of the source the records so far have taken.
    qint64 position() const { return taken - (buffer.size() - place); }

private:
    bool fill();
    /// The next byte; -1 at the end.
    int peek();
    int take();
    void begin();
    QString decoded(const QByteArray &bytes) const;

    QIODevice &device;
    /// For a text of UTF-16.
    std::optional<QStringDecoder> wide;
    QByteArray buffer;
    qsizetype place = 0;
    qint64 taken = 0;
    qint64 lineNumber = 1;
    char separator = ',';
    bool isBegun = false;
};
