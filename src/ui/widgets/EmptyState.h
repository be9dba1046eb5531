#pragma once

#include <QWidget>

/// What an empty list shows: an icon in a disc and one sentence.
class EmptyState : public QWidget
{
    Q_OBJECT
public:
    EmptyState(const QString &iconName, const QString &sentence, QWidget *parent = nullptr);

    QString sentence() const { return text; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString icon;
    QString text;
};
