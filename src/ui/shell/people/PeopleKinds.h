#pragma once

#include <memory>

class EntityContactGroup;
class TabsViewController;
struct RecordKind;

/// People and companies: whom one works and lives with, how they are reached, and what they are to do.
namespace PeopleKinds {

RecordKind contacts();
RecordKind companies();
/// The screen of a group or list of contacts.
TabsViewController *screenOfGroup(const RecordKind &contacts,
                                  const std::shared_ptr<EntityContactGroup> &group);

} // namespace PeopleKinds
