#include "calendarsync/RecordsTransaction.h"

#include "calendarsync/CalendarPass.h"
#include "foundation/Localization.h"
#include "store/entities/MainContext.h"

RecordsTransaction::RecordsTransaction(QString name, ChangeAuthor author)
    : Transaction(mainContext(), author, std::move(name))
{}

void RecordsTransaction::passFor(const TaskPtr &task, std::function<void()> afterwards,
                                 std::shared_ptr<void> held)
{
    waiting.push_back({task, std::move(afterwards), std::move(held)});
}

void RecordsTransaction::settle()
{
    const std::vector<Waiting> all = std::exchange(waiting, {});
    if (all.empty())
        return;
    std::vector<TaskPtr> tasks;
    for (const Waiting &one : all)
        tasks.push_back(one.task);
    CalendarPass::syncCalendarToAppWithTasks(tasks);
    for (const Waiting &one : all) {
        if (one.afterwards && one.task->context() && !one.task->isDeleted())
            one.afterwards();
    }
}

OptionalError RecordsTransaction::commit()
{
    settle();
    return Transaction::commit();
}

int RecordsTransaction::ask(const AlertQuestion &question)
{
    for (const auto &[asked, answer] : answers) {
        if (asked == question)
            return answer;
    }
    const int answer = Alert::run(question);
    answers.emplace_back(question, answer);
    return answer;
}

void RecordsTransaction::tell(const QString &title, const QString &message)
{
    const QString shownTitle = localized(title);
    ask({shownTitle, shownTitle, localized(message), {localized(QStringLiteral("OK"))}});
}
