#pragma once

#include "filters/MVContactGroup.h"

#include <QString>

/// Picking the members of a group, without the window.
class WindowAddContactsGroup
{
public:
    /// A row of the table: the header of an initial, or a contact.
    struct Row
    {
        QString header;
        ContactPtr contact;
        bool operator==(const Row &) const = default;
    };

    /// Null for a new group.
    explicit WindowAddContactsGroup(const std::shared_ptr<EntityContactGroup> &group);

    /// The words of the title bar.
    QString title() const;
    /// All people under their initials; what begins with no letter stands under "#". While something is
    /// searched for, those whose name holds it, without headers.
    std::vector<Row> rows(const QString &search = {}) const;

    bool isMarked(const ContactPtr &contact) const;
    /// A row was pressed.
    void toggle(const ContactPtr &contact);
    const MVContactGroup &values() const { return edited; }

    /// Tells of the new group, or gives the shown one the marked members, saves and tells of that.
    void clickButtonDone();

private:
    static std::vector<Row> groupContacts(const std::vector<ContactPtr> &contacts);

    std::shared_ptr<EntityContactGroup> contactGroup;
    MVContactGroup edited;
};
