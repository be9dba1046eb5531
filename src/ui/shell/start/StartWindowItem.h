#pragma once

#include <QAbstractButton>

/// A row of the start window that is pressed: an icon, a title and a line about it. It is lit while the mouse
/// is down inside of it, and chosen when the mouse goes up there. Return and Space choose it, too, and the
/// arrows go from one to the next.
class StartWindowItem : public QAbstractButton
{
    Q_OBJECT
public:
    /// \param icon a name of the icon set.
    StartWindowItem(const QString &icon, const QString &title, const QString &detail,
                    QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    QString iconName;
    QString line;
};
