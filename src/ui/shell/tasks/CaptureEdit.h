#pragma once

#include "records/capture/CaptureDrafts.h"
#include "records/capture/CaptureLine.h"

#include <QLineEdit>

/// A line in which a task is typed with its date, repetition, priority, category, project, person and place.
/// What was understood lies on a coloured ground; Backspace right behind such a piece makes plain words of it
/// again.
class CaptureEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit CaptureEdit(QWidget *parent = nullptr);

    const Capture &capture() const { return read; }
    /// What stands in the field, to go on with it later.
    CaptureDraft draft() const { return {text(), literal}; }
    void resume(const CaptureDraft &draft);
    /// Reads the line again: names or the time may have changed.
    void readAgain();

Q_SIGNALS:
    /// What was understood is another than before.
    void captureChanged();
    /// Return.
    void accepted();
    /// Escape in an empty line, and Down: to the list.
    void left();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    void edited();
    /// True if the cursor stands right behind a piece, which is plain from now on.
    bool takeBackPiece();
    QColor colourOf(const CapturePiece &piece) const;

    Capture read;
    QString before;
    /// Where the words of pieces begin that were taken back.
    std::set<int> literal;
};
