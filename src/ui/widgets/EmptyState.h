#pragma once

#include <QWidget>

class QPushButton;

/// What an empty list shows: an icon in a disc and one sentence; on request with a button that helps.
class EmptyState : public QWidget
{
    Q_OBJECT
public:
    EmptyState(const QString &iconName, const QString &sentence, QWidget *parent = nullptr);

    QString sentence() const { return text; }
    void setSentence(const QString &sentence);
    /// Puts a button below the sentence.
    /// \param name what the button is called among the widgets.
    void setAction(const QString &title, const QString &name = QStringLiteral("buttonOfEmptyState"));

Q_SIGNALS:
    void actionClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Places
    {
        QRect disc;
        QRect words;
        QRect action;
    };
    Places places() const;

    QString icon;
    QString text;
    QPushButton *action = nullptr;
};
