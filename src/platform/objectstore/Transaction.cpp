#include "objectstore/Transaction.h"

#include "foundation/Log.h"
#include "objectstore/ChangeJournal.h"
#include "objectstore/ManagedObjectContext.h"

#include <QRandomGenerator>

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
    if (isInside)
        return;
    changed.openTransaction = nullptr;
    changed.transactionEnded();
}

OptionalError Transaction::commit()
{
    return isInside ? std::nullopt : changed.commitAll();
}

OptionalError Transaction::commitPart()
{
    if (!stepOfParts)
        stepOfParts = QRandomGenerator::global()->generate();
    return Transaction::commit();
}

/// What waits is written first, so that it is still captured.
JournalPause::JournalPause(ManagedObjectContext &context)
    : paused(context)
    , wasPaused(context.isJournalPaused)
{
    // A failure stays with the changes and is reported by the commit.
    paused.write().ignore();
    paused.isJournalPaused = true;
    paused.pauseCapture();
}

JournalPause::~JournalPause()
{
    if (wasPaused)
        return;
    paused.write().ignore();
    paused.isJournalPaused = false;
    paused.journal->setCapturing(true);
}
