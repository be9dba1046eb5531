#include "objectstore/PredicateNode.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace predicate {

namespace {

struct Token
{
    enum class Kind { Word, Number, Text, Argument, Symbol, End };
    Kind kind = Kind::End;
    std::string text;
};

std::string lowered(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return result;
}

/// Cuts a format string into tokens.
class Lexer
{
public:
    explicit Lexer(std::string_view source)
        : rest(source)
    {}

    Token next()
    {
        while (!rest.empty() && std::isspace(static_cast<unsigned char>(rest.front())))
            rest.remove_prefix(1);
        if (rest.empty())
            return {};
        const char first = rest.front();
        if (first == '%' && rest.size() > 1)
            return take(Token::Kind::Argument, 2);
        if (first == '"' || first == '\'')
            return quoted(first);
        if (std::isdigit(static_cast<unsigned char>(first)) || (first == '-' && rest.size() > 1))
            return takeWhile(Token::Kind::Number,
                             [](unsigned char c) { return std::isdigit(c) || c == '.'; });
        if (std::isalpha(static_cast<unsigned char>(first)) || first == '_' || first == '@')
            return takeWhile(Token::Kind::Word, [](unsigned char c) {
                return std::isalnum(c) || c == '_' || c == '.' || c == '@';
            });
        return symbol();
    }

private:
    Token take(Token::Kind kind, size_t length)
    {
        Token token{kind, std::string(rest.substr(0, length))};
        rest.remove_prefix(std::min(length, rest.size()));
        return token;
    }
    template <typename Condition>
    Token takeWhile(Token::Kind kind, Condition condition)
    {
        size_t length = 1;
        while (length < rest.size() && condition(rest[length]))
            ++length;
        return take(kind, length);
    }
    Token quoted(char quote)
    {
        const size_t end = rest.find(quote, 1);
        if (end == std::string_view::npos)
            return take(Token::Kind::Symbol, rest.size());
        Token token{Token::Kind::Text, std::string(rest.substr(1, end - 1))};
        rest.remove_prefix(end + 1);
        return token;
    }
    Token symbol()
    {
        static constexpr std::array<std::string_view, 10> pairs = {"==", "!=", "<>", "<=", "=<",
                                                                   ">=", "=>", "&&", "||", "[c"};
        for (std::string_view pair : pairs) {
            if (rest.starts_with(pair))
                return pair == "[c" ? bracketed() : take(Token::Kind::Symbol, 2);
        }
        return take(Token::Kind::Symbol, 1);
    }
    Token bracketed()
    {
        const size_t end = rest.find(']');
        return take(Token::Kind::Symbol, end == std::string_view::npos ? rest.size() : end + 1);
    }

    std::string_view rest;
};

/// Reads the grammar by recursive descent; `or` is weakest, then `and`, then `not`.
class Parser
{
public:
    Parser(std::string_view source, std::vector<PredicateArgument> given)
        : lexer(source)
        , arguments(std::move(given))
    {
        advance();
    }

    std::optional<NodePtr> parse(QString *problem)
    {
        NodePtr node = disjunction();
        if (failure.isEmpty() && current.kind != Token::Kind::End)
            fail("something is left over");
        if (failure.isEmpty() && usedArguments != arguments.size())
            fail("there are more arguments than places for them");
        if (problem)
            *problem = failure;
        return failure.isEmpty() ? std::optional(node) : std::nullopt;
    }

private:
    void advance() { current = lexer.next(); }
    void fail(const char *reason)
    {
        if (failure.isEmpty())
            failure = QStringLiteral("%1 at \"%2\"")
                          .arg(QLatin1String(reason), QString::fromStdString(current.text));
    }
    bool isWord(std::string_view word) const
    {
        return current.kind == Token::Kind::Word && lowered(current.text) == word;
    }
    bool isSymbol(std::string_view symbol) const
    {
        return current.kind == Token::Kind::Symbol && current.text == symbol;
    }
    bool accept(std::string_view word, std::string_view symbol)
    {
        if (!isWord(word) && !isSymbol(symbol))
            return false;
        advance();
        return true;
    }

    static NodePtr joined(Node::Kind kind, std::vector<NodePtr> children)
    {
        if (children.size() == 1)
            return children.front();
        auto node = std::make_shared<Node>();
        node->kind = kind;
        node->children = std::move(children);
        return node;
    }
    NodePtr disjunction()
    {
        std::vector<NodePtr> children{conjunction()};
        while (failure.isEmpty() && accept("or", "||"))
            children.push_back(conjunction());
        return joined(Node::Kind::Or, std::move(children));
    }
    NodePtr conjunction()
    {
        std::vector<NodePtr> children{factor()};
        while (failure.isEmpty() && accept("and", "&&"))
            children.push_back(factor());
        return joined(Node::Kind::And, std::move(children));
    }
    NodePtr factor()
    {
        if (accept("not", "!")) {
            auto node = std::make_shared<Node>();
            node->kind = Node::Kind::Not;
            node->children.push_back(factor());
            return node;
        }
        if (!accept("", "("))
            return comparison();
        NodePtr inner = disjunction();
        if (!accept("", ")"))
            fail("a parenthesis is not closed");
        return inner;
    }
    NodePtr comparison()
    {
        auto node = std::make_shared<Node>();
        node->kind = Node::Kind::Comparison;
        accept("any", ""); // A to-many key is asked for any of its objects with or without the word.
        node->left = operand();
        node->comparison = comparisonOperator();
        if (current.kind == Token::Kind::Symbol && current.text.starts_with("[c")) {
            node->isFolded = current.text == "[cd]";
            if (!node->isFolded)
                fail("only [cd] is known");
            if (node->comparison == Operator::In)
                fail("\"in\" compares as it is");
            advance();
        }
        node->right = operand();
        return node;
    }
    Operator comparisonOperator()
    {
        static const std::vector<std::pair<std::string_view, Operator>> spellings = {
            {"=", Operator::Equal},
            {"==", Operator::Equal},
            {"!=", Operator::NotEqual},
            {"<>", Operator::NotEqual},
            {"<", Operator::Less},
            {"<=", Operator::LessOrEqual},
            {"=<", Operator::LessOrEqual},
            {">", Operator::Greater},
            {">=", Operator::GreaterOrEqual},
            {"=>", Operator::GreaterOrEqual},
            {"in", Operator::In},
            {"beginswith", Operator::BeginsWith},
            {"contains", Operator::Contains},
            {"endswith", Operator::EndsWith}};
        const std::string spelling = lowered(current.text);
        for (const auto &[text, comparison] : spellings) {
            if (text == spelling &&
                (current.kind == Token::Kind::Word || current.kind == Token::Kind::Symbol)) {
                advance();
                return comparison;
            }
        }
        fail("a comparison operator is missing");
        return Operator::Equal;
    }

    Operand operand()
    {
        Operand result;
        const Token token = current;
        if (token.kind == Token::Kind::End)
            fail("an operand is missing");
        advance();
        switch (token.kind) {
        case Token::Kind::Argument:
            result.argument = nextArgument(token);
            break;
        case Token::Kind::Number:
            result.argument = number(token.text);
            break;
        case Token::Kind::Text:
            result.argument = PredicateArgument(QString::fromStdString(token.text));
            break;
        case Token::Kind::Word:
            readWord(token.text, result);
            break;
        default:
            fail("an operand is missing");
        }
        return result;
    }
    PredicateArgument nextArgument(const Token &token)
    {
        if (token.text != "%@" && token.text != "%d" && token.text != "%i")
            fail("the format is unknown");
        if (usedArguments == arguments.size()) {
            fail("an argument is missing");
            return nullptr;
        }
        return arguments[usedArguments++];
    }
    PredicateArgument number(const std::string &text)
    {
        const QByteArray digits = QByteArray::fromStdString(text);
        bool isNumber = false;
        PredicateArgument result = digits.contains('.') ? PredicateArgument(digits.toDouble(&isNumber))
                                                        : PredicateArgument(digits.toLongLong(&isNumber));
        if (!isNumber)
            fail("a number is expected");
        return result;
    }
    void readWord(const std::string &word, Operand &result)
    {
        const std::string known = lowered(word);
        if (known == "nil" || known == "null")
            return;
        if (known == "true" || known == "yes" || known == "false" || known == "no") {
            result.argument = PredicateArgument(known == "true" || known == "yes");
            return;
        }
        result.kind = Operand::Kind::Key;
        for (size_t start = 0; start <= word.size();) {
            const size_t end = std::min(word.find('.', start), word.size());
            result.path.push_back(word.substr(start, end - start));
            start = end + 1;
        }
        if (result.path.size() > 1 && result.path.back() == "@count") {
            result.kind = Operand::Kind::Count;
            result.path.pop_back();
        }
    }

    Lexer lexer;
    Token current;
    std::vector<PredicateArgument> arguments;
    size_t usedArguments = 0;
    QString failure;
};

} // namespace

} // namespace predicate

std::optional<Predicate> Predicate::tryParse(std::string_view text, std::vector<PredicateArgument> arguments,
                                             QString *problem)
{
    auto node = predicate::Parser(text, std::move(arguments)).parse(problem);
    return node ? std::optional(Predicate(*node)) : std::nullopt;
}

Predicate Predicate::parse(std::string_view text, std::vector<PredicateArgument> arguments)
{
    QString problem;
    auto parsed = tryParse(text, std::move(arguments), &problem);
    if (!parsed) {
        std::fprintf(stderr, "Wrong predicate \"%s\": %s\n", std::string(text).c_str(),
                     qUtf8Printable(problem));
        std::abort();
    }
    return *parsed;
}
