#include "records/TabsViewController.h"

#include "records/TaskPlacement.h"
#include "store/queries/DBWorker.h"

using namespace Qt::Literals::StringLiterals;

TabsViewController::TabsViewController(const QString &title, QWidget *parent)
    : QWidget(parent)
    , bar(new ScreenToolBar(title))
{
    setAccessibleName(title);
}

TabsViewController::~TabsViewController()
{
    // The bar stands in the slot of the toolbar, but is a part of the screen.
    delete bar;
}

QString TabsViewController::explanationOf(const TaskPtr &task) const
{
    return TaskPlacement(task).explanation(listType());
}

QRect TabsViewController::placeOf(const TaskPtr &) const
{
    return {rect().topLeft(), QSize(width(), 1)};
}

void TabsViewController::setAvailableTypes(const QList<ToolBarButton::ActionType> &types)
{
    for (auto *button : bar->findChildren<ToolBarButton *>())
        button->setAvailableTypes(types);
}

static QString nameOf(ToolBarButton::ActionType type)
{
    switch (type) {
    case ToolBarButton::Calendars:
        return u"buttonCalendars"_s;
    case ToolBarButton::ImportContacts:
        return u"buttonImport"_s;
    case ToolBarButton::AskAgain:
        return u"buttonAskAgain"_s;
    default:
        return u"buttonAdd"_s;
    }
}

ToolBarButton *TabsViewController::addButton(ToolBarButton::ActionType type)
{
    auto *button = new ToolBarButton(type);
    const bool isCalendars = type == ToolBarButton::Calendars;
    button->setObjectName(nameOf(type));
    if (isCalendars && DBWorker::isSample())
        button->setUnseen();
    connect(button, &ToolBarButton::buttonAdd, this, &TabsViewController::buttonAdd);
    bar->addControl(button);
    return button;
}
