#include "../objectstore/Library.h"

#include "replication/Replica.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

// Several devices change the same library, each on its own for a while, and hear of each other in any order.
// In the end all hold the same rows.

using replication::ChangeFile;
using replication::Replica;

namespace {

class DeviceOfLibrary
{
public:
    explicit DeviceOfLibrary(int number)
        : place(QByteArray::number(number))
    {
        start();
    }

    Library &library() { return store; }
    Replica &replica() { return *opened; }
    /// As after a kill: what was not saved is gone.
    void restart()
    {
        opened.reset();
        store.reopen();
        start();
    }
    /// Hands out what was saved since the last time.
    std::vector<QByteArray> send()
    {
        std::vector<QByteArray> files;
        for (const Replica::Outgoing &one : opened->outgoing(std::numeric_limits<qsizetype>::max())) {
            files.push_back(one.bytes);
            EXPECT_FALSE(opened->markSent(one.number));
        }
        return files;
    }
    void receive(const QByteArray &bytes)
    {
        auto file = ChangeFile::fromBytes(bytes);
        ASSERT_TRUE(file) << file.error().message.toStdString();
        waiting.push_back(std::move(*file));
    }
    void takeIn()
    {
        const auto changes = opened->takeIn(waiting, 1000);
        EXPECT_TRUE(changes) << changes.error().message.toStdString();
        settle();
    }
    void settle()
    {
        if (opened->hasUnsettled()) {
            const auto changes = opened->settle();
            EXPECT_TRUE(changes) << changes.error().message.toStdString();
        }
    }
    size_t waitingCount() const { return waiting.size(); }

private:
    void start()
    {
        auto result = Replica::open(store.context(), QString::fromUtf8(place), place);
        ASSERT_TRUE(result) << result.error().message.toStdString();
        opened = std::move(*result);
    }

    QByteArray place;
    Library store;
    std::unique_ptr<Replica> opened;
    std::deque<ChangeFile> waiting;
};

/// What the devices do, and what they hear.
class Story
{
public:
    Story(unsigned seed, int deviceCount)
        : random(seed)
    {
        for (int number = 0; number < deviceCount; ++number)
            devices.push_back(std::make_unique<DeviceOfLibrary>(number));
        inboxes.resize(devices.size());
        skews.resize(devices.size());
        for (double &skew : skews)
            skew = oneIn(3) ? below(200'000) - 100'000 : 0;
    }

    void run(int steps)
    {
        for (int step = 0; step < steps; ++step) {
            const auto number = static_cast<size_t>(below(static_cast<int>(devices.size())));
            if (oneIn(20))
                skews[number] = below(200'000) - 100'000;
            now += below(3);
            const FrozenClock clock(Date::fromReferenceSeconds(8e8 + now + skews[number]));
            DeviceOfLibrary &device = *devices[number];
            if (oneIn(40))
                device.restart();
            if (oneIn(8) && device.library()->canUndo())
                EXPECT_FALSE(oneIn(4) && device.library()->canRedo() ? device.library()->redo()
                                                                     : device.library()->undo());
            else
                change(device.library());
            device.settle();
            exchange(number, oneIn(4));
        }
        const FrozenClock clock(Date::fromReferenceSeconds(8e8 + now));
        for (int round = 0; round < 2; ++round) {
            for (size_t number = 0; number < devices.size(); ++number)
                exchange(number, true);
        }
    }

    void expectEqual()
    {
        const QStringList first = devices.front()->library().dump();
        for (const auto &device : devices) {
            EXPECT_EQ(device->waitingCount(), 0u);
            EXPECT_EQ(missingIn(first, device->library().dump()), QStringList());
            EXPECT_EQ(missingIn(device->library().dump(), first), QStringList());
            EXPECT_EQ(device->library().ask(QStringLiteral("PRAGMA foreign_key_check")), QStringList());
        }
    }

private:
    static QStringList missingIn(const QStringList &rows, const QStringList &others)
    {
        QStringList missing;
        for (const QString &row : rows) {
            if (!others.contains(row))
                missing.append(row);
        }
        return missing;
    }
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }
    bool oneIn(int bound) { return below(bound) == 0; }

    template <typename T>
    std::shared_ptr<T> any(Library &library)
    {
        const auto all = library->fetch<T>(FetchRequest(T::entityName));
        return all.size() == 0 || oneIn(6) ? nullptr : all[below(static_cast<int>(all.size()))];
    }

    QString word() { return QString(QChar(u'a' + below(26))) + QString::number(below(100)); }

    /// One save with a few changes.
    void change(Library &library)
    {
        for (int count = 1 + below(3); count > 0; --count) {
            switch (below(12)) {
            case 0:
                library->insert<Author>()->setName(word());
                break;
            case 1:
                library->insert<Shelf>()->setName(word());
                break;
            case 2:
                library->insert<Label>()->setName(word());
                break;
            case 3:
            case 4: {
                const auto book = library->insert<Book>();
                book->setTitle(word());
                book->setShelf(any<Shelf>(library));
                book->setAuthor(any<Author>(library));
                break;
            }
            case 5:
                if (const auto shelf = any<Shelf>(library); shelf && oneIn(2))
                    library->deleteObject(shelf);
                else if (shelf)
                    shelf->setName(word());
                break;
            case 6:
                if (const auto author = any<Author>(library))
                    library->deleteObject(author);
                break;
            case 7:
                if (const auto label = any<Label>(library); label && oneIn(3))
                    library->deleteObject(label);
                break;
            case 8:
                if (const auto book = any<Book>(library))
                    library->deleteObject(book);
                break;
            case 9:
                if (const auto book = any<Book>(library)) {
                    if (const auto label = any<Label>(library))
                        book->setLabels(oneIn(3) ? std::vector<std::shared_ptr<Label>>()
                                                 : std::vector<std::shared_ptr<Label>>{label});
                }
                break;
            case 10:
                if (const auto book = any<Book>(library)) {
                    book->setTitle(word());
                    book->setPages(below(900));
                }
                break;
            default:
                if (const auto book = any<Book>(library)) {
                    book->setShelf(any<Shelf>(library));
                    book->setAuthor(any<Author>(library));
                }
            }
        }
        library.save();
    }

    /// Sends what is new to the others, and takes in some of what has come, in any order and some of it
    /// twice.
    void exchange(size_t number, bool isAll)
    {
        for (const QByteArray &bytes : devices[number]->send()) {
            for (size_t other = 0; other < devices.size(); ++other) {
                if (other != number)
                    inboxes[other].push_back(bytes);
            }
        }
        std::vector<QByteArray> &inbox = inboxes[number];
        std::shuffle(inbox.begin(), inbox.end(), random);
        size_t count = isAll ? inbox.size() : static_cast<size_t>(below(static_cast<int>(inbox.size()) + 1));
        while (count-- > 0) {
            devices[number]->receive(inbox.back());
            if (oneIn(10))
                devices[number]->receive(inbox.back());
            inbox.pop_back();
        }
        devices[number]->takeIn();
    }

    std::mt19937 random;
    double now = 0;
    std::vector<std::unique_ptr<DeviceOfLibrary>> devices;
    std::vector<std::vector<QByteArray>> inboxes;
    std::vector<double> skews;
};

} // namespace

TEST(GeneratedHistoriesTest, EndWithTheSameRowsEverywhere)
{
    for (unsigned round = 0; round < 60; ++round) {
        const unsigned seed = testSeed() * 1000 + round;
        Story story(seed, 2 + int(round % 2));
        story.run(40);
        story.expectEqual();
        if (::testing::Test::HasFailure()) {
            ADD_FAILURE() << "Seed of the story: " << seed;
            return;
        }
    }
}
