#pragma once

#include <QLineEdit>

/// The field of the search. What is typed goes into it; the keys that walk a list are offered to the results
/// first.
class SearchField : public QLineEdit
{
    Q_OBJECT
public:
    explicit SearchField(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void pressed();
    /// Up, Down, a page up or down, Return. Accept the event to take it.
    void walked(QKeyEvent *event);
    /// Escape.
    void escaped();

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
