#pragma once

#include "widgets/RepeatCalendarItem.h"

#include <QWidget>

#include <functional>
#include <vector>

/// What one cell of a `RepeatCalendar` shows.
struct RepeatCalendarCell
{
    int number;
    QString title;
    QString accessibleName;
    bool isSelected;
};

/// A grid of weekdays, days or months of which any number can be selected. It is one stop of the Tab key; the
/// arrows walk through it, the space key selects.
class RepeatCalendar : public QWidget
{
    Q_OBJECT
public:
    explicit RepeatCalendar(int width, QWidget *parent = nullptr);

    /// Replaces the cells; without any the grid takes no room.
    void setItems(const std::vector<RepeatCalendarCell> &cells);

    /// Selects exactly those of the cells that are told, without a signal.
    void setSelectedItems(const std::function<bool(int number)> &isSelected);

    const std::vector<RepeatCalendarItem *> &items() const { return cellItems; }
    std::vector<int> selectedItems() const;
    int itemsCount() const { return static_cast<int>(cellItems.size()); }
    int columnCount() const;
    int rowCount() const;
    QSize cellSize() const;

Q_SIGNALS:
    void selectedChange(int number, bool selected);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place();
    void setTabStop(const RepeatCalendarItem *stop);

    int gridWidth;
    std::vector<RepeatCalendarItem *> cellItems;
};
