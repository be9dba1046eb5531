#pragma once

#include "foundation/Date.h"

#include <QWidget>

#include <vector>

/// The line above the columns of a calendar that says which day each is.
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
    bool event(QEvent *event) override;

private:
    QRectF cell(int column) const;
    int columnAt(QPointF point) const;

    std::vector<Day> days;
    int leadingSpace = 0;
    int trailingSpace = 0;
    bool isQuiet = false;
};
