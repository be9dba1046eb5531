#pragma once

#include <QWidget>

/// A field that shows a value and asks for its bubble when pressed. The Delete key and the cross clear it.
class PickerField : public QWidget
{
    Q_OBJECT
public:
    explicit PickerField(const QString &iconName, QWidget *parent = nullptr);

    /// The value in words; `placeholder` where there is none.
    QString text() const { return value.isEmpty() ? placeholder : value; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void pressed();
    void cleared();

protected:
    void setValue(const QString &words, const QString &wordsForNone);

    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool hasValue() const { return !value.isEmpty(); }
    QRect crossRect() const;

    QString icon;
    QString value;
    QString placeholder;
};
