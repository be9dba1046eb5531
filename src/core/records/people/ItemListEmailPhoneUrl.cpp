#include "records/people/ItemListEmailPhoneUrl.h"

#include "records/people/FreeType.h"

#include <QUrl>

namespace {

/// The decimal digits of a text, of any script, as those that a telephone knows.
QString digitsOf(const QString &text)
{
    QString digits;
    for (const char32_t character : text.toStdU32String()) {
        if (QChar::category(character) == QChar::Number_DecimalDigit)
            digits += QChar(u'0' + QChar::digitValue(character));
    }
    return digits;
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
    linkTarget = number.isEmpty() ? QString() : QStringLiteral("tel:") + digitsOf(number);
}

void ItemListEmailPhoneUrl::setEmailString(const QString &email)
{
    shownText = email;
    linkTarget = email.isEmpty() ? QString() : QStringLiteral("mailto:") + email;
}

void ItemListEmailPhoneUrl::setURLString(const QString &url)
{
    shownText = url;
    QString rest = url;
    rest.remove(QStringLiteral("http://")).remove(QStringLiteral("https://"));
    const QByteArray encoded = QUrl::toPercentEncoding(QStringLiteral("http://") + rest, "!$&'()*+,;=:@/?");
    linkTarget = url.isEmpty() ? QString() : QString::fromLatin1(encoded);
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
