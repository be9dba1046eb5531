#pragma once

#include <QIcon>
#include <QWidget>

class QLabel;
class QToolButton;

/// One row of a form: a label beside a control, with a line below. A row is hidden by height 0, which closes
/// the gap. While it is only looked at, words stand in the place of the control.
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
    void setControl(QWidget *newControl);
    /// Lets the row be higher than its least height, as high as its control asks for.
    void setGrows();
    /// How far the content stands from the leading edge of the row.
    void setInset(int inset);

    /// Says by its label why the value cannot stay; an empty text says that it can.
    void setError(const QString &reason);

    bool isRowHidden() const { return isCollapsed; }
    void setRowHidden(bool hidden);

    /// The value in words, with an icon before it if there is one.
    void setPreview(const QString &text, const QIcon &icon = {});
    /// Offers, beside the words, to go to what they name. \param what says so; empty for nothing to go to.
    void setGoesTo(const QString &what);
    /// Shows the words instead of the control. A row without words keeps its control.
    void setPreviewing(bool preview);

    /// Offers to clear the value by a button that is seen while the mouse is over the row and there is a
    /// value.
    void setDeletable();
    void setHasValue(bool value);

Q_SIGNALS:
    void deleteClicked();
    void goClicked();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QLabel *previewLabel();
    bool isLastShown() const;
    bool canDelete() const;
    void setRowHeight(int height);
    void settle();
    void alignAtTop();
    void placeDeleteButton();
    void visibleOrInvisibleButtonDelete();

    int number;
    int shownHeight;
    bool grows = false;
    bool isCollapsed = false;
    bool isPreviewing = false;
    bool isAnimated = false;
    bool hasValue = false;
    QLabel *label;
    QWidget *control = nullptr;
    QWidget *preview = nullptr;
    QLabel *previewIcon = nullptr;
    QLabel *previewText = nullptr;
    QToolButton *buttonGo = nullptr;
    QToolButton *buttonDelete = nullptr;
};
