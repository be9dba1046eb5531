#pragma once

#include "widgets/Theme.h"

#include <QWidget>

/// One line above a part of Home, at the leading edge in whatever direction it reads itself, cut off where it
/// is too long.
class HomeHeading : public QWidget
{
    Q_OBJECT
public:
    HomeHeading(Theme::FontRole fontRole, Theme::Role textColour, QWidget *parent = nullptr);

    QString text() const { return words; }
    void setText(const QString &text);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Theme::Role colour;
    QString words;
};
