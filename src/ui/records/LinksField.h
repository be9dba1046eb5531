#pragma once

#include "records/FormModel.h"

#include <QWidget>

class PopUpButton;
class QVBoxLayout;

/// The records that a row of a form links: each in a line from which it is opened and, while the form is
/// edited, taken out. The pop-up below adds another one.
class LinksField : public QWidget
{
    Q_OBJECT
public:
    LinksField(FormModel &model, const FormRow &row, QWidget *parent = nullptr);

    /// What offers the records that can be added.
    PopUpButton *popUp() const { return adding; }
    /// Shows what the model holds.
    void showLinks(bool isEditing);

Q_SIGNALS:
    void opened(const ObjectPtr &record);
    /// Other records are linked than before.
    void linksChanged();

private:
    QWidget *makeLine(const FormLink &link, bool isEditing);

    FormModel &model;
    int row;
    QVBoxLayout *column;
    std::vector<QWidget *> lines;
    std::vector<FormLink> shown;
    bool isShownEditing = false;
    PopUpButton *adding;
};
