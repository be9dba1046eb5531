#include "Library.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <set>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

// A child process saves unit after unit and is killed at any moment. What it reported as saved must be there,
// whole.

namespace {

constexpr int booksOfUnit = 3;

/// Saves units, each an author with books, and reports the number of each when its save, and when its
/// follow-up is done.
[[noreturn]] void saveForEver(const QString &path, int report, int first)
{
    auto opened = ManagedObjectContext::open(path, libraryModel());
    if (!opened)
        _exit(1);
    ManagedObjectContext &context = **opened;
    Listener listener;
    context.setCommitEffects(&listener);
    listener.will = [](ManagedObjectContext &open, const StoreChanges &changes) {
        const QString name = std::static_pointer_cast<Author>(changes.inserted.front())->name();
        open.insert<CatalogLine>()->setWords(name);
        open.post({0, 0, QStringLiteral("shop"), name, std::nullopt, "text"});
    };
    for (int number = first;; ++number) {
        const auto author = context.insert<Author>();
        author->setName(QString::number(number));
        for (int count = 0; count < booksOfUnit; ++count) {
            const auto book = context.insert<Book>();
            book->setTitle(QString::number(number));
            book->setAuthor(author);
        }
        if (number % 2 == 0)
            context.count(FetchRequest("Book"));
        if (context.save() || ::write(report, &number, sizeof number) != sizeof number)
            _exit(1);
        // The outbox of even units is carried out.
        if (number % 2 == 0 && context.finishOutbox({context.pendingOutbox().back().sequence}))
            _exit(1);
    }
}

struct Killed
{
    int lastReported = -1;
    bool wasKilled = false;
};

Killed runAndKill(const QString &path, int first, std::chrono::microseconds life)
{
    int ends[2];
    Killed result;
    if (pipe(ends) != 0)
        return result;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        saveForEver(path, ends[1], first);
    }
    close(ends[1]);
    const timespec wait{0, life.count() * 1000};
    pollfd nothing{-1, 0, 0};
    ppoll(&nothing, 1, &wait, nullptr);
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    result.wasKilled = WIFSIGNALED(status);
    int number = 0;
    while (read(ends[0], &number, sizeof number) == sizeof number)
        result.lastReported = number;
    close(ends[0]);
    return result;
}

} // namespace

TEST(Crash, whatWasReportedAsSavedIsThereWholeAfterAKillAtAGeneratedMoment)
{
    Library library;
    library.close();
    std::mt19937 random(testSeed());
    int longestLife = 40'000;
    int idleRounds = 0;
    int saved = 0;
    for (int round = 0; round < 200; ++round) {
        std::uniform_int_distribution<int> life(500, longestLife);
        const Killed killed = runAndKill(library.path(), saved, std::chrono::microseconds(life(random)));
        ASSERT_TRUE(killed.wasKilled);
        library.open();
        const auto authors = library->fetch<Author>(FetchRequest("Author"));
        ASSERT_GE(authors.size(), killed.lastReported + 1) << "round " << round;
        ASSERT_LE(authors.size(), std::max(saved, killed.lastReported + 1) + 1) << "round " << round;
        ASSERT_EQ(library->count(FetchRequest("Book")), authors.size() * booksOfUnit);
        ASSERT_EQ(library->count(FetchRequest("Author").where(Predicate::format("books.@count != 3"))), 0);
        // A slow machine needs more time to save anything.
        idleRounds = authors.size() == saved ? idleRounds + 1 : 0;
        if (idleRounds == 5) {
            longestLife = std::min(2 * longestLife, 900'000);
            idleRounds = 0;
        }
        saved = authors.size();
        ASSERT_EQ(library->count(FetchRequest("CatalogLine")), saved) << "effects are a part of the commit";
        std::set<int> posted;
        for (const OutboxEntry &entry : library->pendingOutbox())
            posted.insert(entry.key.toInt());
        for (int number = 1; number < saved; number += 2)
            ASSERT_TRUE(posted.contains(number)) << "what was committed is to be carried out";
        library.close();
        if (round % 20 == 0) {
            ASSERT_EQ(library.ask(QStringLiteral("PRAGMA integrity_check")),
                      QStringList(QStringLiteral("ok")));
        }
    }
    EXPECT_GT(saved, 50) << "the machine is too slow for this to mean anything";
    EXPECT_EQ(library.ask(QStringLiteral("PRAGMA integrity_check")), QStringList(QStringLiteral("ok")));
    EXPECT_TRUE(library.ask(QStringLiteral("PRAGMA foreign_key_check")).isEmpty());
}
