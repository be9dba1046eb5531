#pragma once

#include "foundation/Date.h"

#include <QWidget>

#include <vector>

/// The line above the columns of a calendar that says which day each is. A day opens on a press, or by keys:
/// the arrows go along the days, Return presses one, and the menu key does what the secondary button does.
class DaysLineWeek : public QWidget
{
    Q_OBJECT
public:
    explicit DaysLineWeek(QWidget *parent = nullptr);

    struct Day
    {
        Date date;
        QString words;
        /// The same for who cannot see it.
        QString spoken = {};
        bool isToday = false;
        /// Two appointments of it are at the same time.
        bool hasClash = false;
    };
    /// \param indent where the first column begins, from the leading edge, and where the last one ends.
    void setDays(std::vector<Day> newDays, int leading, int trailing);
    void setClashes(const std::vector<bool> &clashes);
    /// Says that a press on a day does nothing.
    void setQuiet();
    static int neededHeight();

Q_SIGNALS:
    void dayPressed(Date day);
    /// The secondary button.
    void dayMenuWanted(Date day);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    bool event(QEvent *event) override;

private:
    QRectF cell(int column) const;
    int columnAt(QPointF point) const;
    void goTo(int column);

    std::vector<Day> days;
    int leadingSpace = 0;
    int trailingSpace = 0;
    bool isQuiet = false;
    /// The day that the keyboard is on.
    int current = 0;
};
