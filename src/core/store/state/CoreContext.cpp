#include "store/state/CoreContext.h"

#include "store/entities/MainContext.h"

static const CoreContext *contextInUse = nullptr;

CoreContext::CoreContext()
{
    contextInUse = this;
}

CoreContext::~CoreContext()
{
    if (contextInUse == this)
        contextInUse = nullptr;
}

const CoreContext &CoreContext::current()
{
    if (contextInUse)
        return *contextInUse;
    static const CoreContext none;
    return none;
}

QString CoreContext::version()
{
    return QStringLiteral(MORVANE_VERSION);
}

ManagedObjectContext &mainContext()
{
    return *CoreContext::current().store();
}
