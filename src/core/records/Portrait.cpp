#include "records/Portrait.h"

#include "store/entities/Entities.h"
#include "store/entities/FullName.h"

/// The first letter or digit as a capital, whatever stands before it; else the first character.
static QString initialOf(const QString &name)
{
    const std::u32string characters = name.left(64).trimmed().toStdU32String();
    if (characters.empty())
        return {};
    const auto letter =
        std::ranges::find_if(characters, [](char32_t one) { return QChar::isLetterOrNumber(one); });
    const char32_t first = letter == characters.end() ? characters.front() : *letter;
    return QString::fromUcs4(&first, 1).toUpper();
}

QString Portrait::initialsOf(const QString &firstName, const QString &lastName)
{
    const QString first = initialOf(firstName);
    const QString last = initialOf(lastName);
    return preferredNameOrder() == NameOrder::FirstNameFirst ? first + last : last + first;
}

QString Portrait::initialsOf(const QString &title)
{
    return initialOf(title);
}

Portrait Portrait::of(const EntityContacts &contact)
{
    return {contact.photoName(), initialsOf(contact.firstName(), contact.lastName())};
}

Portrait Portrait::of(const EntityCompany &company)
{
    return {company.photoName(), initialsOf(company.title())};
}
