#pragma once

#include <QScrollArea>

/// Scrolls a form up and down; the control that has the focus stays in sight.
class FormScroll : public QScrollArea
{
    Q_OBJECT
public:
    explicit FormScroll(QWidget *body, QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
