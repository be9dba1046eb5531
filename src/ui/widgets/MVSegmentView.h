#pragma once

#include <QStringList>
#include <QWidget>

/// A row of segments of which one is selected, or none (index -1) where pressing the selected one clears it.
class MVSegmentView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int selectedIndex READ selectedIndex WRITE setSelectedIndex NOTIFY selectedIndexChanged)
public:
    explicit MVSegmentView(const QStringList &titles, QWidget *parent = nullptr);

    int selectedIndex() const { return selected; }
    /// Shows another selection without a signal.
    void setSelectedIndex(int index);
    void setHaveNotSelect(bool allowed) { canBeNone = allowed; }

    /// What to say of each part to whoever rests on it.
    void setPartTips(const QStringList &tips) { partTips = tips; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// The user chose another one.
    void selectedIndexChanged(int index);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    QRect rectOf(int index) const;
    int indexAt(const QPoint &point) const;
    void choose(int index);
    void moveFocus(int step);
    void describe();

    QStringList words;
    int selected = -1;
    int focused = 0;
    int hovered = -1;
    bool canBeNone = false;
    QStringList partTips;
};
