#pragma once

#include "store/entities/Entities.h"

#include <QString>

/// A row of a form that shows one project of a contact.
class ItemListProject
{
public:
    ItemListProject(const ProjectPtr &project, bool isEditable)
        : editable(isEditable)
    {
        setEntityProject(project);
    }

    /// Binds the project that this row stands for, and shows its title.
    void setEntityProject(const ProjectPtr &project)
    {
        boundRow = project;
        shownText = project ? project->title() : QString();
    }
    const QString &text() const { return shownText; }
    const ProjectPtr &entity() const { return boundRow; }
    bool isEditable() const { return editable; }

private:
    QString shownText;
    ProjectPtr boundRow;
    bool editable = false;
};
