#include "VCardSteps.h"

#include <QElapsedTimer>
#include <QStringEncoder>

#include <gtest/gtest.h>

namespace {

/// The texts of the attributes of a name, in all cards.
QStringList texts(const QByteArray &text, const QByteArray &name)
{
    QStringList found;
    for (const VCard &one : cardsOf(text)) {
        for (const VCardAttribute &attribute : one.attributes) {
            if (attribute.name() == name)
                found.append(attribute.text());
        }
    }
    return found;
}

QStringList notes(const QByteArray &lines, const QByteArray &version = "3.0")
{
    return texts(card(lines, version), "NOTE");
}

TEST(VCardReaderTest, UndoesFoldsBeforeItReadsLetters)
{
    EXPECT_EQ(notes("NOTE:a folded\r\n  line\r\n\tand one more"),
              QStringList(u"a folded lineand one more"_qs));
    EXPECT_EQ(notes("NOTE:Gr\xC3\r\n \xBC\xC3\x9F"
                    "e"),
              QStringList(u"Grüße"_qs))
        << "inside of a letter";
    EXPECT_EQ(notes("NOTE;LANG\r\n UAGE=de:x"), QStringList(u"x"_qs)) << "inside of the parameters";
    EXPECT_EQ(notes("NOTE:two\r\n words", "2.1"), QStringList(u"two words"_qs)) << "2.1 folds before a blank";
    for (const char *end : {"\n", "\r", "\r\n"}) {
        const QByteArray text = card("NOTE:a\r\n b\r\nFN:c").replace("\r\n", end);
        EXPECT_EQ(texts(text, "NOTE"), QStringList(u"ab"_qs));
        EXPECT_EQ(texts(text, "FN"), QStringList(u"c"_qs));
    }
}

TEST(VCardReaderTest, JoinsWhatQuotedPrintableBreaks)
{
    EXPECT_EQ(
        notes("NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:Gr=C3=\r\n=BC=C3=9Fe=0D=0Aan=\r\n alle", "2.1"),
        QStringList(u"Grüße\nan alle"_qs));
    EXPECT_EQ(notes("NOTE;QUOTED-PRINTABLE;CHARSET=ISO-8859-1:Gr=FC=DFe 3=3D3", "2.1"),
              QStringList(u"Grüße 3=3"_qs));
    EXPECT_EQ(notes("NOTE:1+1=\r\nFN:x"), QStringList(u"1+1="_qs)) << "only where it is encoded";
    EXPECT_EQ(cardsOf(card("NOTE;QUOTED-PRINTABLE:cut=", "2.1") + card("FN:b")).size(), 2u)
        << "the end of a card belongs to no value";
    const auto name = cardsOf(card("N;QUOTED-PRINTABLE;CHARSET=UTF-8:M=C3=BCl=3Bler;Ann=5C=3Ba", "2.1"));
    EXPECT_EQ(name.front().find("N")->components(), (QStringList{u"Mül;ler"_qs, u"Ann;a"_qs}));
}

TEST(VCardReaderTest, TakesPicturesHoweverTheyAreFolded)
{
    const QByteArray bytes = "\x89PNG with some bytes";
    const QByteArray code = bytes.toBase64();
    for (const QByteArray &lines :
         {"PHOTO;ENCODING=b;TYPE=PNG:" + code.left(9) + "\r\n " + code.mid(9),
          "PHOTO;ENCODING=BASE64;PNG:\r\n  " + code.left(9) + "\r\n  " + code.mid(9) + "\r\n",
          "PHOTO;BASE64;PNG:" + code.left(9) + "\r\n" + code.mid(9) + "\r\n\r\nFN:x"}) {
        for (const char *version : {"2.1", "3.0"})
            EXPECT_EQ(cardsOf(card(lines, version)).at(0).find("PHOTO")->bytes(), bytes) << lines.constData();
    }
}

TEST(VCardReaderTest, ReadsEveryCharacterSet)
{
    const QString text = u"Zoë Grün"_qs;
    const QByteArray utf8 = card("FN:" + text.toUtf8());
    EXPECT_EQ(texts("\xEF\xBB\xBF" + utf8, "FN"), QStringList(text));
    for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
        QStringEncoder with(encoding, QStringConverter::Flag::WriteBom);
        EXPECT_EQ(texts(with(QString::fromUtf8(utf8)), "FN"), QStringList(text));
        QStringEncoder without(encoding);
        EXPECT_EQ(texts(without(QString::fromUtf8(utf8)), "FN"), QStringList(text));
    }
    EXPECT_EQ(texts(card("FN:Zo\xEB Gr\xFCn"), "FN"), QStringList(text)) << "8-bit that is no UTF-8";
    EXPECT_EQ(texts(card("FN;CHARSET=ISO-8859-1:Zo\xEB Gr\xFCn", "2.1"), "FN"), QStringList(text));
    EXPECT_EQ(texts(card("FN;CHARSET=\"windows-1252\":\x80 100"), "FN"), QStringList(u"€ 100"_qs));
    EXPECT_EQ(texts(card("FN;CHARSET=UTF-8:Zo\xEB"), "FN"), QStringList(u"Zoë"_qs))
        << "it says what it is not";
    EXPECT_EQ(texts(card("FN;CHARSET=KOI8-R:\xE1\xCE\xCE\xC1", "2.1"), "FN"), QStringList(u"Анна"_qs));
    EXPECT_EQ(texts(card("FN;CHARSET=nonsense:Zo\xC3\xAB"), "FN"), QStringList(u"Zoë"_qs));
    // The second byte of the letter is the one of a semicolon's escape in other sets.
    EXPECT_EQ(cardsOf(card("N;CHARSET=SHIFT_JIS:\x95\x5C;a", "2.1")).front().find("N")->components(),
              (QStringList{u"表"_qs, u"a"_qs}));
}

TEST(VCardReaderTest, TakesNamesParametersAndEscapesApart)
{
    const VCard read =
        cardsOf(card("item1.tel;CELL;type=\"voice,work\";TYPE=pref;X-A=\"a:b;c\";X-B=^'q^^n^n^':1\r\n"
                     "ADR;TYPE=home:;;1\\; Lane\\, North\\nFloor;C:\\\\x;;;\r\n"
                     "URL:https\\://b.org/\\q\r\nbroken\r\n:none\r\nX;A=\"open:value"))
            .front();
    const VCardAttribute &phone = *read.find("TEL");
    EXPECT_EQ(phone.group(), "item1");
    EXPECT_EQ(phone.types(), (QStringList{u"CELL"_qs, u"VOICE"_qs, u"WORK"_qs, u"PREF"_qs}));
    EXPECT_EQ(phone.parameter("X-A"), u"a:b;c"_qs);
    EXPECT_EQ(phone.parameter("X-B"), u"\"q^n\n\""_qs);
    EXPECT_EQ(phone.text(), u"1"_qs);
    EXPECT_EQ(read.find("ADR")->components(),
              (QStringList{QString(u""_qs), u""_qs, u"1; Lane, North\nFloor"_qs, u"C:\\x"_qs, u""_qs, u""_qs,
                           u""_qs}));
    EXPECT_EQ(read.find("URL")->text(), u"https://b.org/\\q"_qs);
    EXPECT_EQ(read.find("X")->text(), u"value"_qs) << "quotes that are never closed";
    EXPECT_EQ(read.attributes.size(), 5u) << "lines that are none are passed over";
}

TEST(VCardReaderTest, FindsCardsWhateverStandsBetweenThem)
{
    using State = VCard::State;
    const auto cards =
        cardsOf("garbage\r\n\r\nbegin:vcard\r\nFN:a\r\nend:vcard\r\nmore: garbage\r\n" // whole
                "\xEF\xBB\xBF"
                "BEGIN:VCARD \r\nFN:b\r\n" // no end
                + card("FN:c\r\nAGENT:\r\nBEGIN:VCARD\r\nFN:inner\r\nBEGIN:VCARD\r\nEND:VCARD\r\n"
                       "END:VCARD\r\nTITLE:outer",
                       "2.1") +
                "BEGIN:VCARD\r\nFN:d\r\nTEL:1"); // cut off
    ASSERT_EQ(cards.size(), 4u);
    const std::vector<State> states = {State::Whole, State::CutOff, State::Whole, State::CutOff};
    for (std::size_t place = 0; place < cards.size(); ++place) {
        EXPECT_EQ(cards[place].find("FN")->text(), QString(QChar(u'a' + char16_t(place))));
        EXPECT_EQ(cards[place].state, states[place]) << place;
    }
    EXPECT_EQ(cards[2].find("TITLE")->text(), u"outer"_qs) << "behind the card inside";
    EXPECT_EQ(cards[3].find("TEL")->text(), u"1"_qs);
    EXPECT_EQ(cards[1].line, 7);
    EXPECT_EQ(cards[2].version, VCard::Version::V21);
    for (const char *nothing : {"", "\r\n", "BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n", "END:VCARD"})
        EXPECT_TRUE(cardsOf(nothing).empty());
}

/// A device that makes its text as it is read, and keeps nothing.
class EndlessText : public QIODevice
{
public:
    EndlessText(QByteArray beginning, const QByteArray &repeated, qint64 wantedSize)
        : ahead(std::move(beginning))
        // In large pieces, so that the text costs less than the reading.
        , pattern(repeated.repeated(1 + 4096 / repeated.size()))
        , left(wantedSize)
    {
        open(ReadOnly);
    }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 most) override
    {
        while (ahead.size() < most && left > 0) {
            ahead += pattern;
            left -= pattern.size();
        }
        const qint64 count = std::min<qint64>(most, ahead.size());
        std::copy_n(ahead.constData(), count, data);
        ahead.remove(0, count);
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray ahead;
    QByteArray pattern;
    qint64 left;
};

TEST(VCardReaderTest, ReadsFiftyMegabytesCardByCard)
{
    EndlessText text({}, card("FN:Ann Lee\r\nN:Lee;Ann;;;\r\nTEL;TYPE=CELL:123"), 50'000'000);
    VCardReader reader(text);
    QElapsedTimer timer;
    timer.start();
    int count = 0;
    while (reader.next())
        ++count;
    EXPECT_GT(count, 500'000);
    EXPECT_GE(reader.position(), 50'000'000);
    EXPECT_LT(timer.elapsed(), 60'000);
}

TEST(VCardReaderTest, IsNotHeldUpByALineThatIsFoldedOverAndOver)
{
    QByteArray folded = "NOTE";
    for (int fold = 0; fold < 400'000; ++fold)
        folded += "\r\n =";
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(texts(card(folded) + card("FN:Ann"), "FN"), QStringList(u"Ann"_qs));
    EXPECT_LT(timer.elapsed(), 10'000) << "Each fold is looked at once";
}

TEST(VCardReaderTest, RefusesACardThatNeverEndsAndGoesOn)
{
    for (const QByteArray &pattern :
         {QByteArray("x"), QByteArray("TEL:1\r\n"), QByteArray("TEL:1\r\n 2\r\n")}) {
        EndlessText text("BEGIN:VCARD\r\nFN:", pattern, VCardReader::mostBytes + 1'000'000);
        VCardReader reader(text);
        const auto huge = reader.next();
        ASSERT_TRUE(huge);
        EXPECT_EQ(huge->state, VCard::State::TooLarge);
        EXPECT_TRUE(huge->attributes.empty());
        EXPECT_FALSE(reader.next());
    }
    QByteArray many = "BEGIN:VCARD\r\nFN:a\r\n";
    for (std::size_t line = 0; line < VCardReader::mostAttributes; ++line)
        many += "TEL:1\r\n";
    const auto cards = cardsOf(many + "END:VCARD\r\n" + card("FN:b"));
    ASSERT_EQ(cards.size(), 2u);
    EXPECT_EQ(cards[0].state, VCard::State::TooLarge);
    EXPECT_EQ(cards[1].find("FN")->text(), u"b"_qs);
}

} // namespace
