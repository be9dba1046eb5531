#pragma once

#include "records/capture/CaptureDrafts.h"
#include "records/capture/CaptureLine.h"
#include "records/capture/CaptureOffers.h"

#include <QLineEdit>
#include <QPointer>

class CaptureOfferList;

/// A line in which a task is typed with its date, repetition, priority, category, project, person and place.
/// What was understood lies on a coloured ground; Backspace right behind such a piece makes plain words of it
/// again.
class CaptureEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit CaptureEdit(QWidget *parent = nullptr);
    ~CaptureEdit() override;

    const Capture &capture() const { return read; }
    /// What stands in the field, to go on with it later.
    CaptureDraft draft() const { return {text(), literal}; }
    void resume(const CaptureDraft &draft);
    /// Reads the line again: names or the time may have changed.
    void readAgain();
    /// Whether names are offered with which the word at the cursor can go on.
    bool isOffering() const;

Q_SIGNALS:
    /// Names are offered now, or not any more.
    void offering();
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
    void focusOutEvent(QFocusEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void edited();
    void offerNames();
    void endOffer();
    void takeName(const QString &name);
    /// True if the key was for the offered names.
    bool keyOfOffer(const QKeyEvent &event);
    /// True if the cursor stands right behind a piece, which is plain from now on.
    bool takeBackPiece();
    QColor colourOf(const CapturePiece &piece) const;

    Capture read;
    std::optional<CaptureOffer> offer;
    QPointer<CaptureOfferList> offers;
    QString before;
    /// Where the words of pieces begin that were taken back.
    std::set<int> literal;
};
