#include "foundation/Csv.h"

#include <gtest/gtest.h>

#include <QBuffer>

namespace {

std::vector<QStringList> recordsOf(const QByteArray &text)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    CsvReader reader(buffer);
    std::vector<QStringList> records;
    while (const auto record = reader.next())
        records.push_back(record->fields);
    EXPECT_EQ(reader.position(), text.size());
    return records;
}

using Records = std::vector<QStringList>;

TEST(CsvTest, WritesWhatOtherProgramsRead)
{
    EXPECT_EQ(Csv::line({u"a"_qs, u""_qs, u"b c"_qs}), "a,,b c\r\n");
    EXPECT_EQ(Csv::line({u"a,b"_qs, u"say \"x\""_qs, u"two\nlines"_qs, u" edge"_qs}),
              "\"a,b\",\"say \"\"x\"\"\",\"two\nlines\",\" edge\"\r\n");
    EXPECT_EQ(Csv::line({u"Größe"_qs}), "Gr\xC3\xB6\xC3\x9F"
                                        "e\r\n");
    EXPECT_EQ(Csv::line({QString()}), "\"\"\r\n") << "an empty line is no record";
}

TEST(CsvTest, GuardsFormulasAndLeavesPhoneNumbersAlone)
{
    EXPECT_EQ(Csv::line({u"=1+1"_qs, u"@SUM(A1)"_qs, u"+cmd|' /C calc'!A0"_qs, u"-2+3*A1"_qs}),
              "'=1+1,'@SUM(A1),'+cmd|' /C calc'!A0,'-2+3*A1\r\n");
    EXPECT_EQ(Csv::line({u"+49 (30) 123-45/6"_qs, u"-5"_qs, u"-"_qs}), "+49 (30) 123-45/6,-5,'-\r\n");
}

TEST(CsvTest, ReadsBackEveryText)
{
    const QStringList fields = {u"=1"_qs,       u"'=1"_qs,    u"''+x"_qs,  u"'"_qs,
                                u"it's"_qs,     u"'tis"_qs,   u"+49 1"_qs, u"'+49 1"_qs,
                                u"-"_qs,        u"a\nb\n"_qs, u"\"\""_qs,  u"\t=x"_qs,
                                u"x;y,z\tw"_qs, u""_qs,       u"@"_qs,     u"ümläut 🎂"_qs};
    EXPECT_EQ(recordsOf(Csv::byteOrderMark + Csv::line(fields) + Csv::line(fields)),
              (Records{fields, fields}));
}

TEST(CsvTest, ReadsWhatOtherProgramsWrite)
{
    const Records wanted = {{u"a"_qs, u"b c"_qs}, {u"1"_qs, u"2"_qs}};
    EXPECT_EQ(recordsOf("a,b c\r\n1,2\r\n"), wanted);
    EXPECT_EQ(recordsOf("a;b c\n\n1;2"), wanted) << "semicolons, an empty line, no last line end";
    EXPECT_EQ(recordsOf("a\tb c\r1\t2\r"), wanted);
    EXPECT_EQ(recordsOf("\"a\",\"b c\"\n\"1\",\"2\"\n"), wanted);
    EXPECT_EQ(recordsOf("\"a;;;\",b\n1,2\n").front(), (QStringList{u"a;;;"_qs, u"b"_qs}))
        << "what stands inside of quotes separates nothing";
    EXPECT_EQ(recordsOf("a,\"two\r\nlines\"\n").front().at(1), u"two\nlines"_qs);
    EXPECT_EQ(recordsOf("Gr\xF6\xDF"
                        "e\n")
                  .front()
                  .front(),
              u"Größe"_qs)
        << "Latin-1";
    const QString text = u"a,b c\r\n1,2\r\n"_qs;
    EXPECT_EQ(recordsOf(QByteArray("\xFF\xFE") +
                        QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2)),
              wanted);
    EXPECT_EQ(recordsOf("\"never closed\n,x").size(), 1u);
    EXPECT_TRUE(recordsOf("").empty());
}

TEST(CsvTest, PassesOverARecordBeyondReason)
{
    QBuffer buffer;
    buffer.setData("a,b\n" + QByteArray(CsvReader::mostBytes + 10, 'x') + ",y\n1,2\n");
    buffer.open(QIODevice::ReadOnly);
    CsvReader reader(buffer);
    EXPECT_TRUE(reader.next()->isBearable);
    const auto large = reader.next();
    EXPECT_FALSE(large->isBearable);
    EXPECT_TRUE(large->fields.isEmpty());
    const auto last = reader.next();
    EXPECT_EQ(last->fields, (QStringList{u"1"_qs, u"2"_qs}));
    EXPECT_EQ(last->line, 3);
}

} // namespace
