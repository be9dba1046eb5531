#include "BenchContacts.h"
#include "BenchHome.h"
#include "Ratio.h"
#include "contacts/eds/EdsContacts.h"
#include "eventkit/eds/EdsGlib.h"

#include <libebook/libebook.h>

#include <cstdio>
#include <cstdlib>

namespace {

/// An address book of the daemon, which another program fills.
class DaemonBook
{
public:
    DaemonBook()
    {
        // The daemon gets the folders of this run when it is started.
        BenchHome::shared();
        registry.reset(e_source_registry_new_sync(nullptr, nullptr));
        source.reset(e_source_new(nullptr, nullptr, nullptr));
        e_source_set_display_name(source.get(), "Bench");
        e_source_set_parent(source.get(), "local-stub");
        auto *book = static_cast<ESourceBackend *>(
            e_source_get_extension(source.get(), E_SOURCE_EXTENSION_ADDRESS_BOOK));
        e_source_backend_set_backend_name(book, "local");
        if (!registry ||
            !e_source_registry_commit_source_sync(registry.get(), source.get(), nullptr, nullptr))
            fail("cannot make an address book");
        GlibFailure failure;
        client.reset(e_book_client_connect_sync(source.get(), guint32(-1), nullptr, failure.out()));
        if (!client)
            fail("cannot connect");
    }
    ~DaemonBook() { e_source_remove_sync(source.get(), nullptr, nullptr); }
    Q_DISABLE_COPY_MOVE(DaemonBook)

    CNContainer container() const { return {QString::fromUtf8(e_source_get_uid(source.get())), {}}; }
    /// Puts other contacts in place of all.
    void fill(const QByteArray &cards)
    {
        GSList *contacts = nullptr;
        for (qsizetype place = 0; place >= 0 && place < cards.size();) {
            const qsizetype end = cards.indexOf("END:VCARD\r\n", place);
            contacts =
                g_slist_prepend(contacts, e_contact_new_from_vcard(cards.mid(place, end - place + 11)));
            place = end < 0 ? end : end + 11;
        }
        GSList *uids = nullptr;
        const bool isRemoved = !former || e_book_client_remove_contacts_sync(
                                              book(), former, E_BOOK_OPERATION_FLAG_NONE, nullptr, nullptr);
        const bool isFilled = e_book_client_add_contacts_sync(book(), contacts, E_BOOK_OPERATION_FLAG_NONE,
                                                              &uids, nullptr, nullptr);
        if (!isRemoved || !isFilled)
            fail("cannot fill the address book");
        g_slist_free_full(contacts, g_object_unref);
        g_slist_free_full(std::exchange(former, uids), g_free);
    }
    void bareFetch()
    {
        GSList *contacts = nullptr;
        if (!e_book_client_get_contacts_sync(book(), R"((contains "x-evolution-any-field" ""))", &contacts,
                                             nullptr, nullptr))
            fail("cannot fetch");
        g_slist_free_full(contacts, g_object_unref);
    }

private:
    [[noreturn]] static void fail(const char *what)
    {
        std::fprintf(stderr, "%s\n", what);
        std::exit(EXIT_FAILURE);
    }
    EBookClient *book() const { return glibCast<EBookClient>(client.get()); }

    GlibObject<ESourceRegistry> registry;
    GlibObject<ESource> source;
    GlibObject<EClient> client;
    GSList *former = nullptr;
};

/// All contacts of an address book into the store, against the bulk fetch of the library and the bare
/// inserts.
void importContactsFromDaemon(benchmark::State &state)
{
    DaemonBook book;
    QByteArray text;
    for (auto _ : state) {
        state.PauseTiming();
        text = BenchContacts::cards();
        book.fill(text);
        state.ResumeTiming();
        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        const auto cards = EdsContacts().cards(book.container());
        QByteArray all;
        for (const QByteArray &card : cards.value())
            all += card + "\r\n";
        if (BenchContacts::import(all).added != BenchContacts::count)
            state.SkipWithError("Not all were imported");
        const auto middle = Clock::now();
        state.PauseTiming();
        book.bareFetch();
        BenchContacts::bareImport(text);
        const auto end = Clock::now();
        state.counters["ours_ms"] = std::chrono::duration<double, std::milli>(middle - start).count();
        state.counters["bare_ms"] = std::chrono::duration<double, std::milli>(end - middle).count();
        state.counters["ratio"] = (middle - start) / std::chrono::duration<double>(end - middle);
        state.ResumeTiming();
    }
}
BENCHMARK(importContactsFromDaemon)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
