#include "contacts/CNContactStore.h"

#include "foundation/Localization.h"
#include "workspace/PlatformConfiguration.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

#include <thread>
#include <utility>

namespace {

const QString accessName = QStringLiteral("contacts");

struct SharedBackend
{
    CNContactStore::BackendSource source;
    std::shared_ptr<ContactBackend> backend;
    CNContactStore::AccessQuestion question;
};

SharedBackend &sharedBackend()
{
    static SharedBackend all;
    return all;
}

std::shared_ptr<ContactBackend> backendInUse()
{
    SharedBackend &all = sharedBackend();
    if (const auto source = std::exchange(all.source, {}))
        all.backend = source();
    return all.backend;
}

Result<QByteArray> joined(const Result<std::vector<QByteArray>> &cards)
{
    if (!cards)
        return cards.error();
    QByteArray text;
    for (const QByteArray &card : cards.value())
        text += card + "\r\n";
    return text;
}

} // namespace

CNContactStore::CNContactStore(std::chrono::milliseconds limit)
    : timeLimit(limit)
{}

void CNContactStore::setBackendSource(BackendSource source)
{
    sharedBackend().source = std::move(source);
    sharedBackend().backend = nullptr;
}

void CNContactStore::setAccessQuestion(AccessQuestion question)
{
    sharedBackend().question = std::move(question);
}

CNAuthorizationStatus CNContactStore::authorizationStatusForEntityType(CNEntityType)
{
    const int status = PlatformConfiguration().authorization(accessName);
    return status >= 0 && status <= 3 ? static_cast<CNAuthorizationStatus>(status)
                                      : CNAuthorizationStatus::NotDetermined;
}

void CNContactStore::requestAccess(CNEntityType entityType, std::function<void(bool)> completion)
{
    QTimer::singleShot(0, this, [this, entityType, completion] {
        const CNAuthorizationStatus status = authorizationStatusForEntityType(entityType);
        const AccessQuestion &question = sharedBackend().question;
        if (status != CNAuthorizationStatus::NotDetermined || !question)
            return completion(status == CNAuthorizationStatus::Authorized);
        // The question waits for the user; meanwhile the store may go.
        question([self = QPointer(this), completion](bool isGranted) {
            const auto answer = isGranted ? CNAuthorizationStatus::Authorized : CNAuthorizationStatus::Denied;
            PlatformConfiguration::setAuthorization(accessName, static_cast<int>(answer));
            if (self)
                completion(isGranted);
        });
    });
}

/// The question runs on a thread of its own, which nobody waits for: a call into a library that never comes
/// back would take the program with it.
template <typename T>
void CNContactStore::ask(std::function<Result<T>(ContactBackend &)> question, QString tooLate,
                         std::function<void(Result<T>)> completion)
{
    const bool isAllowed =
        authorizationStatusForEntityType(CNEntityType::Contacts) == CNAuthorizationStatus::Authorized;
    const auto backend = isAllowed ? backendInUse() : nullptr;
    if (!backend) {
        QTimer::singleShot(0, this, [completion] { completion(T()); });
        return;
    }
    auto *limit = new QTimer(this);
    limit->setSingleShot(true);
    // Whoever comes first gives the answer: the time or the thread.
    const auto answer = [limit, completion](const Result<T> &result) {
        limit->stop();
        limit->deleteLater();
        completion(result);
    };
    connect(limit, &QTimer::timeout, this, [answer, tooLate] { answer(Error{accessName, 0, tooLate}); });
    limit->start(timeLimit);
    const auto deliver = [self = QPointer(this), timer = QPointer(limit), answer](const Result<T> &result) {
        if (self && timer && timer->isActive())
            answer(result);
    };
    std::thread([backend, question, deliver] {
        auto result = std::make_shared<Result<T>>(question(*backend));
        if (QCoreApplication *application = QCoreApplication::instance())
            QMetaObject::invokeMethod(application, [deliver, result] { deliver(*result); });
    }).detach();
}

void CNContactStore::containers(std::function<void(Result<Containers>)> completion)
{
    ask<Containers>([](ContactBackend &backend) { return backend.containers(); },
                    localized(QStringLiteral("The address books do not answer.")), std::move(completion));
}

void CNContactStore::cards(const CNContainer &container, std::function<void(Result<QByteArray>)> completion)
{
    ask<QByteArray>([container](ContactBackend &backend) { return joined(backend.cards(container)); },
                    localized(QStringLiteral("The address book \"%1\" does not answer.")).arg(container.name),
                    std::move(completion));
}

void CNContactStore::cardsWithName(const CNContainer &container, const QString &words,
                                   std::function<void(Result<QByteArray>)> completion)
{
    ask<QByteArray>([container, words](
                        ContactBackend &backend) { return joined(backend.cardsWithName(container, words)); },
                    localized(QStringLiteral("The address book \"%1\" does not answer.")).arg(container.name),
                    std::move(completion));
}

static Result<QByteArray> allWithMail(ContactBackend &backend, const QString &address)
{
    const auto containers = backend.containers();
    if (!containers)
        return containers.error();
    QByteArray all;
    for (const CNContainer &container : containers.value()) {
        if (const auto found = joined(backend.cardsWithMail(container, address)))
            all += found.value();
    }
    return all;
}

void CNContactStore::cardsWithMail(const QString &address, std::function<void(Result<QByteArray>)> completion)
{
    ask<QByteArray>([address](ContactBackend &backend) { return allWithMail(backend, address); },
                    localized(QStringLiteral("The address books do not answer.")), std::move(completion));
}
