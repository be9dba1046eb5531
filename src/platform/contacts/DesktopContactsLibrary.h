#pragma once

class ContactBackend;

/// What the library for the desktop's address books offers. It is built together with the program that loads
/// it, and apart from the one for calendars, since it needs far more than that.
extern "C" {

/// A new backend, which the caller owns.
ContactBackend *morvaneMakeDesktopContacts();
}
