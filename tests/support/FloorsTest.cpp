#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include <gtest/gtest.h>

/// Includes run downwards only: what a floor may include is said here, once, and read off the sources.
class FloorsTest : public testing::Test
{
protected:
    const QString sources = QStringLiteral(MORVANE_SOURCES);
    const QStringList platformFolders =
        words(u"foundation objectstore replication eventkit contacts usernotifications ubiquity "
              u"workspace");
    const QStringList coreFolders = words(u"store records recurrence calendarsync cloud filters");
    /// The folders inside of core, the lowest first. Each may include those before it.
    const QStringList orderInCore = words(u"records/dates store/entities store/state recurrence cloud "
                                          u"store/queries filters records/copies records/calendars "
                                          u"calendarsync records store");
    const QStringList uiFolders = words(u"widgets filters records calendarviews shell");
    /// The same of ui.
    const QStringList orderInUi = words(u"widgets filters records calendarviews shell/maps shell/tasks "
                                        u"shell/categories shell/notes shell/projects shell/search "
                                        u"shell/devices shell/calendars shell/contactimport shell/people "
                                        u"shell/home shell/start shell/help shell");
    const QStringList tradesOfPlatform =
        words(u"unicode/ sqlite3 libical/ libecal/ libebook/ libedataserver/ sodium");

    static QStringList words(QStringView text) { return text.toString().split(u' '); }

    static QStringList includesOf(const QString &path)
    {
        static const QRegularExpression include(QStringLiteral(R"(^\s*#\s*include\s*([<"][^>"]+))"),
                                                QRegularExpression::MultilineOption);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
        QStringList found;
        for (const auto &match : include.globalMatch(QString::fromUtf8(file.readAll())))
            found.append(match.captured(1));
        return found;
    }

    QStringList filesOf(const QString &floor) const
    {
        QStringList files;
        QDirIterator iterator(sources + QLatin1Char('/') + floor,
                              {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                              QDirIterator::Subdirectories);
        while (iterator.hasNext())
            files.append(iterator.next());
        return files;
    }

    /// The place in an order of the folder that holds a file, given from its floor on; -1 outside of it.
    static qsizetype placeIn(const QStringList &order, const QString &file)
    {
        qsizetype place = -1;
        for (qsizetype one = 0; one < order.size(); ++one) {
            const bool holds = file.startsWith(order[one] + QLatin1Char('/'));
            if (holds && (place < 0 || order[one].size() > order[place].size()))
                place = one;
        }
        return place;
    }

    void expectIncludesOnlyDownwards(const QString &floor, const QStringList &order) const
    {
        const QString root = sources + QLatin1Char('/') + floor + QLatin1Char('/');
        QSet<qsizetype> seen;
        for (const QString &file : filesOf(floor)) {
            const qsizetype own = placeIn(order, file.mid(root.size()));
            EXPECT_GE(own, 0) << qPrintable(file) << " lies in no folder of the order";
            seen.insert(own);
            for (const QString &include : includesOf(file)) {
                const QString header = include.mid(1);
                if (!include.startsWith(u'"') || !QFile::exists(root + header))
                    continue;
                const qsizetype other = placeIn(order, header);
                EXPECT_TRUE(other >= 0 && other <= own)
                    << qPrintable(file) << " includes " << qPrintable(header);
            }
        }
        EXPECT_EQ(seen.size(), order.size());
    }

    /// Own headers are included by folder and name, from these folders only.
    void expectOwnIncludesFrom(const QString &floor, const QStringList &folders) const
    {
        for (const QString &file : filesOf(floor))
            for (const QString &include : includesOf(file))
                EXPECT_TRUE(include.startsWith(u'<') || folders.contains(include.mid(1).section(u'/', 0, 0)))
                    << qPrintable(file) << " includes " << qPrintable(include.mid(1));
    }

    void expectNoSystemInclude(const QString &floor, const QStringList &beginnings) const
    {
        for (const QString &file : filesOf(floor))
            for (const QString &include : includesOf(file))
                for (const QString &beginning : beginnings)
                    EXPECT_FALSE(include.startsWith(QLatin1Char('<') + beginning))
                        << qPrintable(file) << " includes " << qPrintable(include.mid(1));
    }
};

TEST_F(FloorsTest, PlatformKnowsNothingAboveIt)
{
    EXPECT_FALSE(filesOf(QStringLiteral("platform")).isEmpty());
    expectOwnIncludesFrom(QStringLiteral("platform"), platformFolders);
    expectNoSystemInclude(QStringLiteral("platform"),
                          words(u"QtWidgets QtGui QWidget QApplication QGuiApplication"));
}

TEST_F(FloorsTest, CoreHasNoScreenAndNoTradeOfThePlatform)
{
    expectOwnIncludesFrom(QStringLiteral("core"), platformFolders + coreFolders);
    expectNoSystemInclude(QStringLiteral("core"),
                          words(u"QtWidgets QtGui QWidget QApplication QGuiApplication QColor"));
    expectNoSystemInclude(QStringLiteral("core"), tradesOfPlatform);
}

TEST_F(FloorsTest, TheFoldersOfAFloorIncludeOnlyThoseBelowThem)
{
    expectIncludesOnlyDownwards(QStringLiteral("core"), orderInCore);
    expectIncludesOnlyDownwards(QStringLiteral("ui"), orderInUi);
}

TEST_F(FloorsTest, UiLeavesTheTradesToThePlatform)
{
    expectOwnIncludesFrom(QStringLiteral("ui"), platformFolders + coreFolders + uiFolders);
    expectNoSystemInclude(QStringLiteral("ui"), tradesOfPlatform);
}

TEST_F(FloorsTest, HeadersUsedAbovePlatformShowNoneOfItsTrades)
{
    for (const QString &floor : {QStringLiteral("core"), QStringLiteral("ui")})
        for (const QString &file : filesOf(floor))
            for (const QString &include : includesOf(file)) {
                const QString header = sources + QStringLiteral("/platform/") + include.mid(1);
                if (!include.startsWith(u'"') || !QFile::exists(header))
                    continue;
                for (const QString &inner : includesOf(header))
                    for (const QString &trade : tradesOfPlatform)
                        EXPECT_FALSE(inner.startsWith(QLatin1Char('<') + trade))
                            << qPrintable(file) << " includes " << qPrintable(include.mid(1));
            }
}
