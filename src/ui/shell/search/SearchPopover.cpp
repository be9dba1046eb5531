#include "shell/search/SearchPopover.h"

#include "foundation/Localization.h"
#include "shell/search/CellViewSearchDeteil.h"
#include "shell/search/SearchField.h"
#include "shell/search/SearchResultsModel.h"
#include "store/entities/Entities.h"
#include "store/state/NotificationNames.h"
#include "widgets/Accessibility.h"
#include "widgets/TableViewExtended.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QStackedLayout>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

constexpr int popoverWidth = 360;
constexpr int gap = 4;
constexpr auto longSearch = 200ms;

SearchPopover::SearchPopover(SearchField &searchField)
    : QWidget(searchField.window())
    , field(searchField)
    , model(new SearchResultsModel(this))
    , view(new TableViewExtended(this))
    , hint(makeTextLabel({}, Theme::FontRole::Body, Theme::secondaryText))
{
    Accessibility::describe(*this, {.role = QAccessible::Grouping});
    hide();
    setObjectName(u"searchPopover"_s);
    setAccessibleName(localized(u"Search results"_s));
    auto *layers = new QStackedLayout(this);
    // The line around the bubble shows through above and below, so that the rows have all of its height.
    layers->setContentsMargins(1, 0, 1, 0);
    layers->setStackingMode(QStackedLayout::StackAll);
    layers->addWidget(view);
    layers->addWidget(hint);
    hint->setAlignment(Qt::AlignCenter);
    hint->setAttribute(Qt::WA_TransparentForMouseEvents);
    view->setObjectName(u"tableViewSearch"_s);
    view->setAccessibleName(localized(u"Search results"_s));
    view->setRowHeights(CellViewSearchDeteil::heights);
    view->setItemDelegate(new CellViewSearchDeteil(view));
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setFocusPolicy(Qt::NoFocus);
    view->setModel(model);
    patience.setSingleShot(true);
    patience.setInterval(longSearch);
    connect(&patience, &QTimer::timeout, this, &SearchPopover::showHint);
    searchAgain.setSingleShot(true);
    connect(&searchAgain, &QTimer::timeout, this, [this] {
        isFollowing = true;
        followed = currentRecord();
        model->search(field.text());
    });
    changesHeard = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { storeChanged(changes); });
    connect(model, &SearchResultsModel::changed, this, &SearchPopover::resultsChanged);
    connect(view, &TableViewExtended::doubleAction, this, &SearchPopover::choose);
    connect(view, &TableViewExtended::rowSelectionChanged, this, &SearchPopover::currentChanged);
    connect(this, &SearchPopover::currentChanged, this, [this] {
        if (isFollowing)
            followed = currentRecord();
    });
    connect(&field, &SearchField::textChanged, this, &SearchPopover::textChanged);
    connect(&field, &SearchField::pressed, this, &SearchPopover::open);
    connect(&field, &SearchField::walked, this, &SearchPopover::walk);
}

void SearchPopover::open()
{
    if (isVisible())
        return;
    isFollowing = false;
    model->search(field.text());
    patience.start();
    place();
    show();
    raise();
}

void SearchPopover::textChanged()
{
    if (!isVisible())
        return open();
    isFollowing = false;
    model->search(field.text());
    patience.start();
}

/// What is found by its words can be found otherwise now, or not any more.
void SearchPopover::storeChanged(const StoreChanges &changes)
{
    const std::string_view searched[] = {EntityTask::entityName, EntityProject::entityName,
                                         EntityContacts::entityName, EntityCompany::entityName,
                                         EntityNote::entityName};
    const auto isConcerned = [&changes](std::string_view entity) { return changes.concerns(entity); };
    if (isVisible() && !field.text().isEmpty() && std::ranges::any_of(searched, isConcerned))
        searchAgain.start(0);
}

void SearchPopover::resultsChanged()
{
    patience.stop();
    showHint();
    const bool isSameText = std::exchange(isFollowing, false);
    if (!isSameText)
        view->tellCount();
    const int same = isSameText ? model->rowOf(followed) : -1;
    if (same >= 0) {
        view->selectRow(same);
        view->scrollToRow(same);
    } else if (const int first = model->found().firstChoice(); first >= 0) {
        view->selectRow(first);
        view->scrollToTop();
        view->scrollToRow(first);
    }
    place();
}

/// What stands in the place of results.
void SearchPopover::showHint()
{
    hint->setVisible(model->rowCount() == 0);
    if (field.text().isEmpty())
        hint->setText(localized(u"Tasks, projects, people, companies and notes"_s));
    else if (model->isSearching())
        hint->setText(localized(u"Searching…"_s));
    else
        hint->setText(localized(u"Nothing found for “%1”"_s)
                          .arg(fontMetrics().elidedText(field.text(), Qt::ElideMiddle, popoverWidth / 2)));
}

void SearchPopover::place()
{
    const QRect around(field.mapTo(parentWidget(), QPoint(0, 0)), field.size());
    const int wide = std::min(popoverWidth, parentWidget()->width() - 2 * Theme::unit);
    const int trailing = isRightToLeft() ? around.left() : around.right() + 1 - wide;
    const int left = std::clamp(trailing, Theme::unit, parentWidget()->width() - wide - Theme::unit);
    const int top = around.bottom() + gap;
    const RowHeights heights = CellViewSearchDeteil::heights.shown();
    const double wanted = model->found().popoverHeight(heights.item, heights.header);
    const int room = parentWidget()->height() - top - Theme::unit;
    setGeometry(left, top, wide, std::min(static_cast<int>(wanted), room));
}

void SearchPopover::walk(QKeyEvent *event)
{
    if (!isVisible())
        return open();
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        return choose(view->currentRow());
    QCoreApplication::sendEvent(view, event);
    view->tellCurrentRow();
}

ObjectPtr SearchPopover::currentRecord() const
{
    return isVisible() ? model->recordAt(view->currentRow()) : nullptr;
}

QRect SearchPopover::currentPlace() const
{
    const QRect row = view->visualRect(view->currentIndex());
    return {view->viewport()->mapTo(this, row.topLeft()), row.size()};
}

void SearchPopover::choose(int row)
{
    if (!model->recordAt(row))
        return;
    hide();
    model->found().doubleClick(row);
    Q_EMIT chosen();
}

void SearchPopover::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    qApp->installEventFilter(this);
}

void SearchPopover::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    patience.stop();
    qApp->removeEventFilter(this);
    Q_EMIT currentChanged();
}

/// A press elsewhere, or the focus going elsewhere, closes the bubble; it follows its window.
bool SearchPopover::eventFilter(QObject *watched, QEvent *event)
{
    auto *widget = qobject_cast<QWidget *>(watched);
    if (event->type() == QEvent::MouseButtonPress && !QApplication::activePopupWidget() && widget &&
        widget != &field && widget != this && !isAncestorOf(widget) && !field.isAncestorOf(widget))
        hide();
    else if (event->type() == QEvent::FocusOut && watched == &field && !QApplication::activePopupWidget() &&
             static_cast<QFocusEvent *>(event)->reason() != Qt::ActiveWindowFocusReason)
        hide();
    else if (event->type() == QEvent::Resize && watched == parentWidget())
        place();
    return false;
}

void SearchPopover::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::edge);
    painter.setBrush(Theme::card);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::cardRadius,
                            Theme::cardRadius);
}
