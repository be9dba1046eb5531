#pragma once

#include <QPointer>
#include <QWidget>

/// A bubble beside a control: closes on Escape and on a press outside.
class Popover : public QWidget
{
    Q_OBJECT
public:
    explicit Popover(QWidget *parent = nullptr);

    /// Shows the bubble below a control, or above it where there is no room. It stays on the screen when it
    /// grows.
    void showBeside(const QWidget &control);
    /// The same for a part of a widget, in its own coordinates.
    void showBeside(const QWidget &control, const QRect &partOfControl);

Q_SIGNALS:
    void closed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void place();
    int leadingEdge(const QRect &around) const;

    QPointer<const QWidget> anchor;
    QRect part;
};
