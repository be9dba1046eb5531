#include "foundation/TextFolding.h"
#include "objectstore/PredicateNode.h"

namespace predicate {

namespace {

bool compareTexts(Operator comparison, bool isFolded, const QString &left, const QString &right)
{
    const QString text = isFolded ? foldedForSearch(left) : left;
    const QString part = isFolded ? foldedForSearch(right) : right;
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

bool isEqual(bool isFolded, const Value &left, const Value &right)
{
    if (isAbsent(left) || isAbsent(right))
        return isAbsent(left) && isAbsent(right);
    const auto *leftText = std::get_if<QString>(&left);
    const auto *rightText = std::get_if<QString>(&right);
    if (isFolded && leftText && rightText)
        return foldedForSearch(*leftText) == foldedForSearch(*rightText);
    return std::is_eq(compareValues(left, right));
}

/// What a side of a comparison comes to for one object: one value, or those of each object that a to-many key reaches.
struct Reached
{
    bool isMany = false;
    std::vector<Value> values;
};

void collect(const ManagedObject &object, const std::vector<std::string> &path, size_t depth, Reached &reached)
{
    const EntityDescription &entity = object.entity();
    const bool isLast = depth + 1 == path.size();
    const int column = entity.columnOf(path[depth]);
    if (column >= 0 && isLast) {
        reached.values.push_back(object.value(column));
        return;
    }
    if (column >= 0) {
        if (const ObjectPtr next = object.related(column))
            collect(*next, path, depth + 1, reached);
        else if (!reached.isMany)
            reached.values.emplace_back();
        return;
    }
    reached.isMany = true;
    for (const ObjectPtr &next : object.relatedObjects(path[depth])) {
        if (isLast)
            reached.values.emplace_back(next->identifier());
        else
            collect(*next, path, depth + 1, reached);
    }
}

Reached reachedBy(const Operand &operand, const ManagedObject &object)
{
    Reached reached;
    if (operand.kind == Operand::Kind::Argument) {
        reached.values.push_back(operand.argument.value());
        return reached;
    }
    collect(object, operand.path, 0, reached);
    if (operand.kind == Operand::Kind::Count)
        return {false, {Value(qint64(reached.values.size()))}};
    return reached;
}

bool isIn(const Reached &left, const std::vector<Value> &collection)
{
    return std::any_of(left.values.begin(), left.values.end(), [&collection](const Value &value) {
        return !isAbsent(value) && std::any_of(collection.begin(), collection.end(), [&value](const Value &one) {
            return std::is_eq(compareValues(value, one));
        });
    });
}

bool isNil(const Operand &operand)
{
    return operand.kind == Operand::Kind::Argument && isAbsent(operand.argument.value());
}

bool compareReached(const Node &node, const ManagedObject &object)
{
    const Reached left = reachedBy(node.left, object);
    if (node.comparison == Operator::In)
        return isIn(left, node.right.argument.collection());
    const Reached right = reachedBy(node.right, object);
    if (left.isMany && isNil(node.right))
        return left.values.empty() == (node.comparison == Operator::Equal);
    for (const Value &leftValue : left.values) {
        for (const Value &rightValue : right.values) {
            if (compareSingle(node.comparison, node.isFolded, leftValue, rightValue))
                return true;
        }
    }
    return false;
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
        return compareReached(node, object);
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
    const std::partial_ordering order = compareValues(left, right);
    switch (comparison) {
    case Operator::Less:
        return std::is_lt(order);
    case Operator::LessOrEqual:
        return std::is_lteq(order);
    case Operator::Greater:
        return std::is_gt(order);
    default:
        return std::is_gteq(order);
    }
}

} // namespace predicate

bool Predicate::evaluate(const ManagedObject &object) const
{
    return predicate::evaluateNode(*root, object);
}
