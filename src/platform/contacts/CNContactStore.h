#pragma once

#include "contacts/ContactBackend.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

enum class CNAuthorizationStatus { NotDetermined = 0, Restricted = 1, Denied = 2, Authorized = 3 };
enum class CNEntityType { Contacts };

/// The address books of the desktop. What is asked of them is answered later, on the main loop; an address
/// book that does not answer in time has failed, and keeps nobody else waiting. A store that is deleted
/// answers nothing any more. Main thread only.
class CNContactStore : public QObject
{
    Q_OBJECT
public:
    using BackendSource = std::function<std::shared_ptr<ContactBackend>()>;
    /// Asks the user and calls the answer with what was said, or never.
    using AccessQuestion = std::function<void(const std::function<void(bool isGranted)> &answer)>;
    using Containers = std::vector<CNContainer>;

    static constexpr std::chrono::milliseconds timeToAnswer{30'000};

    /// \param limit for each answer.
    explicit CNContactStore(std::chrono::milliseconds limit = timeToAnswer);

    /// Makes the backend of all stores when it is first needed; null stands for no address books at all.
    static void setBackendSource(BackendSource source);
    static void setAccessQuestion(AccessQuestion question);

    static CNAuthorizationStatus authorizationStatusForEntityType(CNEntityType entityType);
    /// Asks the user, unless that was done before, and keeps the answer. The completion comes on the main
    /// loop.
    void requestAccess(CNEntityType entityType, std::function<void(bool isGranted)> completion);

    /// The address books. Without access there are none.
    void containers(std::function<void(Result<Containers>)> completion);
    /// The contacts of one as a text of vCards, for `VCardReader`.
    void cards(const CNContainer &container, std::function<void(Result<QByteArray>)> completion);
    /// The same of those in all address books that may have a mail address. One that fails is passed over.
    void cardsWithMail(const QString &address, std::function<void(Result<QByteArray>)> completion);
    /// The same of those in one address book that may have names which begin with each word of a text.
    void cardsWithName(const CNContainer &container, const QString &words,
                       std::function<void(Result<QByteArray>)> completion);

private:
    template <typename T>
    void ask(std::function<Result<T>(ContactBackend &)> question, QString tooLate,
             std::function<void(Result<T>)> completion);

    std::chrono::milliseconds timeLimit;
};
