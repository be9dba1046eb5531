#include "filters/FilterButton.h"

#include "widgets/Popover.h"

using namespace Qt::Literals::StringLiterals;

FilterButton::FilterButton(QWidget *parent)
    : StripButton(u"filter"_s, u"filtered"_s, parent)
{
    setObjectName(u"buttonFilter"_s);
    connect(this, &QAbstractButton::clicked, this, &FilterButton::togglePopover);
}

void FilterButton::setState(const FilterState &state)
{
    setEnabled(state.isButtonEnabled());
    if (!isEnabled())
        closePopover();
    const FilterState::Label label = state.label();
    setLook(label == FilterState::Label::Inactive   ? Look::Resting
            : label == FilterState::Label::Filtered ? Look::On
                                                    : Look::Off,
            state.labelText());
}

Popover *FilterButton::popover() const
{
    return bubble;
}

bool FilterButton::isOpen() const
{
    return bubble && bubble->isVisible();
}

void FilterButton::togglePopover()
{
    if (bubble)
        return closePopover();
    if (!isEnabled() || !filter)
        return;
    Q_EMIT opening();
    bubble = TaskFilterController::makePopover(*filter, this, action);
    connect(bubble, &Popover::closed, this, [this] { update(); });
    bubble->showBeside(*this);
    update();
}

void FilterButton::closePopover()
{
    if (bubble)
        bubble->close();
}
