#include "shell/RestingScreen.h"

#include "foundation/Localization.h"
#include "shell/Screens.h"
#include "widgets/EmptyState.h"

#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

RestingScreen::RestingScreen(const QString &title, const ScreenDescription &description, QWidget *parent)
    : TabsViewController(title, parent)
{
    auto *column = new QVBoxLayout(this);
    column->addWidget(new EmptyState(QString::fromUtf16(description.icon),
                                     localized(QString::fromUtf16(description.sentence))));
    addButton(ToolBarButton::NewTask);
    if (description.item == SidebarItem::Calendar)
        addButton(ToolBarButton::Calendars);
}
