#include "foundation/TextFolding.h"
#include "objectstore/PredicateNode.h"
#include "objectstore/SqlFunctions.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace predicate {

namespace {

/// Above this many elements a collection is bound as one JSON text, since SQLite limits the number of bindings.
constexpr size_t maximumBoundElements = 200;

QByteArray quoted(std::string_view name)
{
    return '"' + QByteArray(name.data(), static_cast<qsizetype>(name.size())) + '"';
}

const char *symbolOf(Operator comparison)
{
    switch (comparison) {
    case Operator::Equal:
        return " IS ";
    case Operator::NotEqual:
        return " IS NOT ";
    case Operator::Less:
        return " < ";
    case Operator::LessOrEqual:
        return " <= ";
    case Operator::Greater:
        return " > ";
    default:
        return " >= ";
    }
}

const char *functionOf(Operator comparison)
{
    switch (comparison) {
    case Operator::BeginsWith:
        return "begins_with";
    case Operator::EndsWith:
        return "ends_with";
    default:
        return "contains_text";
    }
}

/// Writes SQL for one entity's rows. Each nested to-many key opens a subquery with an alias of its own.
class SqlWriter
{
public:
    explicit SqlWriter(const ManagedObjectModel &objectModel) : model(objectModel) {}

    SqlFragment result{};

    void write(const Node &node, const EntityDescription &entity)
    {
        switch (node.kind) {
        case Node::Kind::True:
            result.text += '1';
            break;
        case Node::Kind::And:
            writeJoined(node, entity, " AND ", "1");
            break;
        case Node::Kind::Or:
            writeJoined(node, entity, " OR ", "0");
            break;
        case Node::Kind::Not:
            // What is unknown to SQL is false here, and so true once negated.
            result.text += "NOT IFNULL(";
            write(*node.children.front(), entity);
            result.text += ", 0)";
            break;
        case Node::Kind::Comparison:
            writeComparison(node, entity);
            break;
        }
    }

private:
    void writeJoined(const Node &node, const EntityDescription &entity, const char *joint, const char *empty)
    {
        result.text += node.children.empty() ? empty : "(";
        for (size_t place = 0; place < node.children.size(); ++place) {
            if (place > 0)
                result.text += joint;
            write(*node.children[place], entity);
        }
        if (!node.children.empty())
            result.text += ')';
    }

    void bind(const Value &value)
    {
        result.text += '?';
        result.bindings.push_back(value);
    }

    void writeComparison(const Node &node, const EntityDescription &entity)
    {
        writeAlong("row", entity, node.left, 0, node);
    }

    /// Walks the left key; at a to-many step it goes on inside an EXISTS.
    void writeAlong(const QByteArray &alias, const EntityDescription &entity, const Operand &left, size_t depth,
                    const Node &node)
    {
        if (left.kind == Operand::Kind::Argument) {
            writeTest(node, [this, &left] { bind(left.argument.value()); });
            return;
        }
        const std::string &step = left.path[depth];
        const bool isLast = depth + 1 == left.path.size();
        const int column = entity.columnOf(step);
        if (column < 0) {
            writeToMany(alias, entity, *entity.relationship(step), left, depth, node);
            return;
        }
        if (isLast) {
            writeTest(node, [this, &alias, &step] { result.text += alias + '.' + quoted(step); });
            return;
        }
        // A to-one step: what follows is read off the target row, or is absent with it.
        writeTest(node, [&] { writeScalar(alias, entity, left.path, depth); });
    }

    /// The value at the end of a path of to-one relationships.
    void writeScalar(const QByteArray &alias, const EntityDescription &entity, const std::vector<std::string> &path,
                     size_t depth)
    {
        if (depth + 1 == path.size()) {
            result.text += alias + '.' + quoted(path[depth]);
            return;
        }
        const EntityDescription &destination = model.destinationOf(*entity.relationship(path[depth]));
        const QByteArray next = nextAlias();
        result.text += "(SELECT ";
        writeScalar(next, destination, path, depth + 1);
        result.text += " FROM " + quoted(destination.name()) + ' ' + next + " WHERE " + next + ".\"id\" = " + alias +
                       '.' + quoted(path[depth]) + ')';
    }

    void writeToMany(const QByteArray &alias, const EntityDescription &entity,
                     const RelationshipDescription &relationship, const Operand &left, size_t depth, const Node &node)
    {
        if (left.kind == Operand::Kind::Count) {
            writeTest(node, [&] {
                result.text += "(SELECT COUNT(*)";
                const QByteArray far = writeReached(alias, entity, relationship);
                Q_UNUSED(far)
                result.text += ')';
            });
            return;
        }
        const bool isLast = depth + 1 == left.path.size();
        if (isLast && isNil(node.right)) {
            result.text += node.comparison == Operator::Equal ? "NOT EXISTS(SELECT 1" : "EXISTS(SELECT 1";
            writeReached(alias, entity, relationship);
            result.text += ')';
            return;
        }
        result.text += "EXISTS(SELECT 1";
        const QByteArray far = writeReached(alias, entity, relationship);
        result.text += " AND ";
        if (isLast)
            writeTest(node, [this, &far] { result.text += far + ".\"id\""; });
        else
            writeAlong(far, model.destinationOf(relationship), left, depth + 1, node);
        result.text += ')';
    }

    /// Writes " FROM ... WHERE ..." for the objects that a to-many relationship reaches; gives their alias.
    QByteArray writeReached(const QByteArray &alias, const EntityDescription &entity,
                            const RelationshipDescription &relationship)
    {
        const QByteArray far = nextAlias();
        result.text += " FROM " + quoted(relationship.destination) + ' ' + far;
        if (relationship.cardinality == Cardinality::ToMany) {
            result.text += " WHERE " + far + '.' + quoted(relationship.inverse) + " = " + alias + ".\"id\"";
            return far;
        }
        const ManagedObjectModel::JoinTable join = model.joinTable(entity, relationship);
        const QByteArray pair = nextAlias();
        result.text += " JOIN \"" + join.table + "\" " + pair + " ON " + pair + '.' + join.farColumn + " = " + far +
                       ".\"id\" WHERE " + pair + '.' + join.nearColumn + " = " + alias + ".\"id\"";
        return far;
    }

    template <typename WriteLeft>
    void writeTest(const Node &node, WriteLeft writeLeft)
    {
        if (node.comparison == Operator::In) {
            writeLeft();
            writeCollection(node.right.argument.collection());
            return;
        }
        switch (node.comparison) {
        case Operator::BeginsWith:
        case Operator::EndsWith:
        case Operator::Contains:
            writeTextTest(node, writeLeft);
            return;
        default:
            break;
        }
        writeFolded(node.isFolded, writeLeft);
        result.text += symbolOf(node.comparison);
        writeFolded(node.isFolded, [this, &node] { writeRight(node.right); });
    }

    template <typename WriteOperand>
    void writeFolded(bool isFolded, WriteOperand writeOperand)
    {
        result.text += isFolded ? "folded(" : "";
        writeOperand();
        result.text += isFolded ? ")" : "";
    }

    template <typename WriteLeft>
    void writeTextTest(const Node &node, WriteLeft writeLeft)
    {
        result.text += functionOf(node.comparison);
        result.text += node.isFolded ? "_folded(" : "(";
        writeLeft();
        result.text += ", ";
        const auto *part = node.right.kind == Operand::Kind::Argument
                               ? std::get_if<QString>(&node.right.argument.value())
                               : nullptr;
        if (node.isFolded && part)
            bind(Value(foldedForSearch(*part)));
        else
            writeFolded(node.isFolded, [this, &node] { writeRight(node.right); });
        result.text += ')';
    }

    void writeRight(const Operand &right)
    {
        if (right.kind == Operand::Kind::Argument)
            bind(right.argument.value());
        else
            writeScalar("row", *rootEntity, right.path, 0);
    }

    void writeCollection(const std::vector<Value> &collection)
    {
        if (collection.size() > maximumBoundElements) {
            result.text += " IN (SELECT value FROM json_each(";
            bind(Value(jsonOf(collection)));
            result.text += "))";
            return;
        }
        result.text += " IN (";
        for (size_t place = 0; place < collection.size(); ++place) {
            result.text += place > 0 ? "," : "";
            bind(collection[place]);
        }
        result.text += ')';
    }

    static QString jsonOf(const std::vector<Value> &collection)
    {
        QJsonArray array;
        for (const Value &value : collection) {
            if (const auto *text = std::get_if<QString>(&value))
                array.append(*text);
            else
                array.append(numberOf(value).value_or(0));
        }
        return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
    }

    static bool isNil(const Operand &operand)
    {
        return operand.kind == Operand::Kind::Argument && isAbsent(operand.argument.value());
    }
    QByteArray nextAlias() { return "t" + QByteArray::number(++aliases); }

    const ManagedObjectModel &model;
    int aliases = 0;

public:
    const EntityDescription *rootEntity = nullptr;
};

/// Finds what is wrong with a predicate for an entity.
class Checker
{
public:
    explicit Checker(const ManagedObjectModel &objectModel) : model(objectModel) {}

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
        return checkKinds(node, *left, *right);
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

SqlFragment Predicate::sql(const ManagedObjectModel &model, const EntityDescription &entity) const
{
    predicate::SqlWriter writer(model);
    writer.rootEntity = &entity;
    writer.write(*root, entity);
    return writer.result;
}

std::optional<QString> Predicate::problemFor(const ManagedObjectModel &model, const EntityDescription &entity) const
{
    return predicate::Checker(model).check(*root, entity);
}
