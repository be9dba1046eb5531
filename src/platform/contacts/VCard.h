#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// A line of a vCard: a name, parameters, and a value that is decoded when it is asked for.
class VCardAttribute
{
public:
    struct Parameter
    {
        /// In capitals; "TYPE" or "ENCODING" for a parameter that vCard 2.1 gives without a name.
        QByteArray name;
        /// Without quotes, and with RFC 6868 decoded.
        QStringList values;
    };

    /// Reads an unfolded line, with the `=` and line ends of soft breaks already gone. Absent if it has no
    /// colon or no name.
    static std::optional<VCardAttribute> fromLine(const QByteArray &line);
    /// Where the colon is that ends the parameters of a line; -1 without one. A colon inside of quotes does
    /// not count, unless the quotes are never closed.
    static qsizetype colonOf(const QByteArray &line);

    /// What stands before the dot, such as "item1"; empty for none.
    const QByteArray &group() const { return groupName; }
    /// In capitals.
    const QByteArray &name() const { return upperName; }
    const std::vector<Parameter> &parameters() const { return parameterList; }
    /// The first value of a parameter; empty without one. `parameterName` in capitals.
    QString parameter(const QByteArray &parameterName) const;
    /// What the TYPE parameters say, in capitals, lists taken apart.
    QStringList types() const;

    /// The value as text, with escapes resolved. Its character set is that of its CHARSET parameter, else
    /// UTF-8; bytes that are no UTF-8 are taken as Windows-1252.
    QString text() const;
    /// The parts between semicolons, each as `text`.
    QStringList components() const;
    /// The parts between commas, each as `text`.
    QStringList list() const;
    /// The parts between semicolons, each with its parts between commas.
    std::vector<QStringList> lists() const;
    /// The bytes of a value in base64, or those of a value in quoted-printable; else the value as it stands.
    QByteArray bytes() const;
    bool isBase64() const { return encoding == Encoding::Base64; }
    const QByteArray &rawValue() const { return value; }

    /// How the bytes of a value are written.
    enum class Encoding { Plain, QuotedPrintable, Base64 };
    /// That of a line, by its parameters. \param head what stands before the colon.
    static Encoding encodingOf(const QByteArray &head);

private:
    QString decoded(const QByteArray &bytes) const;
    QStringList partsBetween(char16_t separator) const;
    template <typename Text, typename ToText>
    static std::vector<QStringList> listsIn(const Text &written, ToText toText);

    QByteArray groupName;
    QByteArray upperName;
    std::vector<Parameter> parameterList;
    QByteArray value;
    Encoding encoding = Encoding::Plain;
};

/// A vCard (versions 2.1, 3.0 of RFC 2426, 4.0 of RFC 6350) as it was read: its lines in their order.
struct VCard
{
    enum class Version { V21, V30, V40 };
    enum class State {
        Whole,
        /// It has no end: the text ends, or another card begins. What there is of it is here.
        CutOff,
        /// It is longer than a card can sensibly be; nothing of it is here.
        TooLarge,
    };

    State state = State::Whole;
    Version version = Version::V30;
    /// The number of the line with its BEGIN, counted from 1.
    qint64 line = 0;
    std::vector<VCardAttribute> attributes;

    /// The first attribute of that name, in capitals, or null.
    const VCardAttribute *find(const QByteArray &name) const;
};
