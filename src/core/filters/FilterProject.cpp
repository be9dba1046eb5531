#include "filters/FilterProject.h"

#include "foundation/Localization.h"

using Editor = FilterRow::Editor;

static FilterRow criterionRow(int tag, const QString &key, Editor editor = Editor::PopUp)
{
    return {tag, key, localized(key), editor};
}

FilterProject::FilterProject()
    : ListFilter(SavedFilter::ofProjects(), {{1, QStringLiteral("Title"), localized(QStringLiteral("Title")),
                                              Editor::Text, localized(QStringLiteral("Type project title"))},
                                             criterionRow(2, QStringLiteral("Category")),
                                             criterionRow(3, QStringLiteral("Status")),
                                             criterionRow(4, QStringLiteral("Priority")),
                                             criterionRow(5, QStringLiteral("Period"), Editor::Period),
                                             criterionRow(6, QStringLiteral("Delegate"), Editor::Contacts)})
{}
