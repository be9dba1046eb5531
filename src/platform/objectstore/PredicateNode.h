#pragma once

#include "objectstore/Predicate.h"

#include <memory>
#include <string>
#include <vector>

/// The parsed form of a predicate.
namespace predicate {

enum class Operator {
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    BeginsWith,
    EndsWith,
    Contains,
    In,
};

/// One side of a comparison: a key path, the count of a to-many relationship at its end, or an argument.
struct Operand
{
    enum class Kind { Key, Count, Argument };
    Kind kind = Kind::Argument;
    std::vector<std::string> path;
    PredicateArgument argument{nullptr};
};

struct Node;
using NodePtr = std::shared_ptr<const Node>;

struct Node
{
    enum class Kind { True, And, Or, Not, Comparison };
    Kind kind = Kind::True;
    std::vector<NodePtr> children;
    Operand left;
    Operator comparison = Operator::Equal;
    Operand right;
    /// Texts are folded before they are compared.
    bool isFolded = false;
};

/// The comparison of two single values, by the rules for absent ones.
bool compareSingle(Operator comparison, bool isFolded, const Value &left, const Value &right);

} // namespace predicate
