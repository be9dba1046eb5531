#include "records/people/CallSheet.h"

#include "foundation/Localization.h"
#include "foundation/TextFolding.h"
#include "records/copies/MVTask.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

constexpr std::size_t mostNotes = 5;
/// Nobody calls a whole concern from one page.
constexpr std::size_t mostNumbers = 20;

CallSheet::CallSheet(ObjectPtr calledOne)
    : called(std::move(calledOne))
{}

bool CallSheet::isGone() const
{
    return called->isDeleted() || !called->context();
}

QString CallSheet::title() const
{
    return contact() ? contact()->fullName() : company()->title();
}

std::vector<CallSheet::Number> CallSheet::numbers() const
{
    std::vector<Number> found;
    const auto add = [&found](const auto &phones, const QString &owner) {
        for (const auto &phone : phones) {
            ItemListEmailPhoneUrl item = ItemListEmailPhoneUrl::initPhoneItem(phone, {}, {}, false);
            if (item.isEmpty() || found.size() == mostNumbers)
                continue;
            const auto type = phone->type();
            const QString typeInWords = type ? localized(type->title()) : QString();
            QStringList whose{owner, typeInWords};
            whose.removeAll(QString());
            found.push_back({whose.join(u", "_s), item.text(), item.link()});
        }
    };
    if (const ContactPtr person = contact()) {
        add(person->phone(), {});
        if (const CompanyPtr works = person->company())
            add(works->phone(), works->title());
    } else {
        add(company()->phone(), {});
        for (const ContactPtr &employee : DBWorker::sortContacta(company()->contact()))
            add(employee->phone(), employee->fullName());
    }
    return found;
}

std::vector<TaskPtr> CallSheet::calls() const
{
    std::vector<TaskPtr> tasks = contact() ? contact()->task() : company()->task();
    if (const CompanyPtr whole = company()) {
        for (const ContactPtr &person : whole->contact())
            std::ranges::copy(person->task(), std::back_inserter(tasks));
        std::ranges::sort(tasks);
        tasks.erase(std::unique(tasks.begin(), tasks.end()), tasks.end());
    }
    std::erase_if(tasks, [](const TaskPtr &task) {
        return task->type() != TaskType::EmailCall || task->status() == TaskStatus::Done;
    });
    std::ranges::stable_sort(tasks, [](const TaskPtr &one, const TaskPtr &other) {
        const OptionalDate due = one->dueDate();
        const OptionalDate otherDue = other->dueDate();
        if (due != otherDue)
            return due && otherDue ? *due < *otherDue : due.has_value();
        return localizedCaseInsensitiveCompare(one->title(), other->title()) < 0;
    });
    return tasks;
}

std::vector<std::shared_ptr<EntityNote>> CallSheet::lastNotes() const
{
    std::vector<std::shared_ptr<EntityNote>> notes;
    if (const ContactPtr person = contact()) {
        notes = person->note();
    } else {
        for (const ContactPtr &employee : company()->contact())
            std::ranges::copy(employee->note(), std::back_inserter(notes));
    }
    const auto madeLater = [](const auto &one, const auto &other) {
        return one->creationDate().value_or(Date()) > other->creationDate().value_or(Date());
    };
    std::ranges::stable_sort(notes, madeLater);
    notes.resize(std::min(notes.size(), mostNotes));
    return notes;
}

bool CallSheet::tick(const TaskPtr &call)
{
    MVTask copy(call);
    copy.changeStatusType(TaskStatus::Done, true);
    return call->status() == TaskStatus::Done;
}

ContactPtr CallSheet::noteContact(const TaskPtr &call) const
{
    return contact() ? contact() : call->delegateToUser();
}
