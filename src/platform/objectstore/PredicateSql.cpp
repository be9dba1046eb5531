#include "foundation/TextFolding.h"
#include "objectstore/PredicateNode.h"
#include "objectstore/SqlText.h"
#include "objectstore/SubstringIndex.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <span>

namespace predicate {

namespace {

/// Above this many elements a collection is bound as one JSON text, since SQLite limits the number of
/// bindings.
constexpr size_t maximumBoundElements = 200;

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

/// Writes SQL for one entity's rows. Each step to other objects opens a subquery with an alias of its own.
class SqlWriter
{
public:
    explicit SqlWriter(const ManagedObjectModel &objectModel)
        : model(objectModel)
    {}

    SqlFragment result{};

    void write(const Node &node, const EntityDescription &entity)
    {
        switch (node.kind) {
        case Node::Kind::True:
            result.text += '1';
            break;
        case Node::Kind::And:
            writeJoined(cheapestFirst(node.children), entity, " AND ", "1");
            break;
        case Node::Kind::Or:
            // Unless each alternative is a look-up, going through an index once beats merging several
            // searches of it; the sign keeps the planner from the latter.
            result.text += isChoiceOfLookUps(node) ? "" : "+";
            writeJoined(node.children, entity, " OR ", "0");
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
    static bool isChoiceOfLookUps(const Node &node)
    {
        return std::all_of(node.children.begin(), node.children.end(), [](const NodePtr &child) {
            return child->kind == Node::Kind::Comparison && child->comparison == Operator::Equal &&
                   child->left.path.size() == 1 && child->right.kind == Operand::Kind::Argument &&
                   !child->right.argument.isCollection() &&
                   std::holds_alternative<QString>(child->right.argument.value());
        });
    }

    /// Whether a test calls a function for each row, which costs more than all comparisons together.
    static bool isCostly(const Node &node)
    {
        if (node.kind != Node::Kind::Comparison)
            return std::any_of(node.children.begin(), node.children.end(),
                               [](const NodePtr &child) { return isCostly(*child); });
        return node.isFolded || node.comparison == Operator::BeginsWith ||
               node.comparison == Operator::EndsWith || node.comparison == Operator::Contains;
    }

    static std::vector<NodePtr> cheapestFirst(std::vector<NodePtr> nodes)
    {
        std::stable_partition(nodes.begin(), nodes.end(), [](const NodePtr &one) { return !isCostly(*one); });
        return nodes;
    }

    void writeJoined(const std::vector<NodePtr> &nodes, const EntityDescription &entity, const char *joint,
                     const char *empty)
    {
        if (nodes.empty())
            result.text += empty;
        else
            writeHalves(nodes, entity, joint);
    }

    /// In halves of halves, since SQLite limits how deep a condition may be, and nests a plain row of them to
    /// its length.
    void writeHalves(std::span<const NodePtr> nodes, const EntityDescription &entity, const char *joint)
    {
        if (nodes.size() == 1)
            return write(*nodes.front(), entity);
        result.text += '(';
        writeHalves(nodes.first(nodes.size() / 2), entity, joint);
        result.text += joint;
        writeHalves(nodes.subspan(nodes.size() / 2), entity, joint);
        result.text += ')';
    }

    /// Whole numbers stand in the text, so that the planner can match them with partial indexes; all else is
    /// bound.
    void bind(const Value &value)
    {
        if (const auto *integer = std::get_if<qint64>(&value)) {
            result.text += QByteArray::number(*integer);
        } else if (const auto *boolean = std::get_if<bool>(&value)) {
            result.text += *boolean ? '1' : '0';
        } else if (isAbsent(value)) {
            result.text += "NULL";
        } else {
            result.text += '?';
            result.bindings.push_back(value);
        }
    }

    void writeComparison(const Node &node, const EntityDescription &entity)
    {
        const Operand &left = node.left;
        if (left.kind == Operand::Kind::Argument) {
            writeTest(node, [this, &left] { bind(left.argument.value()); });
            return;
        }
        if (left.kind == Operand::Kind::Count) {
            writeTest(node, [&] {
                result.text += "(SELECT COUNT(*)";
                writeReached("row", entity, *entity.relationship(left.path.front()));
                result.text += ')';
            });
            return;
        }
        const size_t manySteps = stepsToMany(entity, left.path);
        if (manySteps == 0) {
            const bool isNarrowed = writeProposedRows(node, entity);
            writeTest(node, [&] { writeScalar("row", entity, left.path, 0); });
            result.text += isNarrowed ? ")" : "";
            return;
        }
        const bool endsInMany = manySteps == left.path.size();
        const bool isTestOfEmptiness = endsInMany && isNil(node.right);
        if (isTestOfEmptiness && node.comparison == Operator::Equal)
            result.text += "NOT ";
        writeChain("row", entity, left.path, 0, manySteps,
                   [&](const QByteArray &far, const EntityDescription &reached) {
                       if (isTestOfEmptiness)
                           return;
                       result.text += " AND ";
                       writeTest(node, [&] {
                           if (endsInMany)
                               result.text += far + ".\"id\"";
                           else
                               writeScalar(far, reached, left.path, manySteps);
                       });
                   });
    }

    /// Where an index of trigrams knows which rows can pass, opens a parenthesis with the condition to be one
    /// of them.
    bool writeProposedRows(const Node &node, const EntityDescription &entity)
    {
        const auto *part = node.right.kind == Operand::Kind::Argument && !node.right.argument.isCollection()
                               ? std::get_if<QString>(&node.right.argument.value())
                               : nullptr;
        const bool isSought = node.comparison == Operator::Contains && node.isFolded && part &&
                              node.left.path.size() == 1 &&
                              node.left.path.front() == entity.substringAttribute();
        const std::optional<QString> match =
            isSought ? SubstringIndex::matchFor(foldedForSearch(*part)) : std::nullopt;
        if (!match)
            return false;
        result.text += "(row.rowid IN (" + SubstringIndex(entity).proposedRows() + ") AND ";
        result.bindings.emplace_back(*match);
        return true;
    }

    /// How many steps of a path lead up to and over its last to-many relationship; 0 if it has none.
    size_t stepsToMany(const EntityDescription &entity, const std::vector<std::string> &path) const
    {
        const EntityDescription *current = &entity;
        size_t steps = 0;
        for (size_t depth = 0; depth < path.size(); ++depth) {
            if (current->columnOf(path[depth]) < 0)
                steps = depth + 1;
            if (const RelationshipDescription *relationship = current->relationship(path[depth]))
                current = &model.destinationOf(*relationship);
        }
        return steps;
    }

    /// Opens an EXISTS for each step up to the last to-many one and writes the leaf into the innermost.
    template <typename WriteLeaf>
    void writeChain(const QByteArray &alias, const EntityDescription &entity,
                    const std::vector<std::string> &path, size_t depth, size_t manySteps,
                    const WriteLeaf &writeLeaf)
    {
        const RelationshipDescription &relationship = *entity.relationship(path[depth]);
        const EntityDescription &destination = model.destinationOf(relationship);
        result.text += "EXISTS(SELECT 1";
        const QByteArray far = writeReached(alias, entity, relationship);
        if (depth + 1 < manySteps) {
            result.text += " AND ";
            writeChain(far, destination, path, depth + 1, manySteps, writeLeaf);
        } else {
            writeLeaf(far, destination);
        }
        result.text += ')';
    }

    /// The value at the end of a path of to-one relationships.
    void writeScalar(const QByteArray &alias, const EntityDescription &entity,
                     const std::vector<std::string> &path, size_t depth)
    {
        if (depth + 1 == path.size()) {
            result.text += alias + '.' + quoted(path[depth]);
            return;
        }
        const EntityDescription &destination = model.destinationOf(*entity.relationship(path[depth]));
        const QByteArray next = nextAlias();
        result.text += "(SELECT ";
        writeScalar(next, destination, path, depth + 1);
        result.text += " FROM " + quoted(destination.name()) + ' ' + next + " WHERE " + next +
                       ".\"id\" = " + alias + '.' + quoted(path[depth]) + ')';
    }

    /// Writes " FROM ... WHERE ..." for the objects that a relationship reaches; gives their alias.
    QByteArray writeReached(const QByteArray &alias, const EntityDescription &entity,
                            const RelationshipDescription &relationship)
    {
        QByteArray far = nextAlias();
        result.text += " FROM " + quoted(relationship.destination) + ' ' + far;
        if (relationship.cardinality == Cardinality::ToOne) {
            result.text += " WHERE " + far + ".\"id\" = " + alias + '.' + quoted(relationship.name);
            return far;
        }
        if (relationship.cardinality == Cardinality::ToMany) {
            result.text += " WHERE " + far + '.' + quoted(relationship.inverse) + " = " + alias + ".\"id\"";
            return far;
        }
        const ManagedObjectModel::JoinTable join = model.joinTable(entity, relationship);
        const QByteArray pair = nextAlias();
        result.text += " JOIN \"" + join.table + "\" " + pair + " ON " + pair + '.' + join.farColumn + " = " +
                       far + ".\"id\" WHERE " + pair + '.' + join.nearColumn + " = " + alias + ".\"id\"";
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
        // With a value on the right, plain equality finds the same rows and leaves the planner more ways.
        const bool isPlain = node.comparison == Operator::Equal &&
                             node.right.kind == Operand::Kind::Argument && !isNil(node.right);
        result.text += isPlain ? " = " : symbolOf(node.comparison);
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
        const bool isLong = collection.size() > maximumBoundElements;
        if (isLong && std::all_of(collection.begin(), collection.end(), isExactInJson)) {
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

    /// Whether SQLite reads the value out of JSON as it was: not so a text with a NUL, nor each fraction.
    static bool isExactInJson(const Value &value)
    {
        const auto *text = std::get_if<QString>(&value);
        return text ? !text->contains(QChar::Null) : std::holds_alternative<qint64>(value) || isAbsent(value);
    }

    static QString jsonOf(const std::vector<Value> &collection)
    {
        QJsonArray array;
        for (const Value &value : collection) {
            if (const auto *text = std::get_if<QString>(&value))
                array.append(*text);
            else if (const auto *integer = std::get_if<qint64>(&value))
                array.append(*integer);
        }
        return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
    }

    static bool isNil(const Operand &operand)
    {
        return operand.kind == Operand::Kind::Argument && !operand.argument.isCollection() &&
               isAbsent(operand.argument.value());
    }
    QByteArray nextAlias() { return "t" + QByteArray::number(++aliases); }

    const ManagedObjectModel &model;
    int aliases = 0;

public:
    const EntityDescription *rootEntity = nullptr;
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
