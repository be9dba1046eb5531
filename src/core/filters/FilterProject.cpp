#include "filters/FilterProject.h"

#include "foundation/Localization.h"

static FilterRow criterionRow(int tag, const QString &key)
{
    return {tag, key, localized(key)};
}

FilterProject::FilterProject()
    : ListFilter(SavedFilter::ofProjects(),
                 {criterionRow(1, QStringLiteral("Title")), criterionRow(2, QStringLiteral("Category")),
                  criterionRow(3, QStringLiteral("Status")), criterionRow(4, QStringLiteral("Priority")),
                  criterionRow(5, QStringLiteral("Period")), criterionRow(6, QStringLiteral("Delegate"))})
{}
