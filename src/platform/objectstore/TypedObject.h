#pragma once

#include "objectstore/ManagedObject.h"

#include <cstddef>
#include <string_view>

namespace typedobject {

/// A string literal as a template argument.
template <std::size_t N>
struct Name
{
    char text[N];
    consteval Name(const char (&literal)[N]) { std::copy_n(literal, N, text); }
    constexpr std::string_view view() const { return std::string_view(text, N - 1); }
};

} // namespace typedobject

/// Base of entity classes: typed access to columns whose numbers are found while compiling.
///
/// A derived class declares `attributeTable` (an array of AttributeDescription) and `relationshipTable` (an
/// array of RelationshipDescription); a name that is in neither, or has another type, does not compile.
template <typename Derived>
class TypedObject : public ManagedObject
{
public:
    template <typedobject::Name name>
    static consteval int column()
    {
        int number = 0;
        for (const AttributeDescription &attribute : Derived::attributeTable) {
            if (attribute.name == name.view())
                return number;
            ++number;
        }
        for (const RelationshipDescription &relationship : Derived::relationshipTable) {
            if (relationship.cardinality != Cardinality::ToOne)
                continue;
            if (relationship.name == name.view())
                return number;
            ++number;
        }
        throw "no such column";
    }

protected:
    template <typedobject::Name name, AttributeType type>
    static consteval int typedColumn()
    {
        constexpr int number = column<name>();
        if (Derived::attributeTable[static_cast<std::size_t>(number)].type != type)
            throw "the attribute has another type";
        return number;
    }

    template <typedobject::Name name>
    QString text() const
    {
        const auto *held = std::get_if<QString>(&value(typedColumn<name, AttributeType::String>()));
        return held ? *held : QString();
    }
    template <typedobject::Name name>
    void setText(const QString &newText)
    {
        setValue(typedColumn<name, AttributeType::String>(), newText.isNull() ? Value() : Value(newText));
    }

    template <typedobject::Name name, AttributeType type, typename Held, typename Shown>
    std::optional<Shown> plain() const
    {
        const auto *held = std::get_if<Held>(&value(typedColumn<name, type>()));
        return held ? std::optional<Shown>(static_cast<Shown>(*held)) : std::nullopt;
    }
    template <typedobject::Name name, AttributeType type, typename Held, typename Shown>
    void setPlain(std::optional<Shown> shown)
    {
        setValue(typedColumn<name, type>(), shown ? Value(static_cast<Held>(*shown)) : Value());
    }
};

// Accessors of a column that are declared and defined in the class. An absent value is a null QString or an
// empty optional.
#define MANAGED_TEXT(name, setter)                                                                           \
    QString name() const                                                                                     \
    {                                                                                                        \
        return text<#name>();                                                                                \
    }                                                                                                        \
    void setter(const QString &newValue)                                                                     \
    {                                                                                                        \
        setText<#name>(newValue);                                                                            \
    }
#define MANAGED_PLAIN(name, setter, type, Held, Shown)                                                       \
    std::optional<Shown> name() const                                                                        \
    {                                                                                                        \
        return plain<#name, AttributeType::type, Held, Shown>();                                             \
    }                                                                                                        \
    void setter(std::optional<Shown> newValue)                                                               \
    {                                                                                                        \
        setPlain<#name, AttributeType::type, Held, Shown>(newValue);                                         \
    }
#define MANAGED_INTEGER(name, setter) MANAGED_PLAIN(name, setter, Integer, qint64, int)
/// A number of which an enumeration names some; the others are kept as they are.
#define MANAGED_ENUM(Enum, name, setter) MANAGED_PLAIN(name, setter, Integer, qint64, Enum)
#define MANAGED_DOUBLE(name, setter) MANAGED_PLAIN(name, setter, Double, double, double)
#define MANAGED_BOOLEAN(name, setter) MANAGED_PLAIN(name, setter, Boolean, bool, bool)
#define MANAGED_DATE(name, setter) MANAGED_PLAIN(name, setter, Date, Date, Date)

// Accessors of relationships: declared in the class, defined in a source file where the target is complete.
#define MANAGED_TO_ONE(Target, name, setter)                                                                 \
    std::shared_ptr<Target> name() const;                                                                    \
    void setter(const std::shared_ptr<Target> &target);
#define MANAGED_TO_MANY(Target, name, setter)                                                                \
    std::vector<std::shared_ptr<Target>> name() const;                                                       \
    void setter(const std::vector<std::shared_ptr<Target>> &targets);
#define MANAGED_TO_ONE_DEFINITION(Class, Target, name, setter)                                               \
    std::shared_ptr<Target> Class::name() const                                                              \
    {                                                                                                        \
        return std::static_pointer_cast<Target>(related(column<#name>()));                                   \
    }                                                                                                        \
    void Class::setter(const std::shared_ptr<Target> &target)                                                \
    {                                                                                                        \
        setRelated(column<#name>(), target);                                                                 \
    }
#define MANAGED_TO_MANY_DEFINITION(Class, Target, name, setter)                                              \
    std::vector<std::shared_ptr<Target>> Class::name() const                                                 \
    {                                                                                                        \
        std::vector<std::shared_ptr<Target>> objects;                                                        \
        for (const ObjectPtr &object : relatedObjects(#name))                                                \
            objects.push_back(std::static_pointer_cast<Target>(object));                                     \
        return objects;                                                                                      \
    }                                                                                                        \
    void Class::setter(const std::vector<std::shared_ptr<Target>> &targets)                                  \
    {                                                                                                        \
        setRelatedObjects(#name, {targets.begin(), targets.end()});                                          \
    }
