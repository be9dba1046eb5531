#include "shell/tasks/LocationPopup.h"

#include "foundation/Localization.h"
#include "shell/tasks/LocationBubble.h"

using namespace Qt::Literals::StringLiterals;

LocationPopup::LocationPopup(QWidget *parent)
    : PickerField(u"location"_s, parent)
{
    setObjectName(u"LocationPopup"_s);
    setLocation(nullptr);
    connect(this, &PickerField::pressed, this, &LocationPopup::open);
    connect(this, &PickerField::cleared, this, [this] { Q_EMIT labelLocationClickButtonDone(nullptr); });
}

void LocationPopup::setLocation(const LocationPtr &newLocation)
{
    location = newLocation;
    setValue(location ? location->title() : QString(), localized(u"None"_s));
}

void LocationPopup::open()
{
    if (bubble)
        return;
    bubble = new LocationBubble(location, this);
    bubble->setAttribute(Qt::WA_DeleteOnClose);
    connect(bubble, &LocationBubble::chosen, this, &LocationPopup::labelLocationClickButtonDone);
    connect(bubble, &LocationBubble::removed, this, [this](const LocationPtr &gone) {
        if (gone == location)
            Q_EMIT labelLocationClickButtonDone(nullptr);
    });
    connect(bubble, &Popover::closed, this, qOverload<>(&QWidget::setFocus));
    bubble->showBeside(*this);
}
