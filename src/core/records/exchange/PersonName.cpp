#include "records/exchange/PersonName.h"

#include "store/entities/MainContext.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Given and family name. Empty, and not absent, where there is none, as in imported contacts.
using Names = std::pair<QString, QString>;

/// Where the family name ends in "Family, Given", in which a comma of a name is written twice; -1 for none.
qsizetype placeOfComma(const QString &text)
{
    for (qsizetype place = text.indexOf(u','); place >= 0; place = text.indexOf(u',', place + 2))
        if (place + 1 == text.size() || text[place + 1] != u',')
            return place;
    return -1;
}

QString withSingleCommas(QString text)
{
    return u""_s + text.replace(u",,"_s, u","_s).trimmed();
}

QString withDoubleCommas(QString text)
{
    return text.replace(u","_s, u",,"_s);
}

Names namesIn(const QString &text)
{
    if (const qsizetype comma = placeOfComma(text); comma >= 0)
        return {withSingleCommas(text.mid(comma + 1)), withSingleCommas(text.left(comma))};
    const qsizetype blank = text.lastIndexOf(u' ');
    if (blank < 0)
        return {withSingleCommas(text), u""_s};
    return {withSingleCommas(text.left(blank)), withSingleCommas(text.mid(blank + 1))};
}

/// An absent name is found like an empty one.
ContactPtr personOf(const Names &names)
{
    if (const ContactPtr person = EntityContacts::firstName(names.first, names.second))
        return person;
    if (!names.first.isEmpty() && !names.second.isEmpty())
        return nullptr;
    const auto is = [](const std::string &column, const QString &name) {
        return name.isEmpty() ? Predicate::format(column + " = nil")
                              : Predicate::format(column + " = %@", name);
    };
    return mainContext().fetchFirst<EntityContacts>(
        EntityContacts::fetchRequest().where(is("firstName", names.first) && is("lastName", names.second)));
}

} // namespace

QString personname::written(const EntityContacts &person)
{
    const QString full = person.fullName();
    const Names names(u""_s + person.firstName(), u""_s + person.lastName());
    if (full.isEmpty() || namesIn(full) == names)
        return full;
    return (withDoubleCommas(names.second) + u", "_s + withDoubleCommas(names.first)).trimmed();
}

ContactPtr personname::found(const QString &text)
{
    const QString name = text.simplified();
    if (name.isEmpty())
        return nullptr;
    if (const ContactPtr person = personOf(namesIn(name)))
        return person;
    // Either part can be of several words, and come first.
    for (qsizetype blank = name.indexOf(u' '); blank >= 0; blank = name.indexOf(u' ', blank + 1)) {
        const QString one = name.left(blank);
        const QString other = name.mid(blank + 1);
        for (const Names &names : {Names(one, other), Names(other, one)})
            if (const ContactPtr person = personOf(names))
                return person;
    }
    return name.contains(u' ') ? nullptr : personOf({u""_s, name});
}

ContactPtr personname::foundOrMade(const QString &text)
{
    const QString name = text.simplified();
    ContactPtr person = found(name);
    if (person || name.isEmpty())
        return person;
    const Names names = namesIn(name);
    person = mainContext().insert<EntityContacts>();
    person->setFirstName(names.first);
    person->setLastName(names.second);
    return person;
}
