#pragma once

#include "records/people/DetailItems.h"
#include "records/people/MVContacts.h"
#include "records/people/MissingField.h"
#include "records/people/PhotoEdit.h"

/// A contact as a window or a detail screen edits it. Nothing reaches the store before it is saved.
class ContactForm
{
public:
    /// A new contact.
    ContactForm();
    /// One that is stored.
    explicit ContactForm(const ContactPtr &contact);

    MVContacts values;
    DetailItems items;
    PhotoEdit photo;

    /// Stores the contact, commits, sees to the files of the picture and tells the lists. Without any name
    /// nothing is done and the answer says where the focus goes.
    MissingField clickButtonSave();
    /// The stored row; null until a new contact was saved.
    const ContactPtr &contact() const { return row; }

private:
    void writeValues();

    ContactPtr row;
};
