#include "foundation/TextFolding.h"
#include "objectstore/ManagedObjectContext.h"
#include "objectstore/PredicateNode.h"

namespace predicate {

namespace {

bool compareTexts(Operator comparison, bool isFolded, const QString &left, const QString &right)
{
    const QString text = isFolded ? foldedForSearch(left) : left;
    const QString part = isFolded ? foldedForSearch(right) : right;
    if (part.isEmpty())
        return true;
    switch (comparison) {
    case Operator::BeginsWith:
        return text.startsWith(part);
    case Operator::EndsWith:
        return text.endsWith(part);
    default:
        return text.contains(part);
    }
}

bool isTextComparison(Operator comparison)
{
    return comparison == Operator::BeginsWith || comparison == Operator::EndsWith ||
           comparison == Operator::Contains;
}

std::partial_ordering order(bool isFolded, const Value &left, const Value &right)
{
    const auto *leftText = std::get_if<QString>(&left);
    const auto *rightText = std::get_if<QString>(&right);
    if (isFolded && leftText && rightText)
        return compareValues(Value(foldedForSearch(*leftText)), Value(foldedForSearch(*rightText)));
    return compareValues(left, right);
}

bool isEqual(bool isFolded, const Value &left, const Value &right)
{
    if (isAbsent(left) || isAbsent(right))
        return isAbsent(left) && isAbsent(right);
    return std::is_eq(order(isFolded, left, right));
}

/// How many steps of a path lead up to and over its last to-many relationship; 0 if it has none.
size_t stepsToMany(const ManagedObject &object, const std::vector<std::string> &path)
{
    const ManagedObjectContext *context = object.context();
    const EntityDescription *entity = &object.entity();
    size_t steps = 0;
    for (size_t depth = 0; depth < path.size(); ++depth) {
        if (entity->columnOf(path[depth]) < 0)
            steps = depth + 1;
        const RelationshipDescription *relationship = entity->relationship(path[depth]);
        if (!relationship || !context)
            break;
        entity = &context->model().destinationOf(*relationship);
    }
    return steps;
}

/// What a key path comes to for an object: one value, or those of each object that its to-many relationships
/// reach.
class Reached
{
public:
    Reached(const ManagedObject &object, const std::vector<std::string> &keys)
        : path(keys)
        , manySteps(stepsToMany(object, keys))
    {
        collect(object, 0);
    }

    bool endsInMany() const { return manySteps == path.size(); }
    std::vector<Value> values;

private:
    void collect(const ManagedObject &object, size_t depth)
    {
        const bool isLast = depth + 1 == path.size();
        const int column = object.entity().columnOf(path[depth]);
        if (column < 0) {
            for (const ObjectPtr &next : object.relatedObjects(path[depth])) {
                if (isLast)
                    values.emplace_back(next->identifier());
                else
                    collect(*next, depth + 1);
            }
        } else if (isLast) {
            values.push_back(object.value(column));
        } else if (const ObjectPtr next = object.related(column)) {
            collect(*next, depth + 1);
        } else if (depth >= manySteps) {
            values.emplace_back(); // Beyond the last to-many step a missing object has an absent value.
        }
    }

    const std::vector<std::string> &path;
    size_t manySteps;
};

std::vector<Value> valuesOf(const Operand &operand, const ManagedObject &object)
{
    if (operand.kind == Operand::Kind::Argument)
        return {operand.argument.value()};
    std::vector<Value> values = Reached(object, operand.path).values;
    if (operand.kind == Operand::Kind::Count)
        return {Value(qint64(values.size()))};
    return values;
}

bool isIn(const std::vector<Value> &values, const std::vector<Value> &collection)
{
    return std::any_of(values.begin(), values.end(), [&collection](const Value &value) {
        return !isAbsent(value) &&
               std::any_of(collection.begin(), collection.end(),
                           [&value](const Value &one) { return std::is_eq(compareValues(value, one)); });
    });
}

bool isNil(const Operand &operand)
{
    return operand.kind == Operand::Kind::Argument && !operand.argument.isCollection() &&
           isAbsent(operand.argument.value());
}

bool compareSides(const Node &node, const ManagedObject &object)
{
    if (node.left.kind == Operand::Kind::Key && isNil(node.right)) {
        const Reached left(object, node.left.path);
        if (left.endsInMany())
            return left.values.empty() == (node.comparison == Operator::Equal);
    }
    const std::vector<Value> left = valuesOf(node.left, object);
    if (node.comparison == Operator::In)
        return isIn(left, node.right.argument.collection());
    const std::vector<Value> right = valuesOf(node.right, object);
    return std::any_of(left.begin(), left.end(), [&](const Value &one) {
        return std::any_of(right.begin(), right.end(), [&](const Value &other) {
            return compareSingle(node.comparison, node.isFolded, one, other);
        });
    });
}

bool evaluateNode(const Node &node, const ManagedObject &object)
{
    const auto passes = [&object](const NodePtr &child) { return evaluateNode(*child, object); };
    switch (node.kind) {
    case Node::Kind::True:
        return true;
    case Node::Kind::And:
        return std::all_of(node.children.begin(), node.children.end(), passes);
    case Node::Kind::Or:
        return std::any_of(node.children.begin(), node.children.end(), passes);
    case Node::Kind::Not:
        return !passes(node.children.front());
    case Node::Kind::Comparison:
        return compareSides(node, object);
    }
    return false;
}

} // namespace

bool compareSingle(Operator comparison, bool isFolded, const Value &left, const Value &right)
{
    if (comparison == Operator::Equal || comparison == Operator::NotEqual)
        return isEqual(isFolded, left, right) == (comparison == Operator::Equal);
    if (isTextComparison(comparison)) {
        const auto *text = std::get_if<QString>(&left);
        const auto *part = std::get_if<QString>(&right);
        return text && part && compareTexts(comparison, isFolded, *text, *part);
    }
    const std::partial_ordering found = order(isFolded, left, right);
    switch (comparison) {
    case Operator::Less:
        return std::is_lt(found);
    case Operator::LessOrEqual:
        return std::is_lteq(found);
    case Operator::Greater:
        return std::is_gt(found);
    default:
        return std::is_gteq(found);
    }
}

} // namespace predicate

bool Predicate::evaluate(const ManagedObject &object) const
{
    if (ManagedObjectContext *context = object.context())
        context->processPendingChanges();
    return predicate::evaluateNode(*root, object);
}
