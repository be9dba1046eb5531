// The exchange over a folder that is sealed.

#include "ExchangeFixture.h"

#ifdef MORVANE_SEALING_LIBRARY

namespace {

class SealedExchangeTest : public ExchangeTest
{
protected:
    using Sealing = replication::Sealing;
    using State = replication::SealingState;

    SealedExchangeTest()
    {
        one.restartWith(sealOfOne);
        other.restartWith(sealOfOther);
    }
    std::shared_ptr<Sealing> seal(const char *name) const
    {
        return std::make_shared<Sealing>(shared.path(), home.filePath(QString::fromUtf8(name)),
                                         QStringLiteral(MORVANE_SEALING_LIBRARY));
    }
    /// Whether there are so many, all of them sealed with the key of the folder, and saying nothing.
    bool areSealed(const Device &device, int count) const
    {
        const auto sealer = sealOfOne->look().sealer;
        const QStringList names = filesOf(device);
        return sealer && names.size() == count && std::ranges::all_of(names, [&](const QString &name) {
                   const QByteArray bytes = contents(path(device, name));
                   return sealer->isOwnSeal(bytes) && !bytes.contains("Book") && !bytes.contains("MVCHANGE");
               });
    }
    static void save(Device &device, const char *title)
    {
        device.library().book(title);
        device.library().save();
        device.look();
    }
    static State stateOf(const Device &device) { return device.exchange().health().sealing; }

    QTemporaryDir home;
    const QString passphrase = QStringLiteral("sealed with seven seals");
    std::shared_ptr<Sealing> sealOfOne = seal("one.key");
    std::shared_ptr<Sealing> sealOfOther = seal("other.key");
};

} // namespace

TEST_F(SealedExchangeTest, AFolderThatWasOpenIsSealedByEachDeviceForItsOwnFiles)
{
    save(one, "Momo");
    save(other, "Emma");
    ASSERT_TRUE(waitFor([this] { return other.has("Momo") && one.has("Emma"); }));
    ASSERT_TRUE(waitFor([this] { return filesOf(one).size() == 1 && filesOf(other).size() == 1; }));
    const QString file = path(one, filesOf(one).front());
    ASSERT_TRUE(contents(file).startsWith("MVCHANGE"));

    ASSERT_FALSE(sealOfOne->begin(passphrase));
    one.sealingChanged();
    EXPECT_EQ(stateOf(one), State::Sealed);
    EXPECT_TRUE(waitFor([this] { return areSealed(one, 1) && one.exchange().health().unsent == 0; }));
    save(one, "Ulysses");
    EXPECT_TRUE(waitFor([this] { return areSealed(one, 2); }));

    // The other writes nothing in the open any more, and loses nothing.
    other.look();
    EXPECT_TRUE(waitFor([this] { return stateOf(other) == State::NeedsPassphrase; }));
    save(other, "Kim");
    EXPECT_FALSE(other.exchange().health().sealingProblem.isEmpty());
    EXPECT_TRUE(sealOfOther->enter(u"sealed with six seals"_qs).has_value());
    other.sealingChanged();
    EXPECT_FALSE(waitFor([this] { return other.has("Ulysses") || filesOf(other).size() > 1; }, 1500));
    EXPECT_EQ(other.exchange().health().unsent, 1);

    ASSERT_FALSE(sealOfOther->enter(passphrase));
    other.sealingChanged();
    EXPECT_TRUE(waitFor([this] { return other.has("Ulysses") && one.has("Kim"); }));
    EXPECT_TRUE(waitFor([this] { return areSealed(other, 2); }));
    EXPECT_TRUE(other.exchange().health().sealingProblem.isEmpty());

    // A new device with the passphrase reads all of it.
    Device third(shared.path(), "third");
    third.restartWith(seal("other.key"));
    EXPECT_TRUE(waitFor([&] { return third.has("Momo") && third.has("Emma") && third.has("Kim"); }));
    EXPECT_TRUE(third.exchange().health().problems.empty());
}

TEST_F(SealedExchangeTest, OpenChangedAndMisplacedFilesAreToldOfAndTriedAgain)
{
    const LogCapture log;
    other.stop();
    save(one, "Momo");
    ASSERT_TRUE(waitFor([this] { return filesOf(one).size() == 1; }));
    const QString file = path(one, filesOf(one).front());
    const QByteArray open = contents(file);
    ASSERT_FALSE(sealOfOne->begin(passphrase));
    ASSERT_FALSE(sealOfOther->enter(passphrase));
    one.sealingChanged();
    save(one, "Emma");
    ASSERT_TRUE(waitFor([this] { return areSealed(one, 2); }));
    const QByteArray whole = contents(file);
    // Another save of the same device under its name.
    const QByteArray second = contents(path(one, filesOf(one).back()));
    one.stop();
    for (const QByteArray &bad : {open, second, whole.left(whole.size() - 5), whole.left(9),
                                  QByteArray(whole).replace(whole.size() - 3, 1, "")}) {
        write(file, bad);
        other.start();
        EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; })) << bad.size();
        EXPECT_FALSE(other.has("Momo"));
        other.stop();
    }
    write(file, whole);
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo") && other.has("Emma"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.empty(); }));
}

TEST_F(SealedExchangeTest, ANewPassphraseReachesADeviceThatIsAwayAndNothingIsLost)
{
    const LogCapture log;
    ASSERT_FALSE(sealOfOne->begin(passphrase));
    ASSERT_FALSE(sealOfOther->enter(passphrase));
    one.sealingChanged();
    other.sealingChanged();
    save(one, "Momo");
    save(other, "Emma");
    ASSERT_TRUE(waitFor([this] { return other.has("Momo") && one.has("Emma"); }));
    const QByteArray former = contents(path(one, filesOf(one).front()));

    // The other one works on in a copy of the folder, as while nothing is carried to and fro.
    other.stop();
    ASSERT_FALSE(sealOfOne->change(u"sealed once more"_qs));
    one.sealingChanged();
    save(one, "Kim");
    EXPECT_TRUE(waitFor([this] { return areSealed(one, 2); })) << "The earlier ones with the new key, too";
    EXPECT_FALSE(sealOfOne->look().isFit(former));
    const QString key = shared.filePath(QDir(shared.path()).entryList({u"key-2-*"_qs}, QDir::Files).front());
    const QString later = shared.filePath(u"later"_qs);
    ASSERT_TRUE(QFile::rename(key, later));
    one.stop();
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; }));
    save(other, "Ulysses");
    EXPECT_TRUE(waitFor([this] { return filesOf(other).size() == 2; })) << "It seals as it can";
    other.stop();
    // Both are in step again, and the other one knows of the change, but not the passphrase.
    ASSERT_TRUE(QFile::rename(later, key));
    one.start();
    EXPECT_TRUE(waitFor([this] { return one.has("Ulysses"); })) << "What was sealed with the former key";
    other.start();
    EXPECT_TRUE(waitFor([this] { return stateOf(other) == State::NeedsPassphrase; }));
    save(other, "Brave New World");
    EXPECT_FALSE(waitFor([this] { return filesOf(other).size() != 2 || other.has("Kim"); }, 1000));
    other.stop();
    other.start(); // As after a kill.
    ASSERT_FALSE(sealOfOther->enter(u"sealed once more"_qs));
    other.sealingChanged();
    EXPECT_TRUE(waitFor([this] { return other.has("Kim") && one.has("Brave New World"); }));
    EXPECT_TRUE(waitFor([this] { return areSealed(other, 3); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.empty(); }));
    EXPECT_EQ(one.library().dump(), other.library().dump());
}

TEST_F(SealedExchangeTest, ASnapshotFollowsTheKeyOfTheFolder)
{
    other.stop();
    one.terms.mostFiles = 3;
    ASSERT_FALSE(sealOfOne->begin(passphrase));
    one.restartWith(sealOfOne);
    one.save({u"A"_qs, u"B"_qs, u"C"_qs, u"D"_qs});
    const auto snapshot = [this] {
        const QStringList names = filesOf(one).filter(u"snapshot-"_qs);
        return names.size() == 1 ? contents(path(one, names.front())) : QByteArray();
    };
    const auto isSealed = [&] { return snapshot().contains("MVSEALED" + sealOfOne->look().keyMark()); };
    ASSERT_TRUE(waitFor(isSealed));
    ASSERT_FALSE(sealOfOne->change(u"sealed once more"_qs));
    one.sealingChanged();
    EXPECT_TRUE(waitFor(isSealed)) << "With the new key";
    ASSERT_FALSE(sealOfOther->enter(u"sealed once more"_qs));
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("A") && other.has("D"); }));
    ASSERT_FALSE(sealOfOne->end());
    one.sealingChanged();
    EXPECT_TRUE(waitFor([&] { return !snapshot().isEmpty() && !snapshot().contains("MVSEALED"); }));
    Device third(shared.path(), "third");
    third.restartWith(seal("third.key"));
    EXPECT_TRUE(waitFor([&] { return third.has("A") && third.has("D"); }));
}

TEST_F(SealedExchangeTest, AnEndedSealingOpensTheFilesOfEachDeviceWhenItHearsOfIt)
{
    const LogCapture log;
    ASSERT_FALSE(sealOfOne->begin(passphrase));
    ASSERT_FALSE(sealOfOther->enter(passphrase));
    one.sealingChanged();
    other.sealingChanged();
    save(one, "Momo");
    save(other, "Emma");
    ASSERT_TRUE(waitFor([this] { return other.has("Momo") && one.has("Emma"); }));
    const auto areOpen = [this](const Device &device, int count) {
        const QStringList names = filesOf(device);
        return names.size() == count && std::ranges::all_of(names, [&](const QString &file) {
                   return contents(path(device, file)).startsWith("MVCHANGE");
               });
    };
    other.stop();
    ASSERT_FALSE(sealOfOne->end());
    one.sealingChanged();
    EXPECT_TRUE(waitFor([&] { return areOpen(one, 1); }));
    EXPECT_EQ(stateOf(one), State::Open);
    save(one, "Kim");
    EXPECT_TRUE(waitFor([&] { return areOpen(one, 2); }));
    // A device that never had the key meets what the other one has not opened yet, and works.
    Device third(shared.path(), "third");
    third.restartWith(seal("third.key"));
    EXPECT_TRUE(waitFor([&] { return third.has("Momo") && !third.exchange().health().problems.empty(); }));
    EXPECT_EQ(stateOf(third), State::Open);
    // The other one has not heard of the end: it seals, and takes no open file for what it should be.
    const QString end = shared.filePath(u"key-2-open"_qs);
    const QString later = shared.filePath(u"later"_qs);
    one.stop();
    third.stop();
    ASSERT_TRUE(QFile::rename(end, later));
    other.start();
    save(other, "Ulysses");
    EXPECT_TRUE(waitFor([this] {
        return filesOf(other).size() == 2 &&
               contents(path(other, filesOf(other).back())).startsWith("MVSEALED");
    }));
    EXPECT_FALSE(other.has("Kim"));
    EXPECT_FALSE(other.exchange().health().problems.empty());
    ASSERT_TRUE(QFile::rename(later, end));
    one.start();
    third.start();
    EXPECT_TRUE(waitFor([&] { return areOpen(other, 2) && other.has("Kim"); }));
    EXPECT_TRUE(waitFor([&] { return one.has("Ulysses") && third.has("Ulysses") && third.has("Emma"); }));
    for (const Device *device : {&one, &other, &third})
        EXPECT_TRUE(waitFor([&] { return device->exchange().health().problems.empty(); }));
}

TEST_F(SealedExchangeTest, ASealedFolderWhoseKeyHasNotComeGetsNoOpenFiles)
{
    const LogCapture log;
    other.stop();
    ASSERT_FALSE(sealOfOne->begin(passphrase));
    one.sealingChanged();
    save(one, "Momo");
    ASSERT_TRUE(waitFor([this] { return areSealed(one, 1); }));
    one.stop();
    const QString key = shared.filePath(QStringLiteral("key"));
    const QString later = key + QStringLiteral(".later");
    ASSERT_TRUE(QFile::rename(key, later));
    other.start();
    save(other, "Emma");
    EXPECT_TRUE(waitFor([this] { return stateOf(other) == State::Unusable; }));
    EXPECT_FALSE(waitFor([this] { return !filesOf(other).isEmpty(); }, 1000));
    ASSERT_TRUE(QFile::rename(later, key));
    ASSERT_FALSE(sealOfOther->enter(passphrase));
    other.sealingChanged();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo") && areSealed(other, 1); }));
}

#endif
