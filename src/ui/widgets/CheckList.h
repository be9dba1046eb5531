#pragma once

#include <QListView>

#include <vector>

class QStandardItemModel;

/// A list whose lines are marked by a press or the space key. What a press does is said by who listens.
class CheckList : public QListView
{
    Q_OBJECT
public:
    explicit CheckList(QWidget *parent = nullptr);

    struct Line
    {
        QString text;
        /// Empty for none.
        QString iconName = {};
    };
    void setLines(const std::vector<Line> &lines);
    int lineCount() const;
    QString textOf(int line) const;
    void setMarked(int line, bool marked);
    bool isMarked(int line) const;

Q_SIGNALS:
    void linePressed(int line);
    void deletePressed(int line);

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void tellSoon();

    QStandardItemModel *lineModel;
    bool isTellingDue = false;
};
