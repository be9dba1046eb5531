#pragma once

#include "records/FormModel.h"

#include <QWidget>

class FormItems;
class QVBoxLayout;

/// The entries of a row of a form. While the form is edited each has its fields, its type, and a button that
/// takes it out; the last one is free. Else each is a link.
class ItemsField : public QWidget
{
    Q_OBJECT
public:
    ItemsField(FormModel &model, const FormRow &row, QWidget *parent = nullptr);
    ~ItemsField() override;

    /// Shows what the model holds.
    void showItems(bool isEditing);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    struct EditedItem;
    struct LinkedItem
    {
        QString words;
        QString link;
        QString type;
        bool operator==(const LinkedItem &) const = default;
    };
    void showFields();
    void showLinks();
    QLineEdit *makeField(int item, int field, const QString &placeholder);
    void addEdited();
    void placeType(const EditedItem &item) const;
    void dropEdited();
    void fillEdited(int item);
    QWidget *makeLink(const LinkedItem &item);
    void follow(const LinkedItem &item);

    FormItems &items;
    QString name;
    QVBoxLayout *column;
    /// Stands in the order of the keys where the entries begin, which are made when they are wanted.
    QWidget *beginning;
    QWidget *links = nullptr;
    bool isNarrow = false;
    std::vector<LinkedItem> shownLinks;
    std::vector<EditedItem> edited;
};
