#include "filters/MultiPickField.h"

#include "filters/MVPopUp.h"
#include "widgets/Icons.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

static QString iconOf(FilterRow::Editor editor)
{
    if (editor == FilterRow::Editor::ContactCategories)
        return u"categories"_s;
    return editor == FilterRow::Editor::Contacts ? u"people"_s : u"company"_s;
}

MultiPickField::MultiPickField(ListFilter &listFilter, const FilterRow &row, QWidget *parent)
    : PickerField(iconOf(row.editor), parent)
    , filter(listFilter)
    , key(row.key)
    , picked(row.editor)
{
    setObjectName(u"popUp"_s + key);
    setClearable(false);
    connect(this, &PickerField::pressed, this, &MultiPickField::openBubble);
    showTitle();
}

void MultiPickField::showTitle()
{
    setValue(filter.selection(key).title(), {});
}

/// The arrow of the pop-ups that it stands among.
void MultiPickField::paintEvent(QPaintEvent *event)
{
    constexpr int arrowSize = 16;
    constexpr int arrowRoom = 28;
    PickerField::paintEvent(event);
    QPainter painter(this);
    const QRect atEnd(width() - arrowRoom, 0, arrowRoom, height());
    Icons::paint(painter, QStyle::visualRect(layoutDirection(), rect(), atEnd), u"chevron-down"_s,
                 Theme::secondaryText, arrowSize);
}

void MultiPickField::openBubble()
{
    MVPopUp *const bubble = MVPopUp::of(picked, filter.selection(key), this);
    bubble->setAttribute(Qt::WA_DeleteOnClose);
    connect(bubble, &MVPopUp::toPopUp, this, [this](const FilterSelection &selected) {
        filter.toPopUp(key, selected);
        showTitle();
    });
    bubble->showBeside(*this);
}
