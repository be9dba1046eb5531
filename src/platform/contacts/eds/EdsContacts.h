#pragma once

#include "contacts/ContactBackend.h"

/// The address books that evolution-data-server keeps. It is spoken to over D-Bus and started where it does
/// not run. Any thread; calls end within seconds, or half a minute for those that may have to reach a server.
class EdsContacts : public ContactBackend
{
public:
    Result<std::vector<CNContainer>> containers() override;
    Result<std::vector<QByteArray>> cards(const CNContainer &container) override;
    Result<std::vector<QByteArray>> cardsWithName(const CNContainer &container,
                                                  const QString &words) override;
    Result<std::vector<QByteArray>> cardsWithMail(const CNContainer &container,
                                                  const QString &address) override;
};
