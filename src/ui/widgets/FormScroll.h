#pragma once

#include <QScrollArea>

/// Scrolls a form up and down; the control that has the focus stays in sight.
class FormScroll : public QScrollArea
{
    Q_OBJECT
public:
    explicit FormScroll(QWidget *body, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    /// Keeps the room of the scroll bar free within the trailing margin of the form, so that nothing moves
    /// when it comes or goes. To be called once, when the form has its margins.
    void keepRoomForBar();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
