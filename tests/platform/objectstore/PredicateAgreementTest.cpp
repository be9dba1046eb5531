#include "Library.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

// A predicate must find by SQL exactly what it passes in memory. Books, their relations and the predicates
// are generated.

namespace {

class Generator
{
public:
    explicit Generator(unsigned seed)
        : random(seed)
    {}

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }
    bool oneIn(int bound) { return below(bound) == 0; }
    template <typename Range>
    const auto &anyOf(const Range &range)
    {
        return range[static_cast<size_t>(below(static_cast<int>(std::size(range))))];
    }

    Value text()
    {
        static const QStringList parts = {
            QStringLiteral("a"),          QStringLiteral("A"),      QStringLiteral("é"),
            QStringLiteral("e\u0301"),    QStringLiteral("ß"),      QStringLiteral("SS"),
            QStringLiteral("\U0001F600"), QStringLiteral("\uFFFD"), QStringLiteral("\uE000"),
            QStringLiteral("Жж"),         QStringLiteral("漢"),     QStringLiteral("\u0301"),
            QStringLiteral(" "),          QStringLiteral("%_'\""),  QString(QChar::Null),
            QString(QChar(0xD800)),       QStringLiteral("İı"),     QStringLiteral("ﬁ")};
        QString joined = QStringLiteral("");
        for (int count = below(4); count > 0; --count)
            joined += anyOf(parts);
        return Value(joined);
    }
    Value value(AttributeType type)
    {
        static constexpr std::array<qint64, 8> integers = {-1,
                                                           0,
                                                           1,
                                                           2,
                                                           qint64(1) << 53,
                                                           (qint64(1) << 53) + 1,
                                                           std::numeric_limits<qint64>::max(),
                                                           std::numeric_limits<qint64>::min()};
        static constexpr std::array<double, 9> doubles = {-0.0,
                                                          1.0,
                                                          0.1,
                                                          -2.5,
                                                          9007199254740992.0,
                                                          9.3e18,
                                                          1e300,
                                                          5e-324,
                                                          std::numeric_limits<double>::infinity()};
        switch (type) {
        case AttributeType::String:
            return text();
        case AttributeType::Integer:
            return Value(anyOf(integers));
        case AttributeType::Boolean:
            return Value(oneIn(2));
        case AttributeType::Date:
            return Value(Date::fromReferenceSeconds(anyOf(doubles)));
        case AttributeType::Double:
            return Value(anyOf(doubles));
        }
        return {};
    }
    Value valueOrNothing(AttributeType type) { return oneIn(4) ? Value() : value(type); }

private:
    std::mt19937 random;
};

class Agreement
{
public:
    explicit Agreement(unsigned seed)
        : generate(seed)
    {
        for (int count = 0; count < 4; ++count) {
            people.push_back(library->insert<Author>());
            shelves.push_back(library->insert<Shelf>());
            labels.push_back(library->insert<Label>());
        }
        for (int count = 0; count < 25; ++count)
            books.push_back(library->insert<Book>());
        for (const auto &objects : {people, shelves, labels, books}) {
            for (const ObjectPtr &object : objects)
                fill(*object);
        }
    }

    void check()
    {
        for (int round = 0; round < 400; ++round) {
            text.clear();
            arguments.clear();
            writeCondition(3);
            QString problem;
            const auto predicate = Predicate::tryParse(text, arguments, &problem);
            ASSERT_TRUE(predicate) << text << problem.toStdString();
            const auto &entity = libraryModel().requireEntity("Book");
            ASSERT_EQ(predicate->problemFor(libraryModel(), entity), std::nullopt) << text;
            const auto found = library->fetch<Book>(FetchRequest("Book").where(*predicate));
            for (const ObjectPtr &book : books)
                ASSERT_EQ(found.contains(*book), predicate->evaluate(*book))
                    << text << " as " << predicate->sql(libraryModel(), entity).text.constData();
            if (generate.oneIn(20))
                disturb();
        }
    }

private:
    void fill(ManagedObject &object)
    {
        const EntityDescription &entity = object.entity();
        for (int column = 0; column < entity.columnCount(); ++column) {
            if (entity.isAttribute(column))
                object.setValue(column, generate.valueOrNothing(entity.columnType(column)));
        }
        if (entity.name() != "Book")
            return;
        object.setRelated(entity.columnOf("author"), generate.oneIn(3) ? nullptr : generate.anyOf(people));
        object.setRelated(entity.columnOf("shelf"), generate.oneIn(3) ? nullptr : generate.anyOf(shelves));
        for (const ObjectPtr &label : labels) {
            if (generate.oneIn(3))
                object.addRelated("labels", label);
        }
    }
    /// Saves, or changes something that is then not saved.
    void disturb()
    {
        if (generate.oneIn(2))
            library.save();
        else
            fill(*generate.anyOf(books));
    }

    void writeCondition(int depth)
    {
        if (depth == 0 || generate.oneIn(3))
            return writeComparison();
        text += generate.oneIn(3) ? "not (" : "(";
        writeCondition(depth - 1);
        text += generate.oneIn(2) ? " and " : " || ";
        writeCondition(depth - 1);
        text += ')';
    }
    void writeComparison()
    {
        if (generate.oneIn(4))
            return writeAboutObjects();
        static constexpr std::array<std::pair<const char *, AttributeType>, 11> keys = {
            {{"title", AttributeType::String},
             {"pages", AttributeType::Integer},
             {"price", AttributeType::Double},
             {"isLent", AttributeType::Boolean},
             {"published", AttributeType::Date},
             {"author.name", AttributeType::String},
             {"any labels.name", AttributeType::String},
             {"author.born", AttributeType::Date},
             {"any author.books.pages", AttributeType::Integer},
             {"any labels.books.author.name", AttributeType::String},
             {"any shelf.books.labels.name", AttributeType::String}}};
        const auto &[key, type] = generate.anyOf(keys);
        const bool isText = type == AttributeType::String;
        text += key;
        if (generate.oneIn(6))
            return writeIn(type);
        static constexpr std::array<const char *, 9> operators = {
            " = ", " != ", " < ", " <= ", " > ", " >= ", " contains", " beginswith ", " endswith"};
        text += generate.anyOf(std::span(operators).first(isText ? 9 : 6));
        text += isText && generate.oneIn(2) ? "[cd] " : " ";
        if (isText && generate.oneIn(6))
            text += generate.oneIn(2) ? "author.name" : "title";
        else
            writeArgument(generate.oneIn(6) ? Value() : generate.value(type));
    }
    void writeArgument(PredicateArgument argument)
    {
        text += "%@";
        arguments.push_back(std::move(argument));
    }
    void writeIn(AttributeType type)
    {
        static constexpr std::array<int, 4> sizes = {0, 1, 5, 450};
        std::vector<Value> elements;
        for (int count = generate.anyOf(sizes); count > 0; --count)
            elements.push_back(generate.oneIn(9) ? Value() : generate.value(type));
        text += " in ";
        writeArgument(elements);
    }
    void writeAboutObjects()
    {
        static constexpr std::array<std::pair<const char *, int>, 5> keys = {{{"author", 0},
                                                                              {"any labels", 1},
                                                                              {"any labels.books", 2},
                                                                              {"author.books", 2},
                                                                              {"shelf.books.labels", 1}}};
        const auto &[key, kind] = generate.anyOf(keys);
        const std::vector<ObjectPtr> &objects = kind == 0 ? people : kind == 1 ? labels : books;
        if (generate.oneIn(4)) {
            text += generate.oneIn(2) ? "labels.@count >= " : "labels.@count != ";
            writeArgument(generate.below(4));
        } else if (generate.oneIn(3)) {
            text += std::string(key) + " in ";
            writeArgument(std::vector<ObjectPtr>{generate.anyOf(objects), generate.anyOf(objects)});
        } else {
            text += std::string(key) + (generate.oneIn(2) ? " == " : " <> ");
            writeArgument(generate.oneIn(2) ? nullptr : generate.anyOf(objects));
        }
    }

    Generator generate;
    Library library;
    std::vector<ObjectPtr> people;
    std::vector<ObjectPtr> shelves;
    std::vector<ObjectPtr> labels;
    std::vector<ObjectPtr> books;
    std::string text;
    std::vector<PredicateArgument> arguments;
};

} // namespace

TEST(PredicateAgreement, sqlAndMemoryPassTheSameGeneratedBooks)
{
    for (unsigned round = 0; round < 6; ++round)
        Agreement(testSeed() + round).check();
}

TEST(PredicateAgreement, orderInSqlIsTheOrderOfGeneratedValues)
{
    Generator generate(testSeed());
    Library library;
    for (int count = 0; count < 300; ++count) {
        const auto book = library->insert<Book>();
        book->setValueForKey("title", generate.valueOrNothing(AttributeType::String));
        book->setValueForKey("price", generate.valueOrNothing(AttributeType::Double));
    }
    for (const std::string key : {"title", "price"}) {
        for (const bool isAscending : {true, false}) {
            const auto sorted = library->fetch<Book>(
                FetchRequest("Book").sortedBy({isAscending ? ascending(key) : descending(key)}));
            ASSERT_EQ(sorted.size(), 300);
            for (int place = 1; place < sorted.size(); ++place) {
                const Value &lower = sorted.at(isAscending ? place - 1 : place)->valueForKey(key);
                const Value &upper = sorted.at(isAscending ? place : place - 1)->valueForKey(key);
                EXPECT_TRUE(isAbsent(lower) || std::is_lteq(compareValues(lower, upper))) << key << place;
                EXPECT_TRUE(!isAbsent(upper) || isAbsent(lower)) << "absent values come first";
            }
        }
    }
}

TEST(PredicateAgreement, textsAreOrderedByCodePointOrForTheUser)
{
    Library library;
    const auto order = [&library](const SortDescriptors &descriptors) {
        return titles(library->fetch<Book>(FetchRequest("Book").sortedBy(descriptors)))
            .join(u' ')
            .toStdString();
    };
    for (const char *title : {"b", "\xF0\x9F\x98\x80", "Z", "\xEE\x80\x80", "ä", "a", "A"})
        library.book(title);
    EXPECT_EQ(order({ascending("title")}), "A Z a b ä \xEE\x80\x80 \xF0\x9F\x98\x80");
    EXPECT_EQ(order({descending("title")}), "\xF0\x9F\x98\x80 \xEE\x80\x80 ä b a Z A");
    const SortDescriptor localized{"title", true, SortDescriptor::Comparison::LocalizedCaseInsensitive};
    EXPECT_EQ(order({localized, ascending("title")}).substr(0, 2), "\xF0\x9F");
    EXPECT_NE(order({localized, ascending("title")}).find("A a ä b Z"), std::string::npos);
    EXPECT_EQ(order({}), "b \xF0\x9F\x98\x80 Z \xEE\x80\x80 ä a A") << "as they were inserted";
}
