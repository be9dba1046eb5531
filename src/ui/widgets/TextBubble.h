#pragma once

#include "widgets/Popover.h"

/// A bubble that says a few sentences about something on the screen, and goes with the next press or Escape.
class TextBubble : public Popover
{
    Q_OBJECT
public:
    /// Shows the text below a part of a widget.
    static TextBubble *show(const QString &text, QWidget &about, const QRect &part);

    QString text() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    explicit TextBubble(const QString &text, QWidget *parent);
};
