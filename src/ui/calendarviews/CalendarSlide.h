#pragma once

#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>

/// Two pictures of a page, of which one pushes the other out. What it covers is there already.
class CalendarSlide : public QWidget
{
    Q_OBJECT
public:
    /// Runs at once, and deletes itself at its end.
    /// \param fromRight whether the new picture comes in from the right.
    CalendarSlide(const QPixmap &oldPicture, const QPixmap &newPicture, bool fromRight, const QRect &place,
                  QWidget *parent);

    void finish();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *) override { finish(); }

private:
    QPixmap before;
    QPixmap after;
    bool comesFromRight;
    QVariantAnimation animation;
};
