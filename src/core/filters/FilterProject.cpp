#include "filters/FilterProject.h"

#include "foundation/Localization.h"

static FilterRow row(int tag, const QString &key)
{
    return {tag, key, localized(key)};
}

FilterProject::FilterProject()
    : ListFilter(SavedFilter::ofProjects(),
                 {row(1, QStringLiteral("Title")), row(2, QStringLiteral("Category")),
                  row(3, QStringLiteral("Status")), row(4, QStringLiteral("Priority")),
                  row(5, QStringLiteral("Period")), row(6, QStringLiteral("Delegate"))})
{}
