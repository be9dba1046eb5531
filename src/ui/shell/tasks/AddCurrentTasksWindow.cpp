#include "shell/tasks/AddCurrentTasksWindow.h"

#include "foundation/Localization.h"
#include "records/MarkedRowsView.h"
#include "widgets/CheckList.h"
#include "widgets/Theme.h"
#include "widgets/WindowPlace.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr QSize firstSize(420, 520);
constexpr int windowMargin = 2 * Theme::unit;

AddCurrentTasksWindow::AddCurrentTasksWindow(ObjectPtr object, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , tasks(std::move(object))
    , view(new MarkedRowsView(tasks.list(),
                              {localized(u"Tasks"_s), localized(u"There is no task that could be added."_s)}))
{
    setObjectName(u"AddCurrentTasksWindow"_s);
    setWindowTitle(localized(u"Add tasks"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    // What it offers depends on the record behind it.
    setWindowModality(Qt::WindowModal);
    view->list().setObjectName(u"tableTasks"_s);
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
    column->addWidget(view, 1);
    column->addLayout(buttons);
    resize(firstSize);
    view->setFocus();
}

void AddCurrentTasksWindow::showWindow()
{
    placeOverParent(*this);
    show();
    raise();
    activateWindow();
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
    else
        QWidget::keyPressEvent(event);
}
