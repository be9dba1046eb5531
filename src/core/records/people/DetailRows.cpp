#include "records/people/DetailRows.h"

#include "foundation/Localization.h"
#include "records/Functional.h"
#include "store/queries/DBWorker.h"

using namespace Qt::Literals::StringLiterals;

DetailRows::DetailRows(DetailItems &lists, DetailKind listKind, Edit editList)
    : items(lists)
    , kind(listKind)
    , edit(std::move(editList))
{}

QStringList DetailRows::placeholders() const
{
    switch (kind) {
    case DetailKind::Phone:
        return {localized(u"Number"_s)};
    case DetailKind::Email:
        return {localized(u"Email"_s)};
    case DetailKind::Url:
        return {localized(u"URL"_s)};
    case DetailKind::Address:
        break;
    }
    return {localized(u"Street"_s), localized(u"City"_s), localized(u"State"_s), localized(u"ZIP"_s),
            localized(u"Country"_s)};
}

QString DetailRows::sparePlaceholder() const
{
    return kind == DetailKind::Address ? localized(u"Street"_s) : QString();
}

// The list

ItemListEmailPhoneUrl::Rows &DetailRows::lines() const
{
    if (kind == DetailKind::Phone)
        return items.phones;
    return kind == DetailKind::Email ? items.emails : items.urls;
}

QString &DetailRows::addressField(int item, int field) const
{
    MVAddress &values = items.addresses.at(static_cast<std::size_t>(item)).values();
    QString *const fields[] = {&values.street1, &values.city,    &values.state,
                               &values.zip,     &values.country, &values.street2};
    return *fields[field];
}

int DetailRows::count() const
{
    return static_cast<int>(kind == DetailKind::Address ? items.addresses.size() : lines().size());
}

QString DetailRows::text(int item, int field) const
{
    return kind == DetailKind::Address ? addressField(item, field)
                                       : lines().at(static_cast<std::size_t>(item)).text();
}

QString DetailRows::words(int item) const
{
    const auto place = static_cast<std::size_t>(item);
    return kind == DetailKind::Address ? items.addresses.at(place).text() : lines().at(place).text();
}

QString DetailRows::link(int item) const
{
    if (kind != DetailKind::Address)
        return lines().at(static_cast<std::size_t>(item)).link();
    const QString place = words(item);
    return place.isEmpty() ? QString() : Functional::mapPageOf(place);
}

// Types

template <typename List>
static std::vector<ObjectPtr> objectsOf(const List &list)
{
    return {list.begin(), list.end()};
}

const std::vector<ObjectPtr> &DetailRows::offered() const
{
    if (!known.empty())
        return known;
    if (kind == DetailKind::Phone)
        known = objectsOf(DBWorker::allPhoneType());
    else if (kind == DetailKind::Email)
        known = objectsOf(DBWorker::allEmailType());
    else if (kind == DetailKind::Url)
        known = objectsOf(DBWorker::allURLType());
    else
        known = objectsOf(DBWorker::allAddressType());
    return known;
}

QStringList DetailRows::types() const
{
    QStringList titles;
    for (const ObjectPtr &type : offered()) {
        const auto *title = std::get_if<QString>(&type->valueForKey("title"));
        titles.append(title ? localized(*title) : QString());
    }
    return titles;
}

int DetailRows::type(int item) const
{
    const auto place = static_cast<std::size_t>(item);
    const ObjectPtr chosen =
        kind == DetailKind::Address ? ObjectPtr(items.addresses.at(place).type()) : lines().at(place).type();
    const auto found = std::ranges::find(offered(), chosen);
    return found == known.end() ? -1 : static_cast<int>(found - known.begin());
}

// Changes

void DetailRows::write(ItemListEmailPhoneUrl &line, const QString &text) const
{
    if (kind == DetailKind::Phone)
        line.setPhoneNumber(text);
    else if (kind == DetailKind::Email)
        line.setEmailString(text);
    else
        line.setURLString(text);
}

void DetailRows::setText(int item, int field, const QString &newText)
{
    if (newText == text(item, field))
        return;
    edit([&] {
        if (kind == DetailKind::Address)
            addressField(item, field) = newText;
        else
            write(lines().at(static_cast<std::size_t>(item)), newText);
        items.controlTextDidChange();
    });
}

void DetailRows::setType(int item, int type)
{
    const auto place = static_cast<std::size_t>(item);
    const ObjectPtr chosen = offered().at(static_cast<std::size_t>(type));
    edit([&] {
        if (kind == DetailKind::Address)
            items.addresses.at(place).setType(std::static_pointer_cast<EntityAddressType>(chosen));
        else
            lines().at(place).setType(chosen);
    });
}

void DetailRows::remove(int item)
{
    if (item >= count() - 1)
        return;
    edit([&] {
        if (kind == DetailKind::Address)
            items.addresses.erase(items.addresses.begin() + item);
        else
            lines().erase(lines().begin() + item);
    });
}
