#pragma once

#include <QAbstractButton>

/// Takes the filter of a list away by a press anywhere on it.
class FilterButtonCancelView : public QAbstractButton
{
    Q_OBJECT
public:
    explicit FilterButtonCancelView(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
