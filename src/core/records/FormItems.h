#pragma once

#include <QString>
#include <QStringList>

/// Any number of entries of one sort in a row of a form, such as telephone numbers: each has the same fields
/// and a type. The last one is always free for the next entry. Main thread only.
class FormItems
{
public:
    FormItems() = default;
    virtual ~FormItems() = default;
    Q_DISABLE_COPY_MOVE(FormItems)

    /// What the empty fields of an entry say, in the order in which they are filled.
    virtual QStringList placeholders() const = 0;
    /// What a further field says, the last by its number, which stands below the first one and only in
    /// entries that have something in it. Empty: there is none.
    virtual QString sparePlaceholder() const { return {}; }
    /// The types that an entry can have, in words.
    virtual QStringList types() const = 0;

    /// With the free one.
    virtual int count() const = 0;
    virtual QString text(int item, int field) const = 0;
    /// All fields in one line; empty for a free entry.
    virtual QString words(int item) const = 0;
    /// Where a press on the words leads; empty for nowhere.
    virtual QString link(int item) const = 0;
    /// The place of its type; -1 without one.
    virtual int type(int item) const = 0;

    /// A free entry that gets its first character is followed by a new free one.
    virtual void setText(int item, int field, const QString &text) = 0;
    virtual void setType(int item, int type) = 0;
    /// Takes an entry out. The free one stays.
    virtual void remove(int item) = 0;
};
