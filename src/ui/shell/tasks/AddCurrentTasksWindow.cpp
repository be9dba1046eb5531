#include "shell/tasks/AddCurrentTasksWindow.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/CheckList.h"
#include "widgets/TextLabel.h"
#include "widgets/WindowPlace.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

constexpr QSize firstSize(420, 520);
constexpr int windowMargin = 2 * Theme::unit;

AddCurrentTasksWindow::AddCurrentTasksWindow(ObjectPtr object, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , tasks(std::move(object))
    , fieldSearch(new QLineEdit)
    , list(new CheckList)
    , labelEmpty(makeTextLabel({}, Theme::FontRole::Body, Theme::secondaryText))
{
    setObjectName(u"AddCurrentTasksWindow"_s);
    setWindowTitle(localized(u"Add tasks"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    // What it offers depends on the record behind it.
    setWindowModality(Qt::WindowModal);
    fieldSearch->setObjectName(u"fieldSearch"_s);
    fieldSearch->setPlaceholderText(localized(u"Search"_s));
    fieldSearch->setAccessibleName(localized(u"Search"_s));
    fieldSearch->setClearButtonEnabled(true);
    list->setObjectName(u"tableTasks"_s);
    list->setAccessibleName(localized(u"Tasks"_s));
    labelEmpty->setObjectName(u"labelEmpty"_s);
    labelEmpty->setAlignment(Qt::AlignCenter);
    auto *buttonCancel = new QPushButton(localized(u"Cancel"_s));
    buttonCancel->setObjectName(u"buttonCancel"_s);
    connect(buttonCancel, &QPushButton::clicked, this, &QWidget::close);
    auto *buttonDone = new QPushButton(localized(u"DoneButton"_s));
    buttonDone->setObjectName(u"buttonDone"_s);
    buttonDone->setDefault(true);
    connect(buttonDone, &QPushButton::clicked, this, &AddCurrentTasksWindow::clickButtonDone);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(buttonCancel);
    buttons->addWidget(buttonDone);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(windowMargin, windowMargin, windowMargin, windowMargin);
    column->setSpacing(Theme::unit);
    column->addWidget(fieldSearch);
    column->addWidget(list, 1);
    column->addWidget(labelEmpty, 1);
    column->addLayout(buttons);
    connect(fieldSearch, &QLineEdit::textChanged, this, [this](const QString &text) {
        tasks.search(text);
        showRows();
        tellCount();
    });
    connect(list, &CheckList::linePressed, this, &AddCurrentTasksWindow::toggle);
    resize(firstSize);
    showRows();
    fieldSearch->setFocus();
}

void AddCurrentTasksWindow::showWindow()
{
    placeOverParent(*this);
    show();
    raise();
    activateWindow();
}

void AddCurrentTasksWindow::showRows()
{
    std::vector<CheckList::Line> lines;
    lines.reserve(tasks.rows().size());
    for (const CurrentTasks::Row &row : tasks.rows())
        lines.push_back({.text = row.text, .isHeading = row.isHeading()});
    const bool isEmpty = lines.empty();
    list->setLines(std::move(lines));
    list->setMarked([this](int row) { return tasks.isMarked(row); });
    list->setVisible(!isEmpty);
    labelEmpty->setVisible(isEmpty);
    labelEmpty->setText(localized(fieldSearch->text().isEmpty() ? u"There is no task that could be added."_s
                                                                : u"Nothing matches."_s));
}

void AddCurrentTasksWindow::tellCount()
{
    const auto found = std::ranges::count(tasks.rows(), false, &CurrentTasks::Row::isHeading);
    const QString words = found == 1 ? localized(u"1 result"_s) : localized(u"%1 results"_s).arg(found);
    Accessibility::announce(*list, found == 0 ? labelEmpty->text() : words);
}

void AddCurrentTasksWindow::toggle(int row)
{
    tasks.toggle(row);
    list->setMarked(row, tasks.isMarked(row));
}

void AddCurrentTasksWindow::clickButtonDone()
{
    if (tasks.save())
        close();
}

void AddCurrentTasksWindow::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        button ? button->click() : clickButtonDone();
    else if (event->key() == Qt::Key_Down && fieldSearch->hasFocus())
        list->setFocus();
    else
        QWidget::keyPressEvent(event);
}
