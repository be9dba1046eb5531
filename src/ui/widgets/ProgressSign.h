#pragma once

#include <QDialog>
#include <QElapsedTimer>

/// A small window that says what is being done and, by a line, how far it is. It keeps the user from
/// everything else meanwhile; a button stops the work where that is possible.
class ProgressSign : public QDialog
{
    Q_OBJECT
public:
    ProgressSign(const QString &sentence, int steps, bool canBeStopped, QWidget *parent);

    int value() const { return done; }
    /// Draws the line up to `steps` and hears what the user does.
    void setValue(int steps);
    /// Whether the user wants no more of it.
    bool wasCanceled() const { return isCanceled; }
    /// Escape and the window's own button stop the work, too.
    void reject() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int count;
    int done = 0;
    bool isStoppable;
    bool isCanceled = false;
    QWidget *line;
    /// When assistive technology was told how far it is.
    QElapsedTimer toldLast;
};
