#include "records/people/CallSheet.h"

#include "foundation/Localization.h"
#include "foundation/TextFolding.h"
#include "records/copies/MVTask.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

template <typename Values>
static Values firstOf(Values values, std::size_t most)
{
    values.resize(std::min(values.size(), most));
    return values;
}

static std::size_t beyond(std::size_t count, std::size_t most)
{
    return count - std::min(count, most);
}

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
    return firstOf(allNumbers(), mostNumbers);
}

std::size_t CallSheet::moreNumbers() const
{
    return beyond(allNumbers().size(), mostNumbers);
}

std::vector<CallSheet::Number> CallSheet::allNumbers() const
{
    std::vector<Number> found;
    const auto add = [&found](const auto &phones, const QString &owner) {
        for (const auto &phone : phones) {
            ItemListEmailPhoneUrl item = ItemListEmailPhoneUrl::initPhoneItem(phone, {}, {}, false);
            if (item.isEmpty())
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

CallSheet::Notes CallSheet::lastNotes() const
{
    return firstOf(allNotes(), mostNotes);
}

std::size_t CallSheet::moreNotes() const
{
    return beyond(allNotes().size(), mostNotes);
}

CallSheet::Notes CallSheet::allNotes() const
{
    Notes notes;
    if (const ContactPtr person = contact()) {
        notes = person->note();
    } else {
        for (const ContactPtr &employee : company()->contact())
            std::ranges::copy(employee->note(), std::back_inserter(notes));
        for (const auto &note : company()->note()) {
            if (std::ranges::find(notes, note) == notes.end())
                notes.push_back(note);
        }
    }
    const auto madeLater = [](const auto &one, const auto &other) {
        return one->creationDate().value_or(Date()) > other->creationDate().value_or(Date());
    };
    std::ranges::stable_sort(notes, madeLater);
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
