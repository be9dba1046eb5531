#include "contacts/eds/EdsContacts.h"

#include "eventkit/eds/EdsBus.h"
#include "eventkit/eds/EdsGlib.h"
#include "eventkit/eds/EdsTimeLimit.h"
#include "foundation/Localization.h"

#include <libebook/libebook.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>
#include <tuple>

namespace {

Error failed(const QString &action, const GlibFailure &failure)
{
    return {QStringLiteral("contacts"), 0, failure.told(action).message};
}

QString nameOf(ESource *source)
{
    return QString::fromUtf8(e_source_get_display_name(source));
}

/// The address books of a daemon that has just died are there again when it is called the next time.
template <typename T>
Result<T> readAgainIfLost(const std::function<Result<T>(bool &isLost)> &read)
{
    constexpr std::chrono::milliseconds pause{300};
    bool isLost = false;
    auto result = read(isLost);
    if (result || !isLost)
        return result;
    std::this_thread::sleep_for(pause);
    return read(isLost);
}

bool isComplete(ESourceRegistry *registry, const QSet<QString> &present)
{
    return std::ranges::all_of(present, [registry](const QString &uid) {
        const GlibObject<ESource> source(e_source_registry_ref_source(registry, uid.toUtf8().constData()));
        return source != nullptr;
    });
}

/// The library shares one list among all who ask for it, and hands it out also when its last user is just
/// leaving, or the daemon has just begun, and it is empty.
Result<GlibObject<ESourceRegistry>> openRegistry(bool &isLost)
{
    constexpr int mostAttempts = 10;
    constexpr std::chrono::milliseconds pause{30};
    EdsBus bus;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        // Asked first, since the library waits very long for a daemon that does not answer.
        const auto begin = std::chrono::steady_clock::now();
        const auto present = bus.sources();
        isLost = !present && std::chrono::steady_clock::now() - begin < std::chrono::seconds(1);
        if (!present)
            return Error{QStringLiteral("contacts"), 0,
                         localized(QStringLiteral("The address books do not answer."))};
        GlibFailure failure;
        const EdsTimeLimit limit(EdsTimeLimit::forReading);
        GlibObject<ESourceRegistry> registry(
            limit.run([&] { return e_source_registry_new_sync(limit.cancellable(), failure.out()); }));
        isLost = !registry && failure.isLostConnection();
        if (!registry)
            return failed(localized(QStringLiteral("Cannot reach the address books")), failure);
        if (isComplete(registry.get(), present.value()))
            return registry;
        registry.reset();
        std::this_thread::sleep_for(pause);
    }
    isLost = true;
    return Error{QStringLiteral("contacts"), 0,
                 localized(QStringLiteral("The address books are not all there yet."))};
}

Result<std::vector<CNContainer>> readContainers(bool &isLost)
{
    const auto opened = openRegistry(isLost);
    if (!opened)
        return opened.error();
    const auto &registry = opened.value();
    std::vector<CNContainer> found;
    GList *sources = e_source_registry_list_enabled(registry.get(), E_SOURCE_EXTENSION_ADDRESS_BOOK);
    for (const GList *entry = sources; entry; entry = entry->next) {
        auto *source = static_cast<ESource *>(entry->data);
        found.push_back({QString::fromUtf8(e_source_get_uid(source)), nameOf(source)});
    }
    g_list_free_full(sources, g_object_unref);
    std::ranges::sort(found, {}, [](const CNContainer &one) { return std::tie(one.name, one.identifier); });
    return found;
}

/// \param query which of them, in the words of the library.
Result<std::vector<QByteArray>> readCards(const CNContainer &container, const QByteArray &query, bool &isLost)
{
    const QString reading =
        localized(QStringLiteral("Cannot read the address book \"%1\"")).arg(container.name);
    const auto opened = openRegistry(isLost);
    if (!opened)
        return opened.error();
    const auto &registry = opened.value();
    GlibFailure failure;
    const GlibObject<ESource> source(
        e_source_registry_ref_source(registry.get(), container.identifier.toUtf8().constData()));
    if (!source)
        return Error{QStringLiteral("contacts"), 0,
                     localized(QStringLiteral("The address book \"%1\" has gone.")).arg(container.name)};
    // Any other number lets the call wait for signals of a main loop, which this thread has not.
    constexpr auto doNotWait = static_cast<guint32>(-1);
    const EdsTimeLimit opening(EdsTimeLimit::forReading);
    const GlibObject<EClient> client(opening.run([&] {
        return e_book_client_connect_sync(source.get(), doNotWait, opening.cancellable(), failure.out());
    }));
    isLost = !client && failure.isLostConnection();
    if (!client)
        return failed(reading, failure);
    GSList *contacts = nullptr;
    const EdsTimeLimit fetching(EdsTimeLimit::forWriting);
    const bool isRead = fetching.run([&] {
        return e_book_client_get_contacts_sync(glibCast<EBookClient>(client.get()), query.constData(),
                                               &contacts, fetching.cancellable(), failure.out());
    });
    isLost = !isRead && failure.isLostConnection();
    if (!isRead)
        return failed(reading, failure);
    std::vector<QByteArray> cards;
    // What the library has not taken apart yet it hands out as it came.
    for (const auto &contact : taken<EContact>(contacts))
        cards.emplace_back(
            GlibText(e_vcard_to_string(glibCast<EVCard>(contact.get()), EVC_FORMAT_VCARD_30)).get());
    return cards;
}

} // namespace

Result<std::vector<CNContainer>> EdsContacts::containers()
{
    return readAgainIfLost<std::vector<CNContainer>>(readContainers);
}

Result<std::vector<QByteArray>> EdsContacts::cards(const CNContainer &container)
{
    // The query for everything; the one of calendars is an error here.
    const QByteArray everything = R"((contains "x-evolution-any-field" ""))";
    return readAgainIfLost<std::vector<QByteArray>>(
        [&](bool &isLost) { return readCards(container, everything, isLost); });
}

Result<std::vector<QByteArray>> EdsContacts::cardsWithMail(const CNContainer &container,
                                                           const QString &address)
{
    EBookQuery *query =
        e_book_query_field_test(E_CONTACT_EMAIL, E_BOOK_QUERY_IS, address.toUtf8().constData());
    const QByteArray words = GlibText(e_book_query_to_string(query)).get();
    e_book_query_unref(query);
    return readAgainIfLost<std::vector<QByteArray>>(
        [&](bool &isLost) { return readCards(container, words, isLost); });
}

/// The query for a word with which one of somebody's names begins.
static EBookQuery *nameBeginsWith(const QString &word)
{
    const QByteArray typed = word.toUtf8();
    const QByteArray inside = ' ' + typed;
    const auto begins = [&typed](EContactField field) {
        return e_book_query_field_test(field, E_BOOK_QUERY_BEGINS_WITH, typed.constData());
    };
    return e_book_query_orv(
        begins(E_CONTACT_FULL_NAME), begins(E_CONTACT_GIVEN_NAME), begins(E_CONTACT_FAMILY_NAME),
        e_book_query_field_test(E_CONTACT_FULL_NAME, E_BOOK_QUERY_CONTAINS, inside.constData()), nullptr);
}

Result<std::vector<QByteArray>> EdsContacts::cardsWithName(const CNContainer &container, const QString &words)
{
    std::vector<EBookQuery *> queries;
    for (const QString &word : words.simplified().split(u' ', Qt::SkipEmptyParts))
        queries.push_back(nameBeginsWith(word));
    if (queries.empty())
        return std::vector<QByteArray>();
    EBookQuery *query = e_book_query_and(static_cast<int>(queries.size()), queries.data(), true);
    const QByteArray text = GlibText(e_book_query_to_string(query)).get();
    e_book_query_unref(query);
    return readAgainIfLost<std::vector<QByteArray>>(
        [&](bool &isLost) { return readCards(container, text, isLost); });
}
