#include "shell/people/WindowAddContactsGroup.h"

#include "foundation/Localization.h"

using namespace Qt::Literals::StringLiterals;

WindowAddContactsGroup::WindowAddContactsGroup(std::shared_ptr<EntityContactGroup> group, QWidget *parent)
    : MarkedRowsWindow({}, parent)
    , members(std::move(group))
{
    setObjectName(u"WindowAddContactsGroup"_s);
    setWindowTitle(members.title());
    setRows(members.list(), {localized(u"People"_s), localized(u"There are no people yet."_s)},
            u"tableContacts"_s);
}
