#pragma once

#include <QAbstractButton>

/// A button of the strip above a list, with its words before an icon. It stands out while it narrows the
/// list.
class StripButton : public QAbstractButton
{
    Q_OBJECT
public:
    enum class Look { Off, On, Resting };

    /// \param icon what it shows, and `iconOn` while it is on.
    StripButton(QString icon, QString iconOn, QWidget *parent = nullptr);

    /// A button that rests is greyed.
    void setLook(Look look, const QString &words);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// Whether what it opens is open.
    virtual bool isOpen() const { return false; }
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QColor ink() const;

    QString iconOff;
    QString iconOn;
    Look look = Look::Off;
};
