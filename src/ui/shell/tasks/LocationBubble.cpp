#include "shell/tasks/LocationBubble.h"

#include "foundation/Localization.h"
#include "records/RecordRemoval.h"
#include "records/ShellAlerts.h"
#include "shell/tasks/LocationMap.h"
#include "widgets/BubbleHeader.h"
#include "widgets/CheckList.h"
#include "widgets/Theme.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>
#include <QStackedLayout>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

constexpr QSize bubbleSize(350, 250);
constexpr int bubbleMargin = 12;

LocationBubble::LocationBubble(const LocationPtr &current, QWidget *parent)
    : Popover(parent)
    , choice(current)
    , header(new BubbleHeader(localized(u"Location"_s)))
    , table(new CheckList)
{
    setObjectName(u"LocationBubble"_s);
    setAccessibleName(localized(u"Location"_s));
    setFixedSize(bubbleSize);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(bubbleMargin, bubbleMargin, bubbleMargin, bubbleMargin);
    column->setSpacing(Theme::unit);
    column->addWidget(header);
    pages = new QStackedLayout;
    // A page that is added while the layout belongs to nobody would be a window for a moment.
    column->addLayout(pages, 1);
    pages->addWidget(table);
    table->setAccessibleName(localized(u"Location"_s));
    connect(table, &CheckList::linePressed, this, &LocationBubble::press);
    connect(table, &CheckList::deletePressed, this, &LocationBubble::removeRow);
    connect(header, &BubbleHeader::doneClicked, this, &LocationBubble::clickDone);
    connect(header, &BubbleHeader::cancelClicked, this,
            [this] { choice.isAdding() ? askToLeaveMap(false) : void(close()); });
    reload();
    table->setFocus();
}

void LocationBubble::reload()
{
    std::vector<CheckList::Line> lines = {{localized(u"Add New Location"_s), u"add"_s}};
    for (const LocationPtr &location : choice.locations())
        lines.push_back({location->title(), u"location"_s});
    table->setLines(lines);
    table->setMarked(choice.selectedRow(), true);
    if (choice.selectedRow() > 0)
        table->setCurrentIndex(table->model()->index(choice.selectedRow(), 0));
}

void LocationBubble::press(int row)
{
    wasPressed = true;
    table->setMarked(choice.selectedRow(), false);
    choice.press(row);
    table->setMarked(choice.selectedRow(), true);
    if (choice.isAdding())
        loadMap();
}

/// The question cannot be answered below an open bubble.
void LocationBubble::removeRow(int row)
{
    const LocationPtr location = choice.locationAt(row);
    if (!location)
        return;
    hide();
    if (RecordRemoval::isWanted({location})) {
        const LocationPtr gone = choice.remove(row);
        reload();
        Q_EMIT removed(gone);
    }
    show();
    table->setFocus();
}

void LocationBubble::loadMap()
{
    if (!map) {
        map = new LocationMap;
        pages->addWidget(map);
        setTabOrder(header->buttonDone(), map);
    }
    map->begin(choice.lastWithPosition());
    header->setTitle(localized(u"Add New Location"_s));
    header->setCancelText(localized(u"Back"_s));
    pages->setCurrentWidget(map);
    map->focusTitle();
}

bool LocationBubble::isTyped() const
{
    return choice.isAdding() && map->isTyped();
}

/// \param closes whether the bubble is left with the page. The question cannot be answered below it.
void LocationBubble::askToLeaveMap(bool closes)
{
    using Answer = ShellAlerts::DontSaveAnswer;
    auto answer = Answer::DontSave;
    if (isTyped()) {
        const QPointer<LocationBubble> self = this;
        hide();
        answer = ShellAlerts::alertDontSave();
        if (!self)
            return;
        show();
    }
    if (answer == Answer::Save)
        return clickDone();
    if (answer == Answer::Cancel)
        return map->focusTitle();
    leaveMap();
    if (closes)
        close();
}

void LocationBubble::leaveMap()
{
    choice.stopAdding();
    wasPressed = false;
    header->setTitle(localized(u"Location"_s));
    header->setCancelText(localized(u"Cancel"_s));
    pages->setCurrentWidget(table);
    table->setFocus();
}

void LocationBubble::clickDone()
{
    if (!choice.isAdding())
        return finish(choice.chosen());
    const auto typed = map->locationTemp();
    if (!typed)
        return;
    choice.locationTemp = *typed;
    if (const auto made = choice.made())
        finish(*made);
    else
        map->focusTitle();
}

/// Return takes the line that the keys are on, of which the first leads to the map, unless one was pressed
/// before.
void LocationBubble::takeLine(int row)
{
    if (!wasPressed && row != choice.selectedRow())
        press(row);
    if (!choice.isAdding())
        clickDone();
}

void LocationBubble::finish(const LocationPtr &location)
{
    choice.stopAdding();
    close();
    Q_EMIT chosen(location);
}

/// A press beside it closes it as well.
void LocationBubble::closeEvent(QCloseEvent *event)
{
    if (!isTyped())
        return Popover::closeEvent(event);
    event->ignore();
    QTimer::singleShot(0, this, [this] { askToLeaveMap(true); });
}

void LocationBubble::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (event->key() == Qt::Key_Escape && choice.isAdding())
        askToLeaveMap(false);
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        button ? button->click() : table->hasFocus() ? takeLine(table->currentIndex().row()) : clickDone();
    else
        Popover::keyPressEvent(event);
}
