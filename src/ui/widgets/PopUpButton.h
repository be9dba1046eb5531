#pragma once

#include <QComboBox>

/// A pop-up of choices in a form: as wide as its row whatever it offers, and deaf to the wheel, which is for
/// the form.
class PopUpButton : public QComboBox
{
    Q_OBJECT
public:
    explicit PopUpButton(const QString &name, QWidget *parent = nullptr);

    /// A line that cannot be chosen.
    void addHeading(const QString &text);

Q_SIGNALS:
    /// The Delete key: the choice is to be cleared.
    void deletePressed();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
