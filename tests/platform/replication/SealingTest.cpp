#include "replication/Sealing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

// What the key of a folder opens, and what nothing opens.

using replication::KeyTerms;
using replication::Sealer;
using replication::Sealing;
using replication::SealingState;

namespace {

class SealingTest : public testing::Test
{
protected:
    Sealing device(const QString &computer) const
    {
        return {shared.path(), home.filePath(computer + QStringLiteral("/sealing.key")),
                QStringLiteral(MORVANE_SEALING_LIBRARY)};
    }
    QString messageOf(const OptionalError &error) { return error ? error->message : QString(); }
    QString keyFile() const { return shared.filePath(QStringLiteral("key")); }
    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir shared;
    QTemporaryDir home;
    const QString passphrase = QStringLiteral("sm\u00f8rrebr\u00f8d at noon");
    const QString name = QStringLiteral("0123456789abcdef/7");
};

} // namespace

TEST_F(SealingTest, OnlyTheSameBytesUnderTheSameNameAndKeyAreOpened)
{
    const Sealing one = device(u"one"_qs);
    ASSERT_EQ(messageOf(one.begin(passphrase)), QString());
    const auto sealer = one.look().sealer;
    ASSERT_TRUE(sealer);
    for (const QByteArray &content : {QByteArray(), QByteArray("Momo"), QByteArray(300'000, 'm')}) {
        const auto sealed = sealer->seal(content, name);
        ASSERT_TRUE(sealed);
        EXPECT_FALSE(content.size() > 0 && sealed.value().contains(content.left(4)));
        EXPECT_NE(sealed.value(), sealer->seal(content, name).value()) << "Equal files do not look equal";
        const auto opened = sealer->open(sealed.value(), name);
        ASSERT_TRUE(opened) << qPrintable(opened.error().message);
        EXPECT_EQ(opened.value(), content);
    }
    const QByteArray whole = sealer->seal("Momo", name).value();
    EXPECT_FALSE(sealer->open(whole, QStringLiteral("0123456789abcdef/8"))) << "A copy under another name";
    for (qsizetype place = 0; place < whole.size(); ++place) {
        QByteArray bent = whole;
        bent[place] = char(bent[place] ^ 0x10);
        EXPECT_FALSE(sealer->open(bent, name)) << "Bit of byte " << place;
        EXPECT_FALSE(sealer->open(whole.left(place), name)) << "Cut at " << place;
    }
    EXPECT_FALSE(sealer->open(whole + 'x', name));

    // Each folder has a key of its own, even with the same passphrase; the error tells it from damage.
    ASSERT_TRUE(QFile::remove(keyFile()));
    const Sealing other = device(u"other"_qs);
    ASSERT_EQ(messageOf(other.begin(passphrase)), QString());
    const auto foreign = other.look().sealer->open(whole, name);
    ASSERT_FALSE(foreign);
    EXPECT_TRUE(foreign.error().message.contains(u"another passphrase"_qs));
}

TEST_F(SealingTest, ASecondDeviceNeedsThePassphraseOfTheFirst)
{
    const Sealing one = device(u"one"_qs);
    const Sealing other = device(u"other"_qs);
    EXPECT_EQ(one.look().state, SealingState::Open);
    EXPECT_TRUE(other.enter(passphrase).has_value()) << "There is nothing to enter it for";
    ASSERT_EQ(messageOf(one.begin(passphrase)), QString());
    const QByteArray published = contents(keyFile());
    const QByteArray sealed = one.look().sealer->seal("Momo", name).value();

    EXPECT_EQ(other.look().state, SealingState::NeedsPassphrase);
    EXPECT_FALSE(other.look().canExchange());
    EXPECT_TRUE(other.begin(passphrase).has_value()) << "It is sealed once";
    EXPECT_TRUE(other.enter(passphrase + u'!').has_value());
    EXPECT_EQ(other.look().state, SealingState::NeedsPassphrase);
    // The same letters as another system writes them.
    ASSERT_EQ(messageOf(other.enter(passphrase.normalized(QString::NormalizationForm_D))), QString());
    ASSERT_EQ(other.look().state, SealingState::Sealed);
    EXPECT_EQ(other.look().sealer->open(sealed, name).value(), "Momo");
    EXPECT_EQ(contents(keyFile()), published) << "It is written once";

    // The key is kept for its owner only, and the passphrase not at all.
    const QString kept = home.filePath(QStringLiteral("other/sealing.key"));
    EXPECT_EQ(QFileInfo(kept).permissions() &
                  (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
              QFile::Permissions());
    for (const QString &file : {kept, keyFile()})
        EXPECT_FALSE(contents(file).contains("noon")) << qPrintable(file);
    EXPECT_EQ(device(u"other"_qs).look().state, SealingState::Sealed) << "Also after a restart";
}

TEST_F(SealingTest, ASealedFolderNeverCountsAsOpenAgain)
{
    const Sealing one = device(u"one"_qs);
    ASSERT_EQ(messageOf(one.begin(passphrase)), QString());
    const QByteArray published = contents(keyFile());
    // The file went: it is written again by who has the key.
    ASSERT_TRUE(QFile::remove(keyFile()));
    EXPECT_EQ(one.look().state, SealingState::Sealed);
    EXPECT_EQ(contents(keyFile()), published);
    EXPECT_EQ(QDir(shared.path()).entryList(QDir::Files | QDir::Hidden), QStringList(u"key"_qs));
    // A file that has not come whole, or asks for more work than anybody would wait for.
    for (const QByteArray &bad : {QByteArray(), published.left(published.size() / 2), QByteArray("{}")}) {
        write(keyFile(), bad);
        EXPECT_EQ(one.look().state, SealingState::Unusable);
        EXPECT_TRUE(one.enter(passphrase).has_value());
        EXPECT_TRUE(one.begin(passphrase).has_value());
        EXPECT_EQ(contents(keyFile()), bad);
    }
    QByteArray endless = published;
    endless.replace("\"opsLimit\": 3", "\"opsLimit\": 3000000000");
    ASSERT_NE(endless, published);
    write(keyFile(), endless);
    EXPECT_TRUE(device(u"other"_qs).enter(passphrase).has_value());
    // Another device has sealed it with a key of its own: that one counts.
    ASSERT_TRUE(QFile::remove(keyFile()));
    ASSERT_EQ(messageOf(device(u"other"_qs).begin(u"another one"_qs)), QString());
    EXPECT_EQ(one.look().state, SealingState::NeedsPassphrase);
    // Without the library it is not open either.
    const Sealing bare(shared.path(), home.filePath(QStringLiteral("other/sealing.key")),
                       QStringLiteral("/nowhere/morvane-sealing"));
    EXPECT_EQ(bare.look().state, SealingState::Unusable);
    EXPECT_TRUE(bare.enter(u"another one"_qs).has_value());
}

// A folder whose key is followed by another one, or by none.

namespace {

class SealingChangeTest : public SealingTest
{
protected:
    SealingChangeTest()
    {
        EXPECT_EQ(messageOf(one.begin(passphrase)), QString());
        EXPECT_EQ(messageOf(other.enter(passphrase)), QString());
    }
    static QByteArray sealedBy(const Sealing &device, const QByteArray &content, const QString &file)
    {
        const auto sealer = device.look().sealer;
        return sealer ? sealer->seal(content, file).value() : QByteArray();
    }
    static QByteArray openedBy(const Sealing &device, const QByteArray &bytes, const QString &file)
    {
        auto content = device.look().opened(bytes, file);
        return content ? *content : QByteArray();
    }
    /// The key files of the folder, and back again: as if they were still on their way.
    std::map<QString, QByteArray> files() const
    {
        std::map<QString, QByteArray> all;
        for (const QString &file : QDir(shared.path()).entryList(QDir::Files | QDir::Hidden))
            all[file] = contents(shared.filePath(file));
        return all;
    }
    void putBack(const std::map<QString, QByteArray> &all)
    {
        for (const QString &file : QDir(shared.path()).entryList(QDir::Files | QDir::Hidden))
            QFile::remove(shared.filePath(file));
        for (const auto &[file, bytes] : all)
            write(shared.filePath(file), bytes);
    }
    QByteArray kept(const char *computer) const { return contents(keptPath(computer)); }
    QString keptPath(const char *computer) const
    {
        return home.filePath(QString::fromUtf8(computer) + QStringLiteral("/sealing.key"));
    }

    const QString second = QStringLiteral("the second one");
    const QString third = QStringLiteral("the third of them");
    Sealing one{shared.path(), keptPath("one"), QStringLiteral(MORVANE_SEALING_LIBRARY)};
    Sealing other{shared.path(), keptPath("other"), QStringLiteral(MORVANE_SEALING_LIBRARY)};
};

} // namespace

TEST_F(SealingChangeTest, WhoHasTheNewPassphraseReadsWhatWasEverSealed)
{
    const QByteArray first = sealedBy(one, "first", name);
    const std::map<QString, QByteArray> before = files();
    ASSERT_EQ(messageOf(one.change(second)), QString());
    const QByteArray next = sealedBy(one, "next", name);
    EXPECT_EQ(openedBy(one, first, name), "first");
    EXPECT_FALSE(one.look().isFit(first)) << "It is to be sealed anew";
    EXPECT_TRUE(one.look().isFit(next));

    // The other one, where the files have come and the key has not.
    const std::map<QString, QByteArray> after = files();
    ASSERT_EQ(after.size(), 2U);
    const QByteArray keptOfOne = kept("one");
    putBack(before);
    EXPECT_EQ(other.look().state, SealingState::Sealed);
    EXPECT_EQ(openedBy(other, next, name), "");
    const QByteArray late = sealedBy(other, "late", name);
    putBack(after);
    EXPECT_EQ(openedBy(one, late, name), "late");
    EXPECT_EQ(other.look().state, SealingState::NeedsPassphrase);
    EXPECT_TRUE(other.look().problem.contains(u"was changed"_qs));
    EXPECT_TRUE(other.change(third).has_value()) << "Only who has the key changes it";
    EXPECT_TRUE(other.end().has_value());
    EXPECT_TRUE(other.enter(passphrase).has_value()) << "The former one does not do";
    ASSERT_EQ(messageOf(other.enter(second)), QString());
    for (const QByteArray &file : {first, next, late})
        EXPECT_NE(openedBy(other, file, name), "");

    // Who was away for two of them, and who comes anew.
    ASSERT_EQ(messageOf(other.change(third)), QString());
    ASSERT_EQ(messageOf(one.enter(third)), QString());
    const Sealing fresh = device(u"fresh"_qs);
    ASSERT_EQ(messageOf(fresh.enter(third)), QString());
    for (const Sealing *any : {static_cast<const Sealing *>(&one), &fresh}) {
        for (const QByteArray &file : {first, next, late, sealedBy(other, "last", name)})
            EXPECT_NE(openedBy(*any, file, name), "");
    }
    // Files that go come back; the former key does not come back with them.
    putBack(before);
    EXPECT_EQ(one.look().state, SealingState::Sealed);
    EXPECT_EQ(files().size(), 3U);
    EXPECT_EQ(openedBy(other, sealedBy(one, "again", name), name), "again");
    EXPECT_FALSE(contents(shared.filePath(files().rbegin()->first)).contains("second"));
}

TEST_F(SealingChangeTest, AnEndThatWasSaidByWhoHasTheKeyCountsForAll)
{
    const QByteArray sealed = sealedBy(one, "Momo", name);
    const std::map<QString, QByteArray> before = files();
    ASSERT_EQ(messageOf(one.end()), QString());
    for (const Sealing *any : {static_cast<const Sealing *>(&one), static_cast<const Sealing *>(&other)}) {
        EXPECT_EQ(any->look().state, SealingState::Open);
        EXPECT_EQ(openedBy(*any, sealed, name), "Momo");
        EXPECT_EQ(openedBy(*any, "open", name), "open");
        EXPECT_FALSE(any->look().isFit(sealed));
    }
    // Who never had the key goes on as well, and knows a file of a key that is to come.
    const Sealing fresh = device(u"fresh"_qs);
    EXPECT_EQ(fresh.look().state, SealingState::Open);
    EXPECT_EQ(openedBy(fresh, sealed, name), "");
    EXPECT_NE(fresh.look().opened(sealed, name).error().code, replication::SealingStatus::unknownKey);
    EXPECT_TRUE(fresh.enter(passphrase).has_value());

    // An end that somebody else wrote is none; the true one is not lost with its file.
    const auto after = files();
    const QByteArray end = after.at(u"key-2-open"_qs);
    putBack(before);
    const QByteArray keptOfOne = kept("one");
    ASSERT_TRUE(QFile::remove(keptPath("one")));
    const QByteArray keptOfOther = kept("other");
    ASSERT_TRUE(QFile::remove(keptPath("other")));
    QByteArray forged = end;
    const qsizetype place = forged.indexOf("disclosed") + 15;
    forged[place] = forged[place] == 'A' ? 'B' : 'A';
    write(shared.filePath(u"key-2-open"_qs), forged);
    EXPECT_EQ(one.look().state, SealingState::NeedsPassphrase);
    ASSERT_EQ(messageOf(one.enter(passphrase)), QString());
    EXPECT_EQ(one.look().state, SealingState::Sealed);
    putBack(before);
    write(keptPath("other"), keptOfOther);
    EXPECT_EQ(other.look().state, SealingState::Open);
    EXPECT_EQ(files(), after);

    // It is sealed again, with a key that the others need.
    ASSERT_EQ(messageOf(other.begin(second)), QString());
    EXPECT_EQ(other.look().state, SealingState::Sealed);
    EXPECT_EQ(openedBy(other, sealed, name), "Momo");
    EXPECT_EQ(one.look().state, SealingState::NeedsPassphrase);
    const auto unknown = fresh.look();
    EXPECT_EQ(unknown.state, SealingState::NeedsPassphrase);
}

TEST_F(SealingChangeTest, FilesOfFormerVersionsGoOn)
{
    // They knew one key, and no end.
    const QByteArray sealed = sealedBy(one, "Momo", name);
    QJsonObject file = QJsonDocument::fromJson(contents(keyFile())).object();
    file.remove(u"generation"_qs);
    file.remove(u"end"_qs);
    write(keyFile(), QJsonDocument(file).toJson());
    for (const char *computer : {"one", "other"}) {
        const QJsonObject now = QJsonDocument::fromJson(kept(computer)).object();
        const QJsonObject key = now.value(u"keys"_qs).toArray().first().toObject();
        write(keptPath(computer), QJsonDocument(QJsonObject{{u"folder"_qs, shared.path()},
                                                            {u"terms"_qs, file},
                                                            {u"key"_qs, key.value(u"key"_qs)}})
                                      .toJson());
    }
    EXPECT_EQ(openedBy(one, sealed, name), "Momo");
    EXPECT_EQ(openedBy(other, sealed, name), "Momo");
    ASSERT_EQ(messageOf(one.end()), QString());
    EXPECT_EQ(one.look().state, SealingState::Open);
    EXPECT_EQ(other.look().state, SealingState::Open);
    // Who never had the key cannot tell whether that is true, and asks for it.
    const Sealing fresh = device(u"fresh"_qs);
    EXPECT_EQ(fresh.look().state, SealingState::NeedsPassphrase);
    ASSERT_EQ(messageOf(fresh.enter(passphrase)), QString());
    EXPECT_EQ(fresh.look().state, SealingState::Open);
    EXPECT_EQ(openedBy(fresh, sealed, name), "Momo");
}

TEST_F(SealingChangeTest, TwoChangesAtTheSameTimeComeOutAlikeEverywhere)
{
    const auto before = files();
    ASSERT_EQ(messageOf(one.change(second)), QString());
    const QByteArray ofOne = sealedBy(one, "one", name);
    const auto filesOfOne = files();
    putBack(before);
    ASSERT_EQ(messageOf(other.change(third)), QString());
    const QByteArray ofOther = sealedBy(other, "other", name);
    auto both = files();
    both.insert(filesOfOne.begin(), filesOfOne.end());
    putBack(both);
    const bool hasOneWon = one.look().state == SealingState::Sealed;
    EXPECT_NE(other.look().state == SealingState::Sealed, hasOneWon);
    const Sealing &loser = hasOneWon ? other : one;
    ASSERT_EQ(messageOf(loser.enter(hasOneWon ? second : third)), QString());
    EXPECT_EQ(openedBy(loser, hasOneWon ? ofOne : ofOther, name), hasOneWon ? "one" : "other");
    EXPECT_EQ(openedBy(loser, hasOneWon ? ofOther : ofOne, name), hasOneWon ? "other" : "one")
        << "What it wrote with its own key can be written anew";

    // One ends the sealing while the other changes it: it stays sealed.
    const auto bothKnow = files();
    ASSERT_EQ(messageOf(one.end()), QString());
    const auto ended = files();
    putBack(bothKnow);
    ASSERT_EQ(messageOf(other.change(u"after the end"_qs)), QString());
    auto all = files();
    all.insert(ended.begin(), ended.end());
    putBack(all);
    EXPECT_EQ(other.look().state, SealingState::Sealed);
    EXPECT_EQ(one.look().state, SealingState::NeedsPassphrase);
    EXPECT_FALSE(one.look().canExchange());
}

TEST_F(SealingChangeTest, AnInterruptedChangeIsFinishedOrUndone)
{
    const QByteArray sealed = sealedBy(one, "Momo", name);
    const auto before = files();
    const QByteArray keptBefore = kept("one");
    for (const bool isEnd : {false, true}) {
        putBack(before);
        write(keptPath("one"), keptBefore);
        ASSERT_EQ(messageOf(isEnd ? one.end() : one.change(second)), QString());
        const auto after = files();
        // Killed after it was kept and before it was published.
        putBack(before);
        const Sealing again = device(u"one"_qs);
        EXPECT_EQ(again.look().state, isEnd ? SealingState::Open : SealingState::Sealed);
        EXPECT_EQ(files(), after);
        EXPECT_EQ(openedBy(again, sealed, name), "Momo");
        // What was to be kept and what was to be published, cut off beside the files.
        putBack(before);
        write(keptPath("one"), keptBefore);
        write(keptPath("one") + u".AbCdEf"_qs, "{");
        write(shared.filePath(u".key.1234"_qs), "{");
        EXPECT_EQ(again.look().state, SealingState::Sealed);
        EXPECT_TRUE(again.look().isFit(sealed)) << "Nothing has happened";
        ASSERT_TRUE(QFile::remove(keptPath("one") + u".AbCdEf"_qs));
    }
    // The folder does not take it: all stays as it was.
    putBack(before);
    write(keptPath("one"), keptBefore);
    ASSERT_TRUE(QDir(shared.path()).mkdir(u"key-2-open"_qs));
    EXPECT_TRUE(one.end().has_value());
    ASSERT_TRUE(QDir(shared.path()).rmdir(u"key-2-open"_qs));
    EXPECT_EQ(one.look().state, SealingState::Sealed);
    EXPECT_TRUE(one.look().isFit(sealed));
    EXPECT_EQ(files(), before);
}

TEST_F(SealingChangeTest, EqualFilesBecomeEqualOnlyWhereThatIsWanted)
{
    const auto first = one.look().sealer;
    const auto again = other.look().sealer;
    const QByteArray alike = first->sealAlike("Momo", name).value();
    EXPECT_EQ(alike, again->sealAlike("Momo", name).value());
    EXPECT_EQ(again->open(alike, name).value(), "Momo");
    EXPECT_NE(alike, first->seal("Momo", name).value());
    // Other bytes or another name share nothing beyond the mark of the key, the nonce neither.
    for (const QByteArray &different :
         {first->sealAlike("Mome", name).value(), first->sealAlike("Momo", name + u'1').value()})
        EXPECT_NE(different.mid(Sealer::headLength(), 24), alike.mid(Sealer::headLength(), 24));
}
