#include "eventkit/ItemMerge.h"
#include "support/TestSupport.h"

#include <gmock/gmock.h>

#include <random>

using testing::HasSubstr;
using testing::Not;

namespace {

/// An object with these components; a line each.
QByteArray object(const QByteArray &components)
{
    return QByteArray("BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//x//EN\n" + components + "END:VCALENDAR\n")
        .replace('\n', "\r\n");
}

QByteArray event(const QByteArray &lines, const QByteArray &start = "DTSTART:20240304T090000Z\n")
{
    return object("BEGIN:VEVENT\nUID:u\n" + start + lines + "END:VEVENT\n");
}

std::string merged(const std::optional<QByteArray> &present, const std::optional<QByteArray> &before,
                   const std::optional<QByteArray> &after, bool yields = false)
{
    const auto text = itemmerge::merged(present, {0, 0, {}, u"u"_qs, before, after, yields});
    return text ? text->toStdString() : "gone";
}

constexpr const char *gone = "gone";

/// Without the number of the version, which is raised with each change that is taken back.
QByteArray unstamped(const itemmerge::ItemText &text)
{
    return text ? QByteArray(*text).replace("SEQUENCE:1\r\n", "") : QByteArray(gone);
}

} // namespace

TEST(ItemMerge, WritesOnlyWhatTheChangeIsAbout)
{
    const QByteArray before = event("DTEND:20240304T100000Z\nSUMMARY:Old\nDESCRIPTION:Words\n");
    const QByteArray after = event("DTEND:20240304T100000Z\nSUMMARY:New\nDESCRIPTION:Words\n");
    // Somebody else has moved it and written something.
    const QByteArray present = event("DTEND:20240305T100000Z\nSUMMARY:Old\nDESCRIPTION:Other\nURL:x:y\n",
                                     "DTSTART:20240305T090000Z\n");
    const std::string result = merged(present, before, after);
    EXPECT_THAT(result, HasSubstr("SUMMARY:New"));
    EXPECT_THAT(result, HasSubstr("DTSTART:20240305T090000Z"));
    EXPECT_THAT(result, HasSubstr("DTEND:20240305T100000Z"));
    EXPECT_THAT(result, HasSubstr("DESCRIPTION:Other"));
    EXPECT_THAT(result, HasSubstr("URL:x:y"));
    EXPECT_EQ(merged(before, before, after), after.toStdString());
    EXPECT_EQ(merged(after, before, after), after.toStdString()) << "a second time it changes nothing";
}

TEST(ItemMerge, ADisputedFieldIsTheUsersUnlessSomethingIsTakenBack)
{
    const QByteArray before = event("SUMMARY:Old\nLOCATION:Here\n");
    const QByteArray after = event("SUMMARY:New\nLOCATION:There\n");
    const QByteArray present = event("SUMMARY:Theirs\nLOCATION:Here\n");
    EXPECT_THAT(merged(present, before, after), HasSubstr("SUMMARY:New"));
    const std::string yielding = merged(present, before, after, true);
    EXPECT_THAT(yielding, HasSubstr("SUMMARY:Theirs"));
    EXPECT_THAT(yielding, HasSubstr("LOCATION:There"));
}

TEST(ItemMerge, TimesGoTogetherAndAreComparedByWhatTheyMean)
{
    const QByteArray zone = "BEGIN:VTIMEZONE\nTZID:B\nBEGIN:STANDARD\nDTSTART:19700101T000000\n"
                            "TZOFFSETFROM:+0100\nTZOFFSETTO:+0100\nEND:STANDARD\nEND:VTIMEZONE\n";
    const QByteArray before = event("DTEND:20240304T100000Z\nSUMMARY:a\n");
    const QByteArray after =
        object(zone + "BEGIN:VEVENT\nUID:u\nDTSTART;TZID=B:20240304T120000\nDURATION:PT1H\nSUMMARY:a\n"
                      "END:VEVENT\n");
    // The same hour in other words, as a server may have written it.
    const QByteArray reworded = object(
        zone +
        "BEGIN:VEVENT\nUID:u\nDTSTART;TZID=B:20240304T100000\nDTEND;TZID=B:20240304T110000\nSUMMARY:b\n"
        "END:VEVENT\n");
    const std::string result = merged(reworded, before, after, true);
    EXPECT_THAT(result, HasSubstr("DTSTART;TZID=B:20240304T120000"));
    EXPECT_THAT(result, HasSubstr("DURATION:PT1H"));
    EXPECT_THAT(result, Not(HasSubstr("DTEND")));
    EXPECT_THAT(result, HasSubstr("SUMMARY:b"));
    EXPECT_THAT(merged(before, before, after), HasSubstr("BEGIN:VTIMEZONE"));
    const QByteArray moved = event("DTEND:20240309T100000Z\nSUMMARY:a\n", "DTSTART:20240309T090000Z\n");
    EXPECT_EQ(merged(moved, before, after, true), moved.toStdString())
        << "theirs is newer than what is undone";
}

TEST(ItemMerge, ExcludedDaysOfBothSidesStay)
{
    const QByteArray rule = "RRULE:FREQ=DAILY;COUNT=9\n";
    const QByteArray before = event(rule + "EXDATE:20240305T090000Z\n");
    const QByteArray after = event(rule + "EXDATE:20240305T090000Z\nEXDATE:20240306T090000Z\n");
    const QByteArray present = event(rule + "EXDATE:20240305T090000Z\nEXDATE:20240307T090000Z\n");
    const std::string result = merged(present, before, after);
    for (const char *day : {"20240305", "20240306", "20240307"})
        EXPECT_THAT(result, HasSubstr(std::string("EXDATE:") + day));
    const std::string back = merged(result.c_str(), after, before, true);
    EXPECT_THAT(back, Not(HasSubstr("EXDATE:20240306")));
    EXPECT_THAT(back, HasSubstr("EXDATE:20240307"));
}

TEST(ItemMerge, ARuleInTheWordsOfAStoreIsTheSameRule)
{
    const QByteArray before = event("RRULE:FREQ=DAILY;COUNT=4\n");
    const QByteArray after = event("RRULE:FREQ=DAILY;INTERVAL=1;UNTIL=20240305T080000Z\n");
    const QByteArray stored = event("RRULE:UNTIL=20240305T080000Z;FREQ=DAILY\nSEQUENCE:2\n");
    EXPECT_THAT(merged(stored, after, before, true), HasSubstr("RRULE:FREQ=DAILY;COUNT=4"));
    const QByteArray theirs = event("RRULE:FREQ=WEEKLY;COUNT=9\n");
    EXPECT_EQ(merged(theirs, after, before, true), theirs.toStdString());
}

TEST(ItemMerge, AlarmsAndEditedOccurrencesAreFieldsOfTheirOwn)
{
    const QByteArray series = "BEGIN:VEVENT\nUID:u\nDTSTART:20240304T090000Z\nRRULE:FREQ=DAILY;COUNT=5\n";
    const auto occurrence = [](const QByteArray &day, const QByteArray &title) {
        return "BEGIN:VEVENT\nUID:u\nRECURRENCE-ID:" + day + "T090000Z\nDTSTART:" + day +
               "T090000Z\nSUMMARY:" + title + "\nEND:VEVENT\n";
    };
    const QByteArray alarm = "BEGIN:VALARM\nACTION:DISPLAY\nTRIGGER:-PT5M\nEND:VALARM\n";
    const QByteArray before = object(series + "SUMMARY:s\nEND:VEVENT\n");
    const QByteArray after =
        object(series + "SUMMARY:s\n" + alarm + "END:VEVENT\n" + occurrence("20240305", "mine"));
    const QByteArray present =
        object(series + "SUMMARY:theirs\nEND:VEVENT\n" + occurrence("20240306", "also"));
    const std::string result = merged(present, before, after);
    for (const char *line : {"SUMMARY:theirs", "TRIGGER:-PT5M", "SUMMARY:mine", "SUMMARY:also"})
        EXPECT_THAT(result, HasSubstr(line));
    const std::string back = merged(result.c_str(), after, before, true);
    EXPECT_THAT(back, Not(HasSubstr("SUMMARY:mine")));
    EXPECT_THAT(back, Not(HasSubstr("TRIGGER")));
    EXPECT_THAT(back, HasSubstr("SUMMARY:also"));
    // What stores add to an alarm does not make it another one.
    const QByteArray named = QByteArray(after).replace("TRIGGER:-PT5M\r\n", "TRIGGER:-PT5M\r\nX-UID:1\r\n");
    EXPECT_THAT(merged(named, after, before, true), Not(HasSubstr("TRIGGER")));
}

TEST(ItemMerge, WhatIsMadeOrGoesIsComparedAsAWhole)
{
    const QByteArray made = event("SUMMARY:Mine\n");
    EXPECT_EQ(merged(std::nullopt, std::nullopt, made), made.toStdString());
    const QByteArray written = event("DTSTAMP:20240101T000000Z\nSEQUENCE:4\nX-A:b\nSUMMARY:Mine\n");
    EXPECT_EQ(merged(written, std::nullopt, made), written.toStdString()) << "it is there already";
    EXPECT_EQ(merged(written, made, std::nullopt), gone);
    EXPECT_EQ(merged(written, made, std::nullopt, true), gone) << "only stamped by a store";
    const QByteArray edited = event("SUMMARY:Theirs\n");
    EXPECT_EQ(merged(edited, made, std::nullopt), gone) << "the user has deleted it";
    EXPECT_EQ(merged(edited, made, std::nullopt, true), edited.toStdString()) << "it is theirs now";
    EXPECT_EQ(merged(std::nullopt, made, std::nullopt), gone);
    // Removed elsewhere: an edit brings it back, an undo does not.
    EXPECT_EQ(merged(std::nullopt, made, edited), edited.toStdString());
    EXPECT_EQ(merged(std::nullopt, made, edited, true), gone);
    EXPECT_EQ(merged("rubbish", made, edited, true), "rubbish");
}

TEST(ItemMerge, WhatMovesTakesThePresentTextAlong)
{
    const QByteArray former = event("SUMMARY:Old\n");
    const QByteArray moved = event("SUMMARY:New\n");
    const QByteArray theirs = event("SUMMARY:Old\nURL:x:y\n");
    const auto move = [&](const itemmerge::ItemText &there, const itemmerge::ItemText &here, bool yields) {
        const std::vector<ItemChange> changes = {{0, 1, u"there"_qs, u"u"_qs, {}, moved, yields},
                                                 {0, 1, u"here"_qs, u"u"_qs, former, {}, yields}};
        EXPECT_EQ(itemmerge::countTogether(changes), 2u);
        const auto texts = itemmerge::mergedTogether({there, here}, changes);
        EXPECT_FALSE(texts.at(1)) << "it leaves its former place";
        return unstamped(texts.at(0)).toStdString();
    };
    for (const bool yields : {false, true}) {
        EXPECT_EQ(move({}, former, yields), moved.toStdString());
        const std::string taken = move({}, theirs, yields);
        EXPECT_THAT(taken, HasSubstr("SUMMARY:New"));
        EXPECT_THAT(taken, HasSubstr("URL:x:y"));
        // Half of it was done, and they edited what was left.
        EXPECT_EQ(move(moved, former, yields), moved.toStdString());
        EXPECT_THAT(move(moved, theirs, yields), HasSubstr("URL:x:y"));
        EXPECT_EQ(move(moved, {}, yields), moved.toStdString()) << "it was done already";
    }
    EXPECT_EQ(move({}, {}, true), gone) << "they removed it";
    EXPECT_EQ(move({}, {}, false), moved.toStdString()) << "but the user has edited it";
}

TEST(ItemMerge, ADivisionIsTakenBackAsAWholeOrNotAtAll)
{
    const auto part = [](const char *uid, const QByteArray &lines) {
        return object("BEGIN:VEVENT\nUID:" + QByteArray(uid) + "\nDTSTART:20240304T090000Z\n" + lines +
                      "END:VEVENT\n");
    };
    const QByteArray whole = part("u", "RRULE:FREQ=DAILY;COUNT=5\n");
    const QByteArray earlier = part("u", "RRULE:FREQ=DAILY;COUNT=2\n");
    const QByteArray later = part("n", "RRULE:FREQ=DAILY;COUNT=3\n");
    const std::vector<ItemChange> undone = {{0, 1, {}, u"u"_qs, earlier, whole, true},
                                            {0, 1, {}, u"n"_qs, later, {}, true}};
    const std::vector<ItemChange> redone = {{0, 1, {}, u"n"_qs, {}, later, true},
                                            {0, 1, {}, u"u"_qs, whole, earlier, true}};
    using Texts = std::vector<itemmerge::ItemText>;
    const auto result = [](const Texts &present, const std::vector<ItemChange> &changes) {
        QByteArrayList texts;
        for (const auto &text : itemmerge::mergedTogether(present, changes))
            texts.append(unstamped(text));
        return texts.join('\n').toStdString();
    };
    const auto expectUntouched = [](const Texts &present, const std::vector<ItemChange> &changes) {
        EXPECT_EQ(itemmerge::mergedTogether(present, changes), present);
    };
    EXPECT_EQ(result({earlier, later}, undone), (whole + '\n' + gone).toStdString());
    EXPECT_EQ(result({{}, whole}, redone), (later + '\n' + earlier).toStdString());
    const auto noted = [](QByteArray text) { return text.replace("END:VEVENT", "URL:x:y\r\nEND:VEVENT"); };
    const auto merged = itemmerge::mergedTogether({noted(earlier), later}, undone);
    EXPECT_THAT(merged.at(0)->toStdString(), HasSubstr("URL:x:y"));
    EXPECT_THAT(merged.at(0)->toStdString(), HasSubstr("COUNT=5"));
    EXPECT_FALSE(merged.at(1));
    // They work on the later part, or have another rule for the earlier one, or none of it at all.
    expectUntouched({earlier, noted(later)}, undone);
    const QByteArray other = part("u", "RRULE:FREQ=WEEKLY;COUNT=2\n");
    expectUntouched({other, later}, undone);
    expectUntouched({{}, later}, undone);
    expectUntouched({{}, other}, redone);
    expectUntouched({{}, {}}, redone);
}

TEST(ItemMerge, TogetherAreChangesOfOneGroupEachObjectOnce)
{
    const auto change = [](int group, const QString &uid, bool yields = false) {
        return ItemChange{0, group, u"c"_qs, uid, {}, {}, yields};
    };
    const std::vector<ItemChange> all = {change(1, u"a"_qs), change(1, u"b"_qs), change(1, u"a"_qs),
                                         change(1, u"c"_qs, true), change(2, u"d"_qs, true)};
    std::vector<size_t> counts;
    for (std::span<const ItemChange> left(all); !left.empty(); left = left.subspan(counts.back()))
        counts.push_back(itemmerge::countTogether(left));
    EXPECT_EQ(counts, std::vector<size_t>({2, 1, 1, 1}));
}

TEST(ItemMerge, GeneratedChangesThatAreTakenBackGiveTheFormerTextBack)
{
    std::mt19937 random(testSeed());
    const QByteArrayList fields = {"SUMMARY:%1\n",   "DESCRIPTION:%1\n",          "LOCATION:%1\n",
                                   "URL:x:%1\n",     "DTEND:2024030%1T100000Z\n", "X-FREE;P=%1:%1\n",
                                   "CATEGORIES:%1\n"};
    const auto text = [&] {
        QByteArray lines;
        for (const QByteArray &field : fields) {
            if (random() % 3 != 0)
                lines += QByteArray(field).replace("%1", QByteArray::number(5 + int(random() % 4)));
        }
        return event(lines);
    };
    for (int round = 0; round < 300; ++round) {
        const QByteArray before = text();
        const QByteArray after = text();
        const auto forth = itemmerge::merged(before, {0, 0, {}, u"u"_qs, before, after, false});
        ASSERT_TRUE(forth);
        EXPECT_EQ(*forth, after);
        const auto back = itemmerge::merged(*forth, {0, 0, {}, u"u"_qs, after, before, true});
        ASSERT_TRUE(back);
        EXPECT_TRUE(itemmerge::isSame(*back, before))
            << before.toStdString() << after.toStdString() << back->toStdString();
    }
}

TEST(ItemMerge, AnEditOfOneOccurrenceIsNoneOfThisAndTheLaterOnes)
{
    const auto series = [](const QByteArray &title) {
        return "BEGIN:VEVENT\nUID:u\nDTSTART:20240304T090000Z\nRRULE:FREQ=DAILY;COUNT=5\nSUMMARY:" + title +
               "\nEND:VEVENT\n";
    };
    const auto edit = [](const QByteArray &parameter, const QByteArray &day, const QByteArray &title) {
        return "BEGIN:VEVENT\nUID:u\nRECURRENCE-ID" + parameter + ":" + day + "T090000Z\nDTSTART:" + day +
               "T110000Z\nSUMMARY:" + title + "\nEND:VEVENT\n";
    };
    const QByteArray range = ";RANGE=THISANDFUTURE";
    const QByteArray before = object(series("s") + edit(range, "20240305", "Later"));
    const QByteArray after =
        object(series("s") + edit({}, "20240305", "Alone") + edit(range, "20240306", "Later"));
    const QByteArray present = object(series("Theirs") + edit(range, "20240305", "Later"));
    const std::string there = merged(present, before, after);
    EXPECT_THAT(there, HasSubstr("RECURRENCE-ID:20240305T090000Z"));
    EXPECT_THAT(there, HasSubstr("RECURRENCE-ID;RANGE=THISANDFUTURE:20240306T090000Z"));
    EXPECT_THAT(there, Not(HasSubstr("THISANDFUTURE:20240305")));
    EXPECT_EQ(unstamped(QByteArray::fromStdString(merged(there.c_str(), after, before, true))), present);
}
