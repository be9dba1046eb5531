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

    /// Whether there is a cross for a value; there is one until it is said otherwise.
    void setClearable(bool clearable);

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
    void describe();
    bool hasValue() const { return !value.isEmpty(); }
    bool canClear() const { return isClearable && hasValue(); }
    QRect crossRect() const;

    QString icon;
    QString value;
    QString placeholder;
    bool isClearable = true;
};
