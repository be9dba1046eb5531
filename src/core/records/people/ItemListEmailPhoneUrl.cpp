#include "records/people/ItemListEmailPhoneUrl.h"

#include "records/MailDraft.h"
#include "records/people/FreeType.h"

#include <QRegularExpression>
#include <QUrl>

namespace {

/// A text with the digits of any script, wide signs and wide brackets as those of ASCII.
QString withPlainDigits(const QString &text)
{
    QString plain;
    for (const char32_t character : text.toStdU32String()) {
        constexpr char32_t firstWide = U'\uFF01';
        constexpr char32_t lastWide = U'\uFF5E';
        if (QChar::category(character) == QChar::Number_DecimalDigit)
            plain += QChar(u'0' + QChar::digitValue(character));
        else if (character >= firstWide && character <= lastWide)
            plain += QChar(static_cast<char16_t>(character - firstWide + u'!'));
        else
            plain += QString::fromUcs4(&character, 1);
    }
    return plain;
}

/// The first number of a text as a telephone knows it (RFC 3966): digits, with the sign of an international
/// number before them and the extension behind them. The zero of "+49 (0) 30" is dialled at home only, but
/// that of Italy always.
QString dialled(const QString &text)
{
    static const QRegularExpression extension(
        QStringLiteral(
            R"((?<![a-z])(?:ext(?:ension|n)?|x|durchwahl|dw|app(?:arat)?|poste|interno|int)(?![a-z]))"
            R"([\s.:=-]*(\d+))"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression homeZero(
        QStringLiteral(R"(^([^\d+]*(?:\+|00)\s*(?!39\D)\d{1,3}[^\d+(]*)\(\s*0\s*\))"));
    // Pauses, or a further number.
    static const QRegularExpression end(QStringLiteral(R"(\d[^\d,;]*([,;]))"));
    QString number = withPlainDigits(text);
    const QRegularExpressionMatch further = extension.match(number);
    if (further.hasMatch())
        number.truncate(further.capturedStart());
    if (const QRegularExpressionMatch stop = end.match(number); stop.hasMatch())
        number.truncate(stop.capturedStart(1));
    number.replace(homeZero, QStringLiteral("\\1"));
    QString digits;
    for (const QChar character : std::as_const(number)) {
        if (character.isDigit() || (character == u'+' && digits.isEmpty()))
            digits += character;
    }
    return further.hasMatch() ? digits + QStringLiteral(";ext=") + further.captured(1) : digits;
}

/// "https:" where nothing else is said. A colon alone says nothing: it may stand before a port.
QString withScheme(const QString &url)
{
    static const QRegularExpression scheme(QStringLiteral("^([a-z][a-z0-9+.-]*://|mailto:|tel:|geo:)"),
                                           QRegularExpression::CaseInsensitiveOption);
    return scheme.match(url).hasMatch() ? url : QStringLiteral("https://") + url;
}

/// What is escaped already stays; whatever else cannot stand in an address is escaped.
QString escaped(const QString &url)
{
    static const QRegularExpression escapedTwice(QStringLiteral("%25([0-9A-Fa-f]{2})"));
    return QString::fromLatin1(QUrl::toPercentEncoding(url, "!$&'()*+,;=:@/?#"))
        .replace(escapedTwice, QStringLiteral("%\\1"));
}

} // namespace

ItemListEmailPhoneUrl ItemListEmailPhoneUrl::initPhoneItem(const PhonePtr &phone,
                                                           const PhoneTypes &typesPopupItems,
                                                           const Rows &allComponents, bool editable)
{
    ItemListEmailPhoneUrl row;
    row.editable = editable;
    if (phone)
        row.setEntityPhone(phone);
    else
        row.setType(typeNoSelectPhone(typesPopupItems, allComponents));
    return row;
}

ItemListEmailPhoneUrl ItemListEmailPhoneUrl::initEmailItem(const EmailPtr &email,
                                                           const EmailTypes &typesPopupItems,
                                                           const Rows &allComponents, bool editable)
{
    ItemListEmailPhoneUrl row;
    row.editable = editable;
    if (email)
        row.setEntityEmail(email);
    else
        row.setType(typeNoSelectEmail(typesPopupItems, allComponents));
    return row;
}

ItemListEmailPhoneUrl ItemListEmailPhoneUrl::initURLItem(const UrlPtr &url, const UrlTypes &typesPopupItems,
                                                         const Rows &allComponents, bool editable)
{
    ItemListEmailPhoneUrl row;
    row.editable = editable;
    if (url)
        row.setEntityUrl(url);
    else
        row.setType(typeNoSelectURL(typesPopupItems, allComponents));
    return row;
}

std::shared_ptr<EntityPhoneType> ItemListEmailPhoneUrl::typeNoSelectPhone(const PhoneTypes &types,
                                                                          const Rows &allPhoneComponents)
{
    return firstTypeWithoutRow(types, allPhoneComponents);
}

std::shared_ptr<EntityEmailType> ItemListEmailPhoneUrl::typeNoSelectEmail(const EmailTypes &types,
                                                                          const Rows &allEmailComponents)
{
    return firstTypeWithoutRow(types, allEmailComponents);
}

std::shared_ptr<EntityURLType> ItemListEmailPhoneUrl::typeNoSelectURL(const UrlTypes &types,
                                                                      const Rows &allURLComponents)
{
    return firstTypeWithoutRow(types, allURLComponents);
}

void ItemListEmailPhoneUrl::setPhoneNumber(const QString &number)
{
    shownText = number;
    linkTarget = number.isEmpty() ? QString() : QStringLiteral("tel:") + dialled(number);
}

void ItemListEmailPhoneUrl::setEmailString(const QString &email)
{
    shownText = email;
    linkTarget = email.isEmpty() ? QString() : QStringLiteral("mailto:") + MailDraft::encodedAddress(email);
}

void ItemListEmailPhoneUrl::setURLString(const QString &url)
{
    shownText = url;
    const QString trimmed = url.trimmed();
    linkTarget = trimmed.isEmpty() ? QString() : escaped(withScheme(trimmed));
}

void ItemListEmailPhoneUrl::setEntityPhone(const PhonePtr &phone)
{
    boundRow = phone;
    setPhoneNumber(phone ? phone->number() : QString());
    setType(phone ? phone->type() : nullptr);
}

void ItemListEmailPhoneUrl::setEntityEmail(const EmailPtr &email)
{
    boundRow = email;
    setEmailString(email ? email->mail() : QString());
    setType(email ? email->type() : nullptr);
}

void ItemListEmailPhoneUrl::setEntityUrl(const UrlPtr &url)
{
    boundRow = url;
    setURLString(url ? url->url() : QString());
    setType(url ? url->type() : nullptr);
}
