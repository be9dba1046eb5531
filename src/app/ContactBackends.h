#pragma once

/// Lets the store of contacts find the desktop's address books, and the user be asked for them. Nothing is
/// loaded before a contact is wanted.
void connectContacts();
