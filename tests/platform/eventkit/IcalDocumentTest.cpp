#include "eventkit/IcalDocument.h"
#include "eventkit/CalendarError.h"
#include "eventkit/IcalText.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

/// The lossless text of a calendar.
class IcalDocumentTest : public testing::Test
{
protected:
    static QByteArray withEnds(QByteArray text, const char *lineEnd) { return text.replace("\n", lineEnd); }
    static QString reason(const QByteArray &text)
    {
        const auto document = IcalDocument::fromText(text);
        return document ? QString() : document.error().message;
    }

    const QByteArray sample =
        "BEGIN:VCALENDAR\nversion:2.0\nX-ODD;X-A=\"a;b:c\";Y=1:value : with ; signs\n\nBEGIN:VEVENT\n"
        "UID:1\nBEGIN:VCUSTOM\nANYTHING\nEND:VCUSTOM\nSUMMARY;LANGUAGE=de;X-K=^'k^':Long \n title\\, "
        "\n\twith folds\nend:vevent\nEND:VCALENDAR\n";
};

TEST_F(IcalDocumentTest, EveryByteComesBack)
{
    for (const char *lineEnd : {"\n", "\r\n"}) {
        const QByteArray text = withEnds(sample, lineEnd);
        EXPECT_EQ(IcalDocument::fromText(text)->text(), text);
        EXPECT_EQ(IcalDocument::fromText("\xEF\xBB\xBF" + text + lineEnd)->text(),
                  "\xEF\xBB\xBF" + text + lineEnd);
    }
    const QByteArray withoutLastEnd = sample.chopped(1);
    EXPECT_EQ(IcalDocument::fromText(withoutLastEnd)->text(), withoutLastEnd);
}

TEST_F(IcalDocumentTest, LinesAreReadWithoutFoldsAndParametersWithoutQuotes)
{
    const auto document = IcalDocument::fromText(withEnds(sample, "\r\n"));
    ASSERT_TRUE(document);
    const IcalComponent &calendar = document.value().calendar();
    EXPECT_EQ(calendar.line("X-ODD")->parameter("X-A"), "a;b:c");
    EXPECT_EQ(calendar.line("X-ODD")->parameter("Y"), "1");
    EXPECT_TRUE(calendar.line("X-ODD")->parameter("Z").isNull());
    EXPECT_EQ(calendar.value("X-ODD"), "value : with ; signs");
    EXPECT_EQ(calendar.value("VERSION"), "2.0");
    const IcalComponent *event = calendar.children().at(0);
    EXPECT_EQ(event->name(), "VEVENT");
    EXPECT_EQ(event->line("SUMMARY")->parameter("X-K"), "\"k\"");
    EXPECT_EQ(IcalText::decoded(event->value("SUMMARY")), u"Long title, with folds"_qs);
}

TEST_F(IcalDocumentTest, AChangeTouchesItsOwnLineOnly)
{
    const QByteArray text = withEnds(sample, "\r\n");
    auto document = IcalDocument::fromText(text);
    IcalComponent &event = *document->calendar().childAt(0);
    event.setValue("SUMMARY", IcalText::encoded(u"a,b;c\\d\ne"_qs));
    event.setValue("UID", "1");
    event.addLine(event.makeLine("LOCATION", "here"));
    QByteArray expected = text;
    expected.replace("Long \r\n title\\, \r\n\twith folds", "a\\,b\\;c\\\\d\\ne\r\nLOCATION:here");
    EXPECT_EQ(document->text(), expected);

    event.removeLines("LOCATION");
    event.replaceLines("UID", {event.makeLine("UID", "2"), event.makeLine("UID", "3")});
    EXPECT_EQ(event.lines("UID").size(), 2U);
    expected.replace("LOCATION:here\r\n", "").replace("UID:1\r\n", "UID:2\r\nUID:3\r\n");
    EXPECT_EQ(document->text(), expected);
}

TEST_F(IcalDocumentTest, LongLinesAreFoldedBetweenCharacters)
{
    const QByteArray value = QString(100, u'ü').toUtf8() + QString::fromUcs4(U"😀😀😀", 3).toUtf8();
    const ContentLine line = ContentLine::make("SUMMARY", value, "\r\n");
    for (const QByteArray &part : line.raw().split('\n')) {
        EXPECT_LE(part.size(), 76);
        EXPECT_FALSE(QString::fromUtf8(part).contains(QChar::ReplacementCharacter));
    }
    EXPECT_EQ(line.value(), value);
}

TEST_F(IcalDocumentTest, WhatIsNoSingleWholeCalendarIsRefused)
{
    EXPECT_EQ(reason({}), u"there is no calendar in it"_qs);
    EXPECT_EQ(reason("\n\n"), u"there is no calendar in it"_qs);
    EXPECT_EQ(reason("BEGIN:VEVENT\nEND:VEVENT\n"), u"it begins with something other than a calendar"_qs);
    EXPECT_EQ(reason(sample.left(sample.size() - 15)), u"it is cut off"_qs);
    EXPECT_EQ(reason(sample + sample), u"it holds more than one calendar"_qs);
    EXPECT_EQ(reason("BEGIN:VCALENDAR\nBEGIN:VEVENT\nEND:VCALENDAR\nEND:VEVENT\n"),
              u"its components do not end as they begin"_qs);
    EXPECT_EQ(reason("BEGIN:VCALENDAR\n" + QByteArray("BEGIN:X\n").repeated(100'000)),
              u"its components are nested too deeply"_qs);
}
