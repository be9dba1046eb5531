#include "objectstore/Transaction.h"

#include "foundation/Log.h"
#include "objectstore/ManagedObjectContext.h"

#include <utility>

Transaction::Transaction(ManagedObjectContext &context, ChangeAuthor author, QString name)
    : changed(context)
    , writer(author)
    , undoName(std::move(name))
    , isInside(context.openTransaction != nullptr)
{
    if (isInside)
        return;
    if (author != ChangeAuthor::User) {
        // If this fails, the changes wait and are saved with those of this transaction.
        if (const auto error = changed.save())
            Log::line(error->message);
    }
    changed.openTransaction = this;
}

Transaction::~Transaction()
{
    if (!isInside)
        changed.openTransaction = nullptr;
}

OptionalError Transaction::commit()
{
    return isInside ? std::nullopt : changed.commitAll();
}
