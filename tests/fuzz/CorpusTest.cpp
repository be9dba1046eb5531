#include "foundation/Region.h"
#include "fuzz/RecurrenceText.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

TEST(CorpusTest, NoTextOfTheCorpusContradictsItself)
{
    const QByteArray zone = Region::zoneIdentifier();
    Region::setZone("UTC");
    const LogCapture log;
    const QDir corpus(QStringLiteral(MORVANE_CORPUS));
    const QStringList names = corpus.entryList(QDir::Files);
    EXPECT_GE(names.size(), 20);
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(contradictionIn(QString::fromUtf8(file.readAll())), QString()) << qPrintable(name);
    }
    Region::setZone(zone);
}
