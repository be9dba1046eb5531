#pragma once

#include <QWidget>

class QLabel;

/// One row of a form: a label beside a control, with a line below. A row is hidden by height 0, which closes
/// the gap.
class RowItemView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int rowHeight READ height WRITE setRowHeight)
public:
    /// A row without a label is all control. `minHeigt` is the height at which it is shown.
    RowItemView(int tag, const QString &textTag, int minHeigt, QWidget *parent = nullptr);

    int tag() const { return number; }
    int minHeigt() const { return shownHeight; }
    void setLabel(const QString &text);
    void setControl(QWidget *control);
    /// Lets the row be higher than its least height, as high as its control asks for.
    void setGrows();
    /// How far the content stands from the leading edge of the row.
    void setInset(int inset);

    bool isRowHidden() const { return isCollapsed; }
    void setRowHidden(bool hidden);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void setRowHeight(int height);
    void settle();
    void alignAtTop();

    int number;
    int shownHeight;
    bool grows = false;
    bool isCollapsed = false;
    QLabel *label;
};
