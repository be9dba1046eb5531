#pragma once

#include <QAbstractButton>

/// The round check box of a task in a form.
class CheckButton : public QAbstractButton
{
    Q_OBJECT
public:
    explicit CheckButton(QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
