#pragma once

#include <QAbstractButton>

/// One cell of a `RepeatCalendar`.
class RepeatCalendarItem : public QAbstractButton
{
    Q_OBJECT
public:
    RepeatCalendarItem(int number, const QString &title, QWidget *parent);

    int number() const { return value; }
    QString title() const { return text(); }
    bool selected() const { return isChecked(); }
    /// Where the cell stands, so that the grid is round at its corners and has single lines inside.
    void setEdges(Qt::Edges outerEdges);
    bool isFirstColumn() const { return edges.testFlag(Qt::LeftEdge); }
    bool isLastColumn() const { return edges.testFlag(Qt::RightEdge); }
    bool isFirstRow() const { return edges.testFlag(Qt::TopEdge); }
    bool isLastRow() const { return edges.testFlag(Qt::BottomEdge); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QColor fill() const;

    int value;
    Qt::Edges edges;
};
