#pragma once

#include "widgets/Theme.h"

#include <QStyleOptionViewItem>

class QPainter;

/// Writes the parts of a painted row at their mirrored places; texts are cut off where they do not fit.
class RowWriter
{
public:
    /// Both have to outlive it.
    RowWriter(QPainter &usedPainter, const QStyleOptionViewItem &rowOption)
        : painter(usedPainter)
        , option(rowOption)
    {}

    QRect placed(const QRect &rect) const;
    void write(const QRect &where, Theme::FontRole role, const QColor &colour, const QString &text,
               bool isStruckOut = false) const;
    /// The title of a record: in the colour of the selection where it is selected and the list has the keys,
    /// struck out where it is done.
    void writeTitle(const QRect &where, const QString &title, bool isDone) const;
    void paintIcon(const QRect &where, const QString &icon, const QColor &colour) const;
    void paintDisc(const QRect &where, const QColor &colour) const;
    void paintCheckBox(const QRect &where, bool isChecked) const;

private:
    QPainter &painter;
    const QStyleOptionViewItem &option;
};
