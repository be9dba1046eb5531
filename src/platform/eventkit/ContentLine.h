#pragma once

#include <QByteArray>

/// A property of an iCalendar text (RFC 5545, section 3.1) together with the very bytes that it was read
/// from, so that what nobody changes is written back as it was.
class ContentLine
{
public:
    /// `rawLine` is the line with its folds and its line end, as it stands in the text.
    explicit ContentLine(const QByteArray &rawLine);
    /// A new line. `head` is the name and, behind semicolons, the parameters as they are to be written.
    static ContentLine make(const QByteArray &head, const QByteArray &value, const QByteArray &lineEnd);
    /// ";NAME=value", quoted and encoded where that is needed (RFC 6868).
    static QByteArray parameterText(const QByteArray &name, const QByteArray &value);

    const QByteArray &raw() const { return bytes; }
    /// In capitals. Empty for a line that is no property.
    const QByteArray &name() const { return upperName; }
    /// Without the folds; escaped as it is written.
    QByteArray value() const;
    /// Name and parameters as they are written.
    QByteArray head() const;
    /// The decoded value of a parameter without its quotes; null if there is none. `parameterName` in
    /// capitals.
    QByteArray parameter(const QByteArray &parameterName) const;
    QByteArray lineEnd() const;

    /// The same with another value, and with its parameters as they were.
    ContentLine withValue(const QByteArray &newValue) const;

private:
    QByteArray unfolded() const;

    QByteArray bytes;
    QByteArray upperName;
    /// Where the colon before the value stands in the unfolded line; -1 without one.
    qsizetype colon = -1;
};
