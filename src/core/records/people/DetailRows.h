#pragma once

#include "records/FormItems.h"
#include "records/people/DetailItems.h"

#include <functional>

/// One of the lists of a contact or a company, as a form shows it.
class DetailRows : public FormItems
{
public:
    /// Runs a change and tells of it.
    using Edit = std::function<void(const std::function<void()> &change)>;
    /// \param items holds the list, and has to outlive this.
    DetailRows(DetailItems &items, DetailKind kind, Edit edit);

    QStringList placeholders() const override;
    /// The second line of a street, which cards have and few people type.
    QString sparePlaceholder() const override;
    QStringList types() const override;
    int count() const override;
    QString text(int item, int field) const override;
    QString words(int item) const override;
    /// A telephone is called, a mail begun, a page shown, and an address found on a map.
    QString link(int item) const override;
    int type(int item) const override;
    void setText(int item, int field, const QString &text) override;
    void setType(int item, int type) override;
    void remove(int item) override;

private:
    ItemListEmailPhoneUrl::Rows &lines() const;
    QString &addressField(int item, int field) const;
    void write(ItemListEmailPhoneUrl &line, const QString &text) const;
    const std::vector<ObjectPtr> &offered() const;

    DetailItems &items;
    DetailKind kind;
    Edit edit;
    /// The types, once they were asked for.
    mutable std::vector<ObjectPtr> known;
};
