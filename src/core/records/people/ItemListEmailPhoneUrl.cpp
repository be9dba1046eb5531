#include "records/people/ItemListEmailPhoneUrl.h"

#include "records/people/FreeType.h"

#include <QRegularExpression>
#include <QUrl>

namespace {

/// The decimal digits of a text, of any script, as those that a telephone knows, with the sign of an
/// international number before them.
QString dialled(const QString &text)
{
    QString digits;
    for (const char32_t character : text.toStdU32String()) {
        constexpr char32_t wideSign = U'\uFF0B';
        const bool isSign = character == U'+' || character == wideSign;
        if (QChar::category(character) == QChar::Number_DecimalDigit)
            digits += QChar(u'0' + QChar::digitValue(character));
        else if (isSign && digits.isEmpty())
            digits = u'+';
    }
    return digits;
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
    linkTarget = email.isEmpty() ? QString() : QStringLiteral("mailto:") + email;
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
