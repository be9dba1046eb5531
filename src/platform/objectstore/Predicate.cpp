#include "objectstore/Predicate.h"

#include "objectstore/PredicateNode.h"

using predicate::Node;

PredicateArgument::PredicateArgument(const std::vector<QString> &texts)
    : PredicateArgument(std::vector<Value>(texts.begin(), texts.end()))
{}

PredicateArgument::PredicateArgument(std::vector<Value> values)
{
    for (Value &value : values)
        value = storable(std::move(value));
    content = std::move(values);
}

Predicate::Predicate()
    : root(std::make_shared<Node>())
{}

Predicate::Predicate(std::shared_ptr<const Node> node)
    : root(std::move(node))
{}

bool Predicate::isAlwaysTrue() const
{
    return root->kind == Node::Kind::True;
}

Predicate Predicate::allOf(const std::vector<Predicate> &predicates)
{
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::And;
    for (const Predicate &one : predicates) {
        if (!one.isAlwaysTrue())
            node->children.push_back(one.root);
    }
    if (node->children.empty())
        return Predicate();
    return Predicate(node->children.size() == 1 ? node->children.front() : node);
}

Predicate Predicate::anyOf(const std::vector<Predicate> &predicates)
{
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::Or;
    for (const Predicate &one : predicates)
        node->children.push_back(one.root);
    return Predicate(node);
}
