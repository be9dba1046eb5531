#pragma once

#include "records/FormView.h"
#include "records/Portrait.h"
#include "records/RecordListScreen.h"
#include "records/RecordPane.h"
#include "records/RecordWindow.h"
#include "store/queries/RecordRows.h"
#include "store/state/StepBlock.h"

#include <QColor>

#include <functional>

class ListFilter;

/// What a row of a plain list shows of its record: a title over a quiet line, and a colour before them.
struct RecordLook
{
    QString title;
    QString detail = {};
    /// Invalid for none.
    QColor mark = {};
    /// The picture or the initials before the title.
    std::optional<Portrait> portrait = {};
};

/// A kind of record, described: what its list, form, pane and window need to know of it. The screen of a kind
/// that wants more than that is a class of its own, derived from `RecordListScreen`.
struct RecordKind
{
    /// The list; its entity is that of the kind.
    RecordListDescription list;
    /// The records of the list in their order.
    std::function<std::vector<ListedRecord>(const FilterEntry *filter)> rows = {};
    std::function<RecordLook(const ManagedObject &record)> look;
    /// So many of its records in words, such as "2 notes".
    std::function<QString(int count)> countInWords;
    /// The form of a stored record, or of a new one for null.
    std::function<std::unique_ptr<FormModel>(const ObjectPtr &record)> form;
    /// What pane and window are called among the widgets.
    QString paneName;
    QString windowName;
    /// What stands in the title bar of the window.
    QString windowTitle;
    /// Makes the pane of a kind that shows more than its form; empty for one that does not.
    std::function<RecordPane *(std::unique_ptr<FormModel> form, FormView *view)> pane = {};
    /// A filter for one screen; empty for a kind without.
    std::function<std::shared_ptr<ListFilter>()> filter = {};
    /// Makes what the forms of the kind bring themselves; empty where nothing is.
    FormView::OwnControl ownControl = {};
    /// Asks and deletes as the kind wants it; empty where nothing but the records goes.
    std::function<void(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                       const StepBlock &step)>
        remove = {};

    /// Whether a commit asks for all rows anew, though it concerns no record of the kind; empty for never.
    std::function<bool(const StoreChanges &changes)> isRegroupedBy = {};
    /// Makes the screen of a kind that has more than its list; empty for one that has not.
    std::function<TabsViewController *(const RecordKind &kind)> screen = {};

    TabsViewController *makeScreen() const;
    RecordPane *makePane(const ObjectPtr &record) const;
    RecordWindow *makeWindow(QWidget *parent) const;
};
