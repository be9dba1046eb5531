// Lists of records follow what changes, and end as a fetch would give them.

#include "CoreTest.h"

#include "store/queries/RecordRows.h"

#include <random>

namespace {

/// Does to a copy of the rows what it hears of.
class Copy : public RowsWatcher
{
public:
    Copy(const RecordRows &watched, std::vector<RowId> before)
        : rows(watched)
        , copy(std::move(before))
    {}

    void willInsert(int first, int) override { place = first; }
    void didInsert() override { copy.insert(copy.begin() + place, rows.identifierAt(place)); }
    void willRemove(int first, int) override
    {
        place = first;
        hasLostOneThatStays = hasLostOneThatStays || staying.contains(rows.identifierAt(first));
    }
    void didRemove() override { copy.erase(copy.begin() + place); }
    void willMove(int row, int above) override
    {
        EXPECT_TRUE(above < row || above > row + 1) << "no move at all";
        place = row;
        target = above > row ? above - 1 : above;
        ++moves;
    }
    void didMove() override
    {
        const RowId moved = copy[static_cast<std::size_t>(place)];
        copy.erase(copy.begin() + place);
        copy.insert(copy.begin() + target, moved);
    }
    void willReset() override { ++resets; }
    void didReset() override {}
    void rowChanged(int row) override { told.insert(rows.identifierAt(row)); }

    const RecordRows &rows;
    std::vector<RowId> copy;
    std::set<RowId> told;
    std::set<RowId> staying;
    bool hasLostOneThatStays = false;
    int place = 0;
    int target = 0;
    int moves = 0;
    int resets = 0;
};

std::vector<RowId> identifiersOf(const RecordRows &rows)
{
    std::vector<RowId> identifiers;
    for (int row = 0; row < rows.size(); ++row)
        identifiers.push_back(rows.identifierAt(row));
    return identifiers;
}

QStringList headingsOf(const RecordRows &rows)
{
    QStringList headings;
    for (int row = 0; row < rows.size(); ++row) {
        if (rows.isHeading(row))
            headings.append(rows.headingAt(row));
    }
    return headings;
}

class RecordRowsTest : public CoreTest
{};

} // namespace

TEST_F(RecordRowsTest, GeneratedChangesLeaveTheRowsOfAFetch)
{
    std::mt19937 random(testSeed());
    const auto below = [&random](int end) { return std::uniform_int_distribution<>(0, end - 1)(random); };
    std::map<RowId, QString> names;
    bool hasLetters = true;
    const auto listed = [&names, &hasLetters] {
        std::vector<std::pair<QString, RowId>> sorted;
        for (const auto &[row, name] : names)
            sorted.emplace_back(name, row);
        std::ranges::sort(sorted);
        std::vector<ListedRecord> records;
        for (const auto &[name, row] : sorted)
            records.push_back({row, hasLetters ? RecordRows::letterOf(name) : QString()});
        return records;
    };
    const auto anyName = [&] { return QString(QChar(u'a' + below(6))) + QString::number(below(100)); };
    RecordRows rows(EntityNote::entityName);
    for (int round = 0; round < 600; ++round) {
        // Lists without letters are followed in another way.
        if (round == 300) {
            hasLetters = false;
            rows.set(listed());
        }
        Copy copy(rows, identifiersOf(rows));
        std::set<RowId> changed;
        for (int change = below(4); change >= 0; --change) {
            const RowId row = 1 + below(20);
            changed.insert(row);
            if (names.contains(row) && below(3) == 0)
                names.erase(row);
            else
                names[row] = anyName();
        }
        for (const auto &[row, name] : names)
            copy.staying.insert(row);
        rows.follow(listed(), changed, {}, copy);
        RecordRows fetched(EntityNote::entityName);
        fetched.set(listed());
        ASSERT_EQ(identifiersOf(rows), identifiersOf(fetched)) << "round " << round;
        ASSERT_EQ(headingsOf(rows), headingsOf(fetched));
        ASSERT_EQ(copy.copy, identifiersOf(rows)) << "who hears of the steps can follow";
        ASSERT_EQ(copy.resets, 0);
        ASSERT_LE(copy.moves, static_cast<int>(changed.size())) << "only what changed moves";
        ASSERT_FALSE(copy.hasLostOneThatStays) << "what is renamed keeps its selection";
        for (const RowId row : changed)
            ASSERT_EQ(copy.told.contains(row), names.contains(row));
    }
}

TEST_F(RecordRowsTest, HeldRowsStandAndUnnamedChangesResetTheList)
{
    RecordRows rows(EntityNote::entityName);
    rows.set({{1}, {2}, {3}});
    Copy copy(rows, identifiersOf(rows));
    rows.follow({{1}, {3}}, {2}, {2}, copy);
    EXPECT_EQ(identifiersOf(rows), (std::vector<RowId>{1, 2, 3}));
    rows.follow({{3}, {1}}, {2}, {}, copy);
    EXPECT_EQ(identifiersOf(rows), (std::vector<RowId>{3, 1}));
    EXPECT_EQ(copy.resets, 1);

    RecordRows letters(EntityNote::entityName);
    letters.set({{1, u"A"_qs}, {2, u"B"_qs}});
    Copy heard(letters, identifiersOf(letters));
    letters.follow({{2, u"B"_qs}, {1, u"C"_qs}}, {1}, {1}, heard);
    EXPECT_EQ(identifiersOf(letters), (std::vector<RowId>{0, 1, 0, 2})) << "it stands until it was seen";
    letters.follow({{2, u"B"_qs}, {1, u"C"_qs}}, {1}, {}, heard);
    EXPECT_EQ(headingsOf(letters), (QStringList{u"B"_qs, u"C"_qs}));
    EXPECT_EQ(heard.copy, identifiersOf(letters));
}

TEST_F(RecordRowsTest, LettersAreCapitalsWithoutAccentsAndRecordsAreFoundByRow)
{
    for (const auto &[text, letter] :
         std::initializer_list<std::pair<QString, QString>>{{u"ärger"_qs, u"A"_qs},
                                                            {u"Zoë"_qs, u"Z"_qs},
                                                            {u"ßzett"_qs, u"S"_qs},
                                                            {u"7 days"_qs, u"#"_qs},
                                                            {u""_qs, u"#"_qs},
                                                            {u"жук"_qs, u"Ж"_qs}})
        EXPECT_EQ(RecordRows::letterOf(text), letter) << qPrintable(text);
    const auto note = context().insert<EntityNote>();
    note->setTitle(u"a"_qs);
    const auto gone = context().insert<EntityNote>();
    ASSERT_FALSE(DBWorker::saveContext());
    RecordRows rows(EntityNote::entityName);
    rows.set({{note->rowId(), u"A"_qs}, {gone->rowId(), u"B"_qs}});
    context().deleteObject(gone);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(rows.recordAt(0), nullptr);
    EXPECT_EQ(rows.recordAt(1), note);
    EXPECT_EQ(rows.recordAt(3), nullptr);
    EXPECT_EQ(rows.rowOf(*note), 1);
    EXPECT_EQ(rows.rowOf(*add(u"a task of the same number"_qs)), -1);
}
