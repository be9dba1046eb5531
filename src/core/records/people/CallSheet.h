#pragma once

#include "records/people/ItemListEmailPhoneUrl.h"

#include <vector>

/// What is at hand while one calls somebody: their numbers, what is to be talked about, and what was noted
/// last. For a company, that of everybody who works there. Main thread only.
class CallSheet
{
public:
    /// \param called a contact or a company.
    explicit CallSheet(ObjectPtr called);

    struct Number
    {
        /// Whose it is, where it is not that of the one who is called, and its type.
        QString owner;
        QString words;
        /// A "tel:" address.
        QString link;
    };
    QString title() const;
    /// At most `mostNumbers`.
    std::vector<Number> numbers() const;
    /// How many others there are.
    std::size_t moreNumbers() const;
    /// The open Emails/Calls, by when they are due.
    std::vector<TaskPtr> calls() const;
    using Notes = std::vector<std::shared_ptr<EntityNote>>;
    /// The newest first, at most `mostNotes`.
    Notes lastNotes() const;
    /// How many others there are.
    std::size_t moreNotes() const;

    /// Ticks a call off by its rules. False if they stopped it, which the user is told.
    static bool tick(const TaskPtr &call);
    /// Whom a note about a call is about; null if nobody can know.
    ContactPtr noteContact(const TaskPtr &call) const;
    /// The company that is called; null for a person.
    CompanyPtr company() const { return std::dynamic_pointer_cast<EntityCompany>(called); }

    static constexpr std::size_t mostNotes = 5;
    /// Nobody calls a whole concern from one page.
    static constexpr std::size_t mostNumbers = 20;
    /// Whether the one who is called is no more.
    bool isGone() const;

private:
    std::vector<Number> allNumbers() const;
    Notes allNotes() const;
    ContactPtr contact() const { return std::dynamic_pointer_cast<EntityContacts>(called); }

    ObjectPtr called;
};
