#pragma once

#include "foundation/NotificationCenter.h"

#include <QAbstractButton>
#include <QTimer>

/// A few words at the foot of the sidebar on what concerns all screens: a title and a sentence, and a press
/// that leads to what can be done.
class SidebarNotice : public QAbstractButton
{
    Q_OBJECT
public:
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, heightForWidth(width())}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    enum class Kind { Calm, Warning };
    SidebarNotice(Kind ofWhat, const QString &title, QWidget *parent);

    QString sentence() const { return detail; }
    void setSentence(const QString &words);
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    Kind kind;
    QString detail;
};

/// Says that the records on the screen are examples. A press leads to the user's own.
class SampleNotice : public SidebarNotice
{
    Q_OBJECT
public:
    explicit SampleNotice(QWidget *parent = nullptr);

    void refresh();
};

/// Says that nothing goes to the user's other devices or comes from them, and why. A press opens "Devices".
class SharingNotice : public SidebarNotice
{
    Q_OBJECT
public:
    explicit SharingNotice(QWidget *parent = nullptr);

    void refresh();

private:
    QTimer looking;
    Observation observation;
};
