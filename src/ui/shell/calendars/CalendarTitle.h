#pragma once

#include <QWidget>

/// The title block of the calendar: a large word at its head, and two small lines beside it.
class CalendarTitle : public QWidget
{
    Q_OBJECT
public:
    explicit CalendarTitle(QWidget *parent = nullptr);

    /// A bottom line that is empty leaves its room to the top one.
    void setWords(const QString &newLeft, const QString &newTop, const QString &newBottom);

    /// A quiet mark behind the top line, with a reason; none for an empty one.
    void setMark(const QString &reason);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int leftWidth() const;

    QString left, top, bottom;
    bool isMarked = false;
};
