#include "records/PlainRecordScreen.h"

#include "filters/ListFilter.h"
#include "records/FormView.h"
#include "records/Portraits.h"
#include "records/RecordCell.h"
#include "records/RecordRemoval.h"

// The rows

PlainListModel::PlainListModel(const RecordKind &kind, Source rowSource, QObject *parent)
    : RecordListModel(parent)
    , source(std::move(rowSource))
    , look(kind.look)
    , inWords(kind.countInWords)
    , isRegrouped(kind.isRegroupedBy)
    , rows(kind.list.entity)
{}

void PlainListModel::fetch()
{
    beginResetModel();
    rows.set(source());
    endResetModel();
}

void PlainListModel::update(const std::set<RowId> &changed, const std::set<RowId> &held)
{
    rows.follow(source(), changed, held, *this);
}

ObjectPtr PlainListModel::recordAt(int row) const
{
    return row >= 0 && row < rows.size() ? rows.recordAt(row) : nullptr;
}

RowId PlainListModel::identifierAt(int row) const
{
    return row >= 0 && row < rows.size() ? rows.identifierAt(row) : 0;
}

int PlainListModel::rowOf(const ObjectPtr &record) const
{
    return record ? rows.rowOf(*record) : -1;
}

RowKind PlainListModel::kindOf(int row) const
{
    return rows.isHeading(row) ? RowKind::Header : RowKind::Item;
}

int PlainListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows.size();
}

QVariant PlainListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const bool isText = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    if (rows.isHeading(index.row()))
        return isText ? QVariant(rows.headingAt(index.row())) : QVariant();
    const ObjectPtr record = rows.recordAt(index.row());
    if (!record)
        return {};
    const RecordLook shown = look(*record);
    switch (role) {
    case Qt::DisplayRole:
        return shown.title;
    case Qt::AccessibleTextRole:
        return shown.detail.isEmpty() ? shown.title : shown.title + QStringLiteral(", ") + shown.detail;
    case DetailRole:
        return shown.detail;
    case MarkRole:
        return shown.mark;
    case PortraitRole:
        return shown.portrait ? QVariant::fromValue(*shown.portrait) : QVariant();
    default:
        return {};
    }
}

// The screen

static PlainListModel *makeModel(const RecordKind &kind, const PlainRecordScreen &screen,
                                 const FilterEntry *(PlainRecordScreen::*filter)() const)
{
    const auto source = [rows = kind.rows, &screen, filter] { return rows((screen.*filter)()); };
    return new PlainListModel(kind, source);
}

PlainRecordScreen::PlainRecordScreen(const RecordKind &shownKind, QWidget *parent)
    : RecordListScreen(shownKind.list, makeModel(shownKind, *this, &PlainRecordScreen::filter),
                       new RecordCell, parent)
    , kind(shownKind)
{
    if (kind.filter)
        setUpFilter(kind.filter());
    connect(&Portraits::shared(), &Portraits::arrived, table()->viewport(), qOverload<>(&QWidget::update));
}

PlainRecordScreen::~PlainRecordScreen() = default;

DetailViewController *PlainRecordScreen::makePane(const ObjectPtr &record)
{
    return kind.makePane(record);
}

void PlainRecordScreen::remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                               const Step &step)
{
    (kind.remove ? kind.remove : RecordRemoval::remove)(records, removed, step);
}

// What a description makes

TabsViewController *RecordKind::makeScreen() const
{
    return screen ? screen(*this) : new PlainRecordScreen(*this);
}

RecordPane *RecordKind::makePane(const ObjectPtr &record) const
{
    std::unique_ptr<FormModel> model = form(record);
    auto *view = new FormView(*model, ownControl);
    return pane ? pane(std::move(model), view) : new RecordPane(paneName, std::move(model), view);
}

RecordWindow *RecordKind::makeWindow(QWidget *parent) const
{
    std::unique_ptr<FormModel> model = form(nullptr);
    auto *view = new FormView(*model, ownControl);
    return new RecordWindow(windowName, windowTitle, std::move(model), view, parent);
}
