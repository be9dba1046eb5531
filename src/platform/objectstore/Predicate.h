#pragma once

#include "objectstore/ManagedObject.h"
#include "objectstore/Value.h"

#include <QByteArray>

#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace predicate {
struct Node;
}

/// What stands for a `%@`, `%d` or `%i` of a predicate: a value, an object, several of either, or nothing.
class PredicateArgument
{
public:
    PredicateArgument(std::nullptr_t) {}
    PredicateArgument(bool boolean)
        : content(Value(boolean))
    {}
    PredicateArgument(int number)
        : content(Value(qint64(number)))
    {}
    /// The number of an enumerator.
    template <typename Enum>
    requires std::is_enum_v<Enum> && std::same_as < std::underlying_type_t<Enum>,
    int > PredicateArgument(Enum number)
        : content(Value(static_cast<qint64>(number)))
    {}
    PredicateArgument(qint64 number)
        : content(Value(number))
    {}
    PredicateArgument(double number)
        : content(storable(Value(number)))
    {}
    PredicateArgument(Date date)
        : content(storable(Value(date)))
    {}
    PredicateArgument(OptionalDate date)
        : content(date ? storable(Value(*date)) : Value())
    {}
    PredicateArgument(const QString &text)
        : content(storable(Value(text)))
    {}
    PredicateArgument(Value value)
        : content(storable(std::move(value)))
    {}
    /// A literal would be taken for a boolean.
    PredicateArgument(const char *) = delete;
    template <typename T>
    requires std::derived_from<T, ManagedObject> PredicateArgument(const std::shared_ptr<T> &object)
        : content(object ? Value(object->identifier()) : Value())
    {}
    PredicateArgument(const std::vector<QString> &texts);
    PredicateArgument(std::vector<Value> values);
    template <typename T>
    requires std::derived_from<T, ManagedObject>
    PredicateArgument(const std::vector<std::shared_ptr<T>> &objects)
        : content(identifiersOf(objects))
    {}

    bool isCollection() const { return std::holds_alternative<std::vector<Value>>(content); }
    const Value &value() const { return std::get<Value>(content); }
    const std::vector<Value> &collection() const { return std::get<std::vector<Value>>(content); }

private:
    template <typename T>
    static std::vector<Value> identifiersOf(const std::vector<std::shared_ptr<T>> &objects)
    {
        std::vector<Value> identifiers;
        for (const auto &object : objects) {
            if (object)
                identifiers.emplace_back(object->identifier());
        }
        return identifiers;
    }

    std::variant<Value, std::vector<Value>> content;
};

/// A piece of SQL with the values bound to its question marks, in their order.
struct SqlFragment
{
    QByteArray text;
    std::vector<Value> bindings;
};

/// A condition on objects, written as a format string and run either as SQL or on an object in memory; both
/// agree.
///
/// Grammar: comparisons `=` `==` `!=` `<>` `<` `<=` `=<` `>` `>=` `=>` between keys, arguments (`%@`, `%d`,
/// `%i`), numbers, quoted texts, `true`/`yes`, `false`/`no` and `nil`/`null`; `beginswith`, `endswith`,
/// `contains` with an optional
/// `[cd]` (case and diacritics ignored, folded by ICU); `in`; `any` before a key; `key.@count`; dotted keys
/// through to-one relationships; `and`/`&&`, `or`/`||`, `not`/`!`, parentheses. `and` binds tighter than
/// `or`. Words are recognised in any case.
///
/// Absent values: equality with a value fails, inequality with a value passes, order comparisons fail; `==
/// nil` and
/// `!= nil` test presence, and emptiness on a to-many relationship.
class Predicate
{
public:
    /// The predicate that every object passes.
    Predicate();

    /// Parses a format string. A wrong one is a programming error and ends the process with a message.
    template <typename... Arguments>
    static Predicate format(std::string_view text, Arguments &&...arguments)
    {
        return parse(text, {PredicateArgument(std::forward<Arguments>(arguments))...});
    }
    static Predicate parse(std::string_view text, std::vector<PredicateArgument> arguments);
    /// The same for a text that may be wrong: absent instead of an end. `problem` takes the reason, if given.
    static std::optional<Predicate> tryParse(std::string_view text, std::vector<PredicateArgument> arguments,
                                             QString *problem = nullptr);

    /// Passes what passes all of them; with none, everything.
    static Predicate allOf(const std::vector<Predicate> &predicates);
    static Predicate anyOf(const std::vector<Predicate> &predicates);
    Predicate operator&&(const Predicate &other) const { return allOf({*this, other}); }

    bool isAlwaysTrue() const;

    /// Why it does not fit the entity (an unknown key, an operator that the key's type has not), or nothing.
    std::optional<QString> problemFor(const ManagedObjectModel &model, const EntityDescription &entity) const;

    /// The SQL condition on a row of the entity's table, which the query must name `row`.
    SqlFragment sql(const ManagedObjectModel &model, const EntityDescription &entity) const;

    /// Whether an object passes.
    bool evaluate(const ManagedObject &object) const;

private:
    explicit Predicate(std::shared_ptr<const predicate::Node> node);

    std::shared_ptr<const predicate::Node> root;
};
