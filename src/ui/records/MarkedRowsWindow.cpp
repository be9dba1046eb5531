#include "records/MarkedRowsWindow.h"

#include "foundation/Localization.h"
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

MarkedRowsWindow::MarkedRowsWindow(const QString &title, QWidget *parent)
    : QWidget(parent, Qt::Dialog)
{
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    // What it offers depends on the record behind it.
    setWindowModality(Qt::WindowModal);
    resize(firstSize);
}

void MarkedRowsWindow::setRows(MarkedRows &rows, const MarkedRowsView::Words &words, const QString &tableName)
{
    auto *view = new MarkedRowsView(rows, words);
    view->list().setObjectName(tableName);
    auto *buttonCancel = new QPushButton(localized(u"Cancel"_s));
    buttonCancel->setObjectName(u"buttonCancel"_s);
    connect(buttonCancel, &QPushButton::clicked, this, &QWidget::close);
    auto *buttonDone = new QPushButton(localized(u"DoneButton"_s));
    buttonDone->setObjectName(u"buttonDone"_s);
    buttonDone->setDefault(true);
    connect(buttonDone, &QPushButton::clicked, this, &MarkedRowsWindow::clickButtonDone);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(buttonCancel);
    buttons->addWidget(buttonDone);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(windowMargin, windowMargin, windowMargin, windowMargin);
    column->setSpacing(Theme::unit);
    column->addWidget(view, 1);
    column->addLayout(buttons);
    view->setFocus();
}

void MarkedRowsWindow::showWindow()
{
    placeOverParent(*this);
    show();
    raise();
    activateWindow();
}

void MarkedRowsWindow::clickButtonDone()
{
    if (save())
        close();
}

void MarkedRowsWindow::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        button ? button->click() : clickButtonDone();
    else
        QWidget::keyPressEvent(event);
}
