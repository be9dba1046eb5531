#include "records/MarkedRowsView.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/CheckList.h"
#include "widgets/TextLabel.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

MarkedRowsView::MarkedRowsView(MarkedRows &shownRows, Words shownWords, QWidget *parent)
    : QWidget(parent)
    , rows(shownRows)
    , words(std::move(shownWords))
    , fieldSearch(new QLineEdit)
    , table(new CheckList)
    , labelEmpty(makeTextLabel({}, Theme::FontRole::Body, Theme::secondaryText))
{
    fieldSearch->setObjectName(u"fieldSearch"_s);
    fieldSearch->setPlaceholderText(localized(u"Search"_s));
    fieldSearch->setAccessibleName(localized(u"Search"_s));
    fieldSearch->setClearButtonEnabled(true);
    table->setAccessibleName(words.name);
    labelEmpty->setObjectName(u"labelEmpty"_s);
    labelEmpty->setAlignment(Qt::AlignCenter);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Theme::unit);
    column->addWidget(fieldSearch);
    column->addWidget(table, 1);
    column->addWidget(labelEmpty, 1);
    connect(fieldSearch, &QLineEdit::textChanged, this, [this](const QString &text) {
        rows.search(text);
        showRows();
        tellCount();
        Q_EMIT changed();
    });
    connect(table, &CheckList::linePressed, this, &MarkedRowsView::toggle);
    fieldSearch->installEventFilter(this);
    table->installEventFilter(this);
    setFocusProxy(fieldSearch);
    showRows();
}

void MarkedRowsView::setEmptyWords(const QString &empty)
{
    words.empty = empty;
    showRows();
}

void MarkedRowsView::showRows()
{
    std::vector<CheckList::Line> lines;
    lines.reserve(rows.rows().size());
    for (int row = 0; row < static_cast<int>(rows.rows().size()); ++row) {
        const MarkedRows::Row &shown = rows.rows()[static_cast<std::size_t>(row)];
        lines.push_back({.text = shown.text,
                         .isHeading = shown.isHeading(),
                         .detail = shown.detail,
                         .isFixed = rows.isFixed(row)});
    }
    const bool isEmpty = lines.empty();
    table->setLines(std::move(lines));
    showMarks();
    table->setVisible(!isEmpty);
    labelEmpty->setVisible(isEmpty);
    labelEmpty->setText(fieldSearch->text().isEmpty() ? words.empty : localized(u"Nothing matches."_s));
}

void MarkedRowsView::showMarks()
{
    table->setMarked([this](int row) { return rows.isMarked(row); });
}

void MarkedRowsView::tellCount()
{
    const auto found = std::ranges::count(rows.rows(), false, &MarkedRows::Row::isHeading);
    const QString sentence = localizedCount(u"%1 results"_s, found);
    Accessibility::announce(*table, found == 0 ? labelEmpty->text() : sentence);
}

void MarkedRowsView::toggle(int row)
{
    rows.toggle(row);
    table->setMarked(row, rows.isMarked(row));
    Q_EMIT changed();
}

/// Selecting all marks what is shown, but in a field that has a text of its own to select.
bool MarkedRowsView::eventFilter(QObject *watched, QEvent *event)
{
    const bool isOfText = watched == fieldSearch && !fieldSearch->text().isEmpty();
    if (event->type() != QEvent::KeyPress || isOfText ||
        !static_cast<QKeyEvent *>(event)->matches(QKeySequence::SelectAll))
        return QWidget::eventFilter(watched, event);
    rows.markShown(true);
    showMarks();
    Q_EMIT changed();
    return true;
}

/// From the field the keys go on to what it has found.
void MarkedRowsView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Down && fieldSearch->hasFocus())
        table->setFocus();
    else
        QWidget::keyPressEvent(event);
}
