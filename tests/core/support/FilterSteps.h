#pragma once

#include "CoreTest.h"

#include "filters/FilterEntries.h"
#include "filters/ListFilter.h"
#include "store/queries/DBWorker.h"

/// A program whose saved filters are as on the first day.
class FilterTest : public CoreTest
{
protected:
    FilterTest() { forgetFilters(); }
    ~FilterTest() override { forgetFilters(); }

    static UserDefaults &defaults() { return UserDefaults::standard(); }
    /// The criterion of that key in an entry.
    static QVariantMap criterion(const FilterEntry &entry, const QString &key)
    {
        const QVariantList array = entry.value(u"Array"_qs).toList();
        const int place = DBWorker::indexObject(key, array);
        return place < 0 ? QVariantMap() : array.at(place).toMap();
    }
    static FilterEntry taskEntry(const QString &list)
    {
        return defaults().object(settings::taskFilters).toMap().value(list).toMap();
    }

    ContactPtr person(const QString &first, const QString &last = {})
    {
        const auto contact = context().insert<EntityContacts>();
        contact->setFirstName(first);
        contact->setLastName(last);
        return contact;
    }
    CompanyPtr company(const QString &title)
    {
        const auto made = context().insert<EntityCompany>();
        made->setTitle(title);
        return made;
    }

private:
    static void forgetFilters()
    {
        for (const QString &key : {settings::taskFilters, settings::projectsFilters,
                                   settings::contactsFilters, settings::taskGrouped})
            defaults().removeObject(key);
        filters::seedDefaults();
    }
};
