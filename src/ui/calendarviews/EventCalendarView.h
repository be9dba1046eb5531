#pragma once

#include "records/copies/MVTask.h"

#include <QColor>
#include <QRectF>

class QPainter;

/// A task as it looks on a calendar: made once for each reading of the store, painted by whoever has a place
/// for it.
class EventCalendarView
{
public:
    explicit EventCalendarView(std::shared_ptr<MVTask> shownEvent);

    /// The working copy that is shown.
    const std::shared_ptr<MVTask> &event() const { return copy; }
    const TaskPtr &task() const { return copy->task(); }
    const QString &title() const { return copy->title; }
    bool isDone() const { return copy->status == TaskStatus::Done; }
    bool isReadOnly() const { return !copy->allowsContentModifications.value_or(true); }
    QColor backgraundColor() const;
    QColor selectedBacgraundColor() const { return colour; }
    /// What it is filled with, opaque: so that its title can be read on it.
    QColor ground(bool isSelected) const;
    /// White but on a colour on which it could not be read.
    QColor textColour() const;

    struct State
    {
        bool isSelected = false;
        /// It lies over another one of its kind, which a shadow tells.
        bool isOverOther = false;
        Qt::LayoutDirection direction = Qt::LeftToRight;
        /// In what it is seen; what lies outside of it gets no title.
        QRectF visible = {};
    };
    void paint(QPainter &painter, const QRectF &frame, const State &state) const;

    /// From when to when, in words: "9:45 AM – 10:15 AM", or one moment; "All day" for a ToDo.
    QString timeText() const;
    /// Days and times in words, for who cannot see where it stands.
    QString spokenTime() const;
    static QString shortTime(Date date);
    /// A weekday and its date in words.
    static QString dayName(Date date);
    /// A day for who cannot see it: its date, whether it is today, and the number of its items.
    static QString dayTitle(Date date, int items);
    /// The calendar's name, or the category's in the sample store.
    QString placeText() const;

    /// The colour of a task's calendar, or in the sample store that of its category.
    static QColor colourOf(const MVTask &task);
    /// The colour of what is about to be made.
    static QColor colourOfNew();
    /// The line of text that an item needs.
    static double textHeight();

private:
    QString startText() const;
    QString iconName() const;
    void paintBack(QPainter &painter, const QRectF &frame, const State &state) const;
    void paintWords(QPainter &painter, const QRectF &frame, const State &state) const;
    double paintIcons(QPainter &painter, const QRectF &frame, const State &state) const;

    std::shared_ptr<MVTask> copy;
    QColor colour;
};
