#pragma once

#include <QPointer>
#include <QWidget>

#include <vector>

/// The shortcuts of a window, laid over it. Any key and any press end it.
class ShortcutsOverlay : public QWidget
{
    Q_OBJECT
public:
    /// A command and its keys, as the user reads them.
    struct Line
    {
        QString command;
        QString keys;
    };

    /// Lays them over a window; a second call takes them away again.
    static void toggle(QWidget &window, std::vector<Line> lines);

    /// What it says, in lines of a command and its keys.
    QString text() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    ShortcutsOverlay(QWidget &window, std::vector<Line> shown);
    void end();

    std::vector<Line> lines;
    QPointer<QWidget> focusBefore;
    bool isEnding = false;
};
