#pragma once

/// The address books of the desktop.
class CNContactStore
{
public:
    CNContactStore() = delete;

    enum AuthorizationStatus { NotDetermined = 0, Restricted = 1, Denied = 2, Authorized = 3 };
    /// Whether the user lets the program read contacts, as kept in the configuration.
    static int authorizationStatus();
};
