#pragma once

#include <QWidget>

/// The white card behind the rows of a form, which stand in one chain without gaps.
class FormCard : public QWidget
{
    Q_OBJECT
public:
    explicit FormCard(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
