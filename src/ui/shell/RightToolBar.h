#pragma once

#include "objectstore/ManagedObject.h"

#include <QPointer>
#include <QWidget>

/// The slot for the bar of the present screen.
class ChengedToolBar : public QWidget
{
    Q_OBJECT
public:
    explicit ChengedToolBar(QWidget *parent = nullptr);

    /// Shows a bar in place of the one that was there; whose that was, keeps it.
    void addToolBar(QWidget *bar);

Q_SIGNALS:
    void toolBarChanged(const QWidget *bar);

private:
    QPointer<QWidget> shownBar;
};

class SearchField;
class SearchPopover;

/// The toolbar over the content, with the search at its end. The window can be moved by it.
class RightToolBar : public QWidget
{
    Q_OBJECT
public:
    explicit RightToolBar(QWidget *parent = nullptr);

    ChengedToolBar *chengedToolBar() const { return slot; }
    SearchField *searchField() const { return field; }
    /// The results, made when they are first wanted.
    SearchPopover *searchPopover();
    /// The result that the keys are on, or null.
    ObjectPtr currentResult() const;
    /// Puts the focus into the field, with what stands there selected.
    void focusSearch();

Q_SIGNALS:
    void currentResultChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void leaveSearch();
    void orderKeys(const QWidget *bar);

    ChengedToolBar *slot;
    SearchField *field;
    SearchPopover *popover = nullptr;
    QPointer<QWidget> focusBefore;
    std::optional<QPoint> pressedAt;
};
