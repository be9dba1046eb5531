#include "records/TaskMerge.h"

#include "records/copies/TaskColumns.h"

namespace {

using taskcolumns::Follows;

class Merge
{
public:
    Merge(MVTask &editedTask, const MVTask &baseTask, const MVTask &presentTask)
        : edited(editedTask)
        , base(baseTask)
        , present(presentTask)
    {}

    /// One group of values: the columns that pass a test.
    template <typename IsOfGroup>
    void together(IsOfGroup isOfGroup)
    {
        bool isUntouched = true;
        bool isPresent = true;
        taskcolumns::forEach([&](const auto &column) {
            if (!isOfGroup(column))
                return;
            isUntouched = isUntouched && isSame(column, base);
            isPresent = isPresent && isSame(column, present);
        });
        if (!isUntouched || isPresent)
            return;
        taskcolumns::forEach([&](const auto &column) {
            if (isOfGroup(column))
                edited.*column.member = present.*column.member;
        });
        isChanged = true;
    }

    bool changed() const { return isChanged; }

private:
    template <typename Column>
    bool isSame(const Column &column, const MVTask &other) const
    {
        return taskcolumns::isSame(edited.*column.member, other.*column.member);
    }

    MVTask &edited;
    const MVTask &base;
    const MVTask &present;
    bool isChanged = false;
};

} // namespace

bool TaskMerge::follow(MVTask &edited, const MVTask &base, const MVTask &present)
{
    Merge merge(edited, base, present);
    for (const Follows group :
         {Follows::WithDates, Follows::WithStatus, Follows::WithDelegate, Follows::WithCalendar})
        merge.together([group](const auto &column) { return column.follows == group; });
    taskcolumns::forEach([&merge](const auto &single) {
        if (single.follows == Follows::Alone)
            merge.together([&single](const auto &column) { return column.name == single.name; });
    });
    return merge.changed();
}
