#pragma once

#include <QListView>

#include <functional>
#include <vector>

class CheckListModel;

/// A list whose lines are marked by a press or the space key, under headings where it has some. What a press
/// does is said by who listens. It may be of any length.
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
        /// It stands above lines and is not marked.
        bool isHeading = false;
        /// Stands at the end of the line, in front of its mark.
        QString detail = {};
        /// A press leaves its mark as it is.
        bool isFixed = false;
    };
    void setLines(std::vector<Line> lines);
    int lineCount() const;
    QString textOf(int line) const;
    void setMarked(int line, bool marked);
    /// The same of all lines.
    void setMarked(const std::function<bool(int line)> &isMarked);
    bool isMarked(int line) const;

Q_SIGNALS:
    void linePressed(int line);
    void deletePressed(int line);

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;

private:
    void tellSoon();
    void press(int line);

    CheckListModel *lineModel;
    bool isTellingDue = false;
};
