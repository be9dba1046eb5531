#pragma once

#include "records/DatePickerState.h"

#include <QWidget>

/// A field that shows a date and asks for its bubble when pressed. The Delete key and the cross clear it.
class DatePicker : public QWidget
{
    Q_OBJECT
public:
    explicit DatePicker(DatePickerState::Type type, QWidget *parent = nullptr);

    DatePickerState::Type typePicker() const { return type; }
    void setDate(OptionalDate newDate, bool showClock);
    /// Shows that it is due some day instead of a date.
    void setIsSomeday(bool someday);
    QString text() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void pressed();
    void cleared();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool hasValue() const { return isSomeday || date; }
    QRect crossRect() const;
    void changed();

    DatePickerState::Type type;
    OptionalDate date;
    bool hasClock = true;
    bool isSomeday = false;
};
