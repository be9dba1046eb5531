#include "replication/Sealing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
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
