#pragma once

#include "contacts/CNContactStore.h"
#include "contacts/VCard.h"
#include "store/entities/Entities.h"

#include <QSet>
#include <QTimer>

#include <functional>
#include <map>
#include <vector>

/// Who in the address books of the desktop has the name that is being typed. The books are asked a moment
/// after the last key, and only where access was granted; one that fails or hangs offers nobody, and says
/// nothing. Main thread only.
class ContactOffers
{
public:
    static constexpr std::chrono::milliseconds pauseAfterKey{300};
    static constexpr std::size_t mostOffers = 5;

    struct Offer
    {
        CNContact contact;
        QString name;
        /// Of the first mail or else phone; empty without one.
        QString detail;
        /// Who has that name here already; null for nobody.
        ContactPtr present;
        VCard card;
    };

    /// \param changed called when there is something else on offer.
    explicit ContactOffers(std::function<void()> changed);

    /// What is typed now. Who has no such name is not offered any more.
    void setName(const QString &first, const QString &last);
    const std::vector<Offer> &offers() const { return shown; }
    /// Gives the contact of an offer with its picture. The offer goes, and does not come back.
    CNContact take(std::size_t place);

private:
    void ask();
    void askBook(const CNContainer &book);
    void read(const CNContainer &book, QByteArray cards);
    void gather();

    std::function<void()> changed;
    CNContactStore store;
    QTimer pause;
    /// What is typed, in one line, and what was typed when the books were asked last.
    QString words;
    bool isListing = false;
    /// What each book that has not answered yet was asked for.
    std::map<QString, QString> asked;
    /// What the books have, by their identifiers.
    std::map<QString, std::vector<Offer>> found;
    std::vector<Offer> shown;
    /// The name and detail of those that were taken.
    QSet<QString> taken;
};
