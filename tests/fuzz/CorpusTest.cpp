#include "foundation/Region.h"
#include "fuzz/Targets.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <chrono>

namespace {

class CorpusTest : public testing::TestWithParam<FuzzTarget>
{
protected:
    CorpusTest()
    {
        Region::setZone("UTC");
        // Of damaged bytes Qt warns, as it should.
        former = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    }
    ~CorpusTest() override
    {
        qInstallMessageHandler(former);
        Region::setZone(zone);
    }

    QtMessageHandler former = nullptr;

    const QByteArray zone = Region::zoneIdentifier();
    const LogCapture log;
    const FrozenClock clock{Date::fromUnixSeconds(1'795'254'900)};
};

TEST_P(CorpusTest, NothingContradictsItselfOrTakesLong)
{
    const QDir corpus(QStringLiteral(MORVANE_CORPUS "/") + QLatin1String(GetParam().name));
    const QStringList names = corpus.entryList(QDir::Files);
    EXPECT_GE(names.size(), 5);
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const auto begun = std::chrono::steady_clock::now();
        EXPECT_EQ(GetParam().contradictionIn(file.readAll()), QString()) << qPrintable(name);
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(20)) << qPrintable(name);
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, CorpusTest, testing::ValuesIn(fuzzTargets),
                         [](const auto &one) { return std::string(one.param.name); });

} // namespace
