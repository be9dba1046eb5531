#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

/// The upper line of a bubble: what leads away, the title, what hands the choice over.
class BubbleHeader : public QWidget
{
    Q_OBJECT
public:
    explicit BubbleHeader(const QString &title, QWidget *parent = nullptr);

    void setTitle(const QString &title);
    QString title() const;
    /// "Cancel" at first.
    void setCancelText(const QString &text);
    /// The button of the Return key.
    QPushButton *buttonDone() const { return done; }
    QPushButton *buttonCancel() const { return cancel; }

Q_SIGNALS:
    void doneClicked();
    void cancelClicked();

private:
    QPushButton *cancel;
    QLabel *label;
    QPushButton *done;
};
