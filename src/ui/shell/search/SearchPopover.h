#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QKeyEvent;
class QLabel;
class SearchField;
class SearchResultsModel;
class TableViewExtended;

/// The bubble of the results below the search field, over the content of its window. The focus stays in the
/// field.
class SearchPopover : public QWidget
{
    Q_OBJECT
public:
    /// \param field what is typed into; it may not outlive the popover's window.
    explicit SearchPopover(SearchField &field);

    /// Shows the results of what stands in the field.
    void open();
    /// The record that the keys are on, or null.
    ObjectPtr currentRecord() const;
    /// Where that record's row stands in the bubble.
    QRect currentPlace() const;
    TableViewExtended *tableView() const { return view; }

Q_SIGNALS:
    /// A result was chosen; its record was told of by the notification.
    void chosen();
    /// The keys are on another result, or on none.
    void currentChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void textChanged();
    void storeChanged(const StoreChanges &changes);
    void resultsChanged();
    void showHint();
    void place();
    void walk(QKeyEvent *event);
    void choose(int row);

    SearchField &field;
    SearchResultsModel *model;
    TableViewExtended *view;
    QLabel *hint;
    /// Only a search that takes long is spoken of.
    QTimer patience;
    /// Searches again for the same text, after records changed.
    QTimer searchAgain;
    /// Whether the next results follow such a change: then the keys stay on their record.
    bool isFollowing = false;
    ObjectPtr followed;
    Observation changesHeard;
};
