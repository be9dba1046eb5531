#include "records/exchange/ProjectName.h"

#include "records/dates/MVDate.h"
#include "records/exchange/TaskImport.h"
#include "store/entities/MainContext.h"

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

FetchRequest requestFor(const QString &title)
{
    return EntityProject::fetchRequest().where(Predicate::format("title = %@", title));
}

QString identifierOfName(const QString &title)
{
    return TaskImport::identifierOf(u"project named "_s + title);
}

} // namespace

ProjectPtr projectname::found(const QString &title)
{
    return title.isEmpty() ? nullptr : mainContext().fetchFirst<EntityProject>(requestFor(title));
}

ProjectPtr projectname::made(const QString &title, const QString &identifier)
{
    ManagedObjectContext &context = mainContext();
    const QString wanted = identifier.isEmpty() ? identifierOfName(title) : identifier;
    // The project of that name may have another title by now.
    const ProjectPtr project = context.object(EntityProject::entityName, wanted)
                                   ? context.insert<EntityProject>()
                                   : std::static_pointer_cast<EntityProject>(
                                         context.insertObject(EntityProject::entityName, wanted));
    project->setTitle(title);
    project->setStatus(TaskStatus::Open);
    project->setPriority(Priority::None);
    project->setStage(0);
    project->setCreationDate(MVDate::date());
    return project;
}

bool projectname::isBare(const EntityProject &project)
{
    return project.details().isEmpty() && !project.startDate() && !project.dueDate() && !project.category() &&
           project.status().value_or(TaskStatus::Open) == TaskStatus::Open &&
           project.priority().value_or(Priority::None) == Priority::None;
}

ProjectPtr projectname::knownByName(const QString &title)
{
    const auto named = std::static_pointer_cast<EntityProject>(
        mainContext().object(EntityProject::entityName, identifierOfName(title)));
    if (named && named->title() == title && isBare(*named))
        return named;
    // Earlier versions wrote nothing but the title.
    for (const ProjectPtr &project : mainContext().fetch<EntityProject>(requestFor(title)))
        if (!project->creationDate() && isBare(*project))
            return project;
    return nullptr;
}

bool projectname::isCompletedBy(OptionalDate creationDateOfFile, const EntityProject &project)
{
    const OptionalDate here = project.creationDate();
    // Files have whole seconds.
    return !here || (creationDateOfFile && isBare(project) &&
                     here->referenceSeconds() - creationDateOfFile->referenceSeconds() >= 1);
}
