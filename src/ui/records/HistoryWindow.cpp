#include "records/HistoryWindow.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "objectstore/StoreChanges.h"
#include "store/state/NotificationNames.h"
#include "widgets/CheckList.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"
#include "widgets/WindowPlace.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr QSize firstSizeOfHistory(560, 560);

HistoryWindow::HistoryWindow(const ObjectPtr &record, QWidget *parent)
    : QWidget(parent, Qt::Dialog)
    , history(record)
    , table(new CheckList)
    , labelEmpty(makeTextLabel(localized(u"Nothing was changed since the history began."_s),
                               Theme::FontRole::Body, Theme::secondaryText))
    , buttonRestore(new QPushButton(localized(u"Restore"_s)))
{
    setObjectName(u"HistoryWindow"_s);
    setWindowTitle(localized(u"History of %1"_s).arg(history.title()));
    setAttribute(Qt::WA_DeleteOnClose);
    // The user does nothing else to the record meanwhile.
    setWindowModality(Qt::WindowModal);
    table->setObjectName(u"tableHistory"_s);
    table->setAccessibleName(windowTitle());
    table->setAccessibleDescription(localized(
        u"What was changed, the latest first. A line that can be marked has a value that can be put "
        u"back."_s));
    labelEmpty->setObjectName(u"labelEmpty"_s);
    labelEmpty->setAlignment(Qt::AlignCenter);
    labelEmpty->setWordWrap(true);
    buttonRestore->setObjectName(u"buttonRestore"_s);
    buttonRestore->setAccessibleDescription(localized(u"Puts the former value back"_s));
    buttonRestore->setToolTip(localized(u"Puts the former value back"_s));
    auto *buttonClose = new QPushButton(localized(u"Close"_s));
    buttonClose->setObjectName(u"buttonClose"_s);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(buttonClose);
    buttons->addWidget(buttonRestore);
    auto *column = new QVBoxLayout(this);
    constexpr int margin = 2 * Theme::unit;
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(Theme::unit);
    column->addWidget(table, 1);
    column->addWidget(labelEmpty, 1);
    column->addLayout(buttons);
    connect(table, &CheckList::linePressed, this, &HistoryWindow::mark);
    connect(buttonRestore, &QPushButton::clicked, this, &HistoryWindow::restore);
    connect(buttonClose, &QPushButton::clicked, this, &QWidget::close);
    soon.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, [this] {
        history.reload();
        showHistory();
    });
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(
        center.addObserver(notifications::contextDidSave, [this](const StoreChanges &changes) {
            if (history.isConcernedBy(changes))
                soon.start(0);
        }));
    resize(firstSizeOfHistory);
    showHistory();
    table->setFocus();
}

void HistoryWindow::showWindow()
{
    placeOverParent(*this);
    show();
    raise();
    activateWindow();
}

static QString orNothing(const QString &words)
{
    return words.isEmpty() ? localized(u"nothing"_s) : words;
}

void HistoryWindow::showHistory()
{
    using Style = DateFormatter::Style;
    std::vector<CheckList::Line> lines;
    places.clear();
    const auto &entries = history.entries();
    for (std::size_t number = 0; number < entries.size(); ++number) {
        const RecordHistory::Entry &entry = entries[number];
        const QString when =
            DateFormatter::string(entry.when, Style::Medium, Style::Short, DateFormatter::Language::OfWords);
        lines.push_back({.text = when + u" · "_s + entry.who, .isHeading = true});
        places.emplace_back();
        if (!entry.what.isEmpty()) {
            lines.push_back({.text = entry.what, .isFixed = true});
            places.emplace_back();
        }
        for (std::size_t line = 0; line < entry.lines.size(); ++line) {
            const RecordHistory::Line &changed = entry.lines[line];
            lines.push_back(
                {.text = localized(u"%1: %2 → %3"_s)
                             .arg(changed.label, orNothing(changed.before), orNothing(changed.after)),
                 .isFixed = !changed.canRestore});
            places.push_back(changed.canRestore ? std::optional(Place{number, line}) : std::nullopt);
        }
    }
    const bool isEmpty = lines.empty();
    table->setLines(std::move(lines));
    table->setVisible(!isEmpty);
    labelEmpty->setVisible(isEmpty);
    mark(-1);
}

/// One at a time.
void HistoryWindow::mark(int row)
{
    const bool isPlace =
        row >= 0 && row < static_cast<int>(places.size()) && places[static_cast<size_t>(row)];
    marked = isPlace && row != marked ? row : -1;
    table->setMarked([this](int line) { return line == marked; });
    buttonRestore->setEnabled(marked >= 0);
}

void HistoryWindow::restore()
{
    if (marked < 0)
        return;
    const Place place = *places[static_cast<size_t>(marked)];
    history.restore(place.entry, place.line);
    showHistory();
}

void HistoryWindow::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        button ? button->click() : marked < 0 ? mark(table->currentIndex().row()) : restore();
    else
        QWidget::keyPressEvent(event);
}
