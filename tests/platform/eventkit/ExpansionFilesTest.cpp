#include "eventkit/RecurrenceExpander.h"
#include "eventkit/UtcDateTime.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

/// Two lines of a data file: "<rule> | <start> <zone>", and indented what comes of it. A date stands for that
/// day at the start's time of day, a "Z" behind a time for an instant; "..." says that more follows.
struct ExpansionCase
{
    QString file;
    QString rule;
    QString start;
    QByteArray zone;
    QStringList expected;
};

void PrintTo(const ExpansionCase &expansion, std::ostream *stream)
{
    *stream << qPrintable(expansion.file) << ": " << qPrintable(expansion.rule) << " from "
            << qPrintable(expansion.start);
}

static std::vector<ExpansionCase> casesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    std::vector<ExpansionCase> cases;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        if (line.startsWith(u'#'))
            continue;
        if (line.startsWith(u' ')) {
            cases.back().expected = line.simplified().split(u' ');
            continue;
        }
        const QString start = line.section(u'|', 1).trimmed();
        cases.push_back({QFileInfo(path).fileName(),
                         line.section(u'|', 0, 0).trimmed(),
                         start.section(u' ', 0, 0),
                         start.section(u' ', 1).toUtf8(),
                         {}});
    }
    return cases;
}

static std::vector<ExpansionCase> allCases()
{
    std::vector<ExpansionCase> cases;
    const QDir folder(QStringLiteral(MORVANE_EXPANSIONS));
    for (const QString &name : folder.entryList({QStringLiteral("*.txt")}))
        for (const ExpansionCase &one : casesOf(folder.filePath(name)))
            cases.push_back(one);
    return cases;
}

static QString isoText(const WallClock &clock)
{
    return QString::asprintf("%04d-%02d-%02dT%02d:%02d:%02d", clock.year, clock.month, clock.day, clock.hour,
                             clock.minute, clock.second);
}

class ExpansionFilesTest : public testing::TestWithParam<ExpansionCase>
{
protected:
    static WallClock clockOf(const QString &iso)
    {
        const auto number = [&](int from, int length) { return iso.mid(from, length).toInt(); };
        return {number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(14, 2), number(17, 2)};
    }
    /// The occurrence as the expected text names it.
    static QString textLike(const QString &expected, const RecurrenceInstance &instance)
    {
        if (expected.endsWith(u'Z'))
            return isoText(WallClock::fromSeconds(qint64(instance.date.unixSeconds()))) + u'Z';
        return isoText(instance.wallClock);
    }
};

TEST_P(ExpansionFilesTest, GivesTheOccurrencesOfTheFile)
{
    const ExpansionCase &expansion = GetParam();
    const auto rule = RecurrencePattern::fromText(expansion.rule);
    ASSERT_TRUE(rule);
    const Calendar calendar({.zoneIdentifier = expansion.zone, .localeIdentifier = QStringLiteral("en_US")});
    QStringList expected = expansion.expected;
    const bool hasMore = expected.removeAll(QStringLiteral("...")) > 0;
    expected.removeAll(QStringLiteral("none"));
    const std::size_t most = std::size_t(expected.size()) + 1;
    const auto found =
        RecurrenceExpander(*rule, clockOf(expansion.start), calendar).instances({.mostInstances = most});

    ASSERT_EQ(found.size(), hasMore ? most : most - 1);
    for (qsizetype index = 0; index < expected.size(); ++index) {
        QString text = expected.at(index);
        if (!text.contains(u'T'))
            text += expansion.start.mid(10);
        EXPECT_EQ(textLike(text, found.at(std::size_t(index))), text) << "at place " << index;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, ExpansionFilesTest, testing::ValuesIn(allCases()));

TEST(ExpansionFilesTest, TheFilesAreThere)
{
    EXPECT_GE(allCases().size(), 80U);
}
