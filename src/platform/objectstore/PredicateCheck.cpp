#include "objectstore/PredicateNode.h"

namespace predicate {

namespace {

/// Finds what is wrong with a predicate for an entity.
class Checker
{
public:
    explicit Checker(const ManagedObjectModel &objectModel)
        : model(objectModel)
    {}

    std::optional<QString> check(const Node &node, const EntityDescription &entity) const
    {
        for (const NodePtr &child : node.children) {
            if (auto problem = check(*child, entity))
                return problem;
        }
        return node.kind == Node::Kind::Comparison ? checkComparison(node, entity) : std::nullopt;
    }

private:
    enum class Kind { Number, Text, Date, ToMany, Any };

    static QString say(const char *what, const std::vector<std::string> &path)
    {
        std::string joined;
        for (const std::string &step : path)
            joined += (joined.empty() ? "" : ".") + step;
        return QStringLiteral("%1: %2").arg(QString::fromStdString(joined), QLatin1String(what));
    }

    std::optional<Kind> kindOf(const Operand &operand, const EntityDescription &entity, bool isRight) const
    {
        if (operand.kind == Operand::Kind::Argument)
            return kindOf(operand.argument);
        const EntityDescription *current = &entity;
        bool reachesMany = false;
        for (size_t depth = 0; depth < operand.path.size(); ++depth) {
            const bool isLast = depth + 1 == operand.path.size();
            const int column = current->columnOf(operand.path[depth]);
            const RelationshipDescription *relationship = current->relationship(operand.path[depth]);
            if (column >= 0 && isLast)
                return operand.kind == Operand::Kind::Key ? std::optional(kindOf(current->columnType(column)))
                                                          : std::nullopt;
            if (!relationship || (isRight && column < 0))
                return std::nullopt;
            reachesMany = reachesMany || column < 0;
            current = &model.destinationOf(*relationship);
        }
        if (operand.kind == Operand::Kind::Count)
            return operand.path.size() == 1 ? std::optional(Kind::Number) : std::nullopt;
        return reachesMany ? Kind::ToMany : Kind::Text;
    }
    static Kind kindOf(AttributeType type)
    {
        switch (type) {
        case AttributeType::String:
            return Kind::Text;
        case AttributeType::Date:
            return Kind::Date;
        default:
            return Kind::Number;
        }
    }
    static Kind kindOf(const PredicateArgument &argument)
    {
        if (argument.isCollection())
            return Kind::Any;
        if (std::holds_alternative<QString>(argument.value()))
            return Kind::Text;
        if (std::holds_alternative<Date>(argument.value()))
            return Kind::Date;
        return isAbsent(argument.value()) ? Kind::Any : Kind::Number;
    }

    std::optional<QString> checkComparison(const Node &node, const EntityDescription &entity) const
    {
        const auto left = kindOf(node.left, entity, false);
        const auto right = kindOf(node.right, entity, true);
        if (!left)
            return say("no such key", node.left.path);
        if (!right)
            return say("no such key", node.right.path);
        const bool hasCollection =
            node.right.kind == Operand::Kind::Argument && node.right.argument.isCollection();
        if (hasCollection != (node.comparison == Operator::In))
            return say("a collection goes with \"in\", and with nothing else", node.left.path);
        if (node.left.kind == Operand::Kind::Argument && node.left.argument.isCollection())
            return say("a collection cannot stand on the left", node.left.path);
        if (hasCollection)
            return checkElements(node, *left);
        return checkKinds(node, *left, *right);
    }
    static std::optional<QString> checkElements(const Node &node, Kind left)
    {
        const Kind wanted = left == Kind::ToMany ? Kind::Text : left;
        const auto &elements = node.right.argument.collection();
        const bool doFit = std::all_of(elements.begin(), elements.end(), [wanted](const Value &element) {
            const Kind kind = kindOf(PredicateArgument(element));
            return wanted == Kind::Any || kind == Kind::Any || kind == wanted;
        });
        return doFit ? std::nullopt : std::optional(say("the collection holds another kind", node.left.path));
    }
    static std::optional<QString> checkKinds(const Node &node, Kind left, Kind right)
    {
        const bool isEquality = node.comparison == Operator::Equal || node.comparison == Operator::NotEqual;
        const bool isOrder = !isEquality && node.comparison < Operator::BeginsWith;
        const bool isText = !isEquality && !isOrder && node.comparison != Operator::In;
        if (left == Kind::ToMany)
            return isOrder || isText || (right != Kind::Text && right != Kind::Any)
                       ? std::optional(say("a to-many key compares with objects only", node.left.path))
                       : std::nullopt;
        if ((isText || node.isFolded) && (left != Kind::Text || (right != Kind::Text && right != Kind::Any)))
            return say("only texts can be searched", node.left.path);
        if (left != right && left != Kind::Any && right != Kind::Any)
            return say("the two sides are of different kinds", node.left.path);
        return std::nullopt;
    }

    const ManagedObjectModel &model;
};

} // namespace

} // namespace predicate

std::optional<QString> Predicate::problemFor(const ManagedObjectModel &model,
                                             const EntityDescription &entity) const
{
    return predicate::Checker(model).check(*root, entity);
}
