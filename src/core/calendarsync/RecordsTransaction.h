#pragma once

#include "foundation/Alert.h"
#include "objectstore/Transaction.h"
#include "store/entities/Entities.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

/// The changes that one command makes to records, to their events and to what hangs on them.
///
/// It is handed to every rule that takes part. A pass over the calendars that a rule asks for runs once for
/// all of them, before the commit, since each pass costs as much as one for all tasks; what the rules have to
/// ask is asked once, and the answer holds for the whole command. Main thread only.
class RecordsTransaction : public Transaction
{
public:
    /// One of the store in use. \param name what the user did, for the undo menu.
    explicit RecordsTransaction(QString name = {}, ChangeAuthor author = ChangeAuthor::User);

    /// Wants a pass that takes away no other row than that of the task, and after it what follows from it,
    /// unless the task has gone.
    /// \param held what the calendars held when the pass was asked for, so that it does not fail for a
    /// calendar that falls silent until then.
    void passFor(const TaskPtr &task, std::function<void()> afterwards = {},
                 std::shared_ptr<void> held = nullptr);
    /// Runs the pass, if one is wanted.
    void settle();
    /// Settles, and commits.
    [[nodiscard]] OptionalError commit() override;

    /// Asks, or gives the answer that the same question got before. Numbers as those of `Alert::run`.
    int ask(const AlertQuestion &question);
    /// Tells the user something, once. Both texts go through the translations.
    void tell(const QString &title, const QString &message);

private:
    struct Waiting
    {
        TaskPtr task;
        std::function<void()> afterwards;
        std::shared_ptr<void> held;
    };
    std::vector<Waiting> waiting;
    std::vector<std::pair<AlertQuestion, int>> answers;
};
