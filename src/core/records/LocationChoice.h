#pragma once

#include "store/entities/Entities.h"

#include <optional>
#include <vector>

using LocationPtr = std::shared_ptr<EntityLocation>;

/// A place before it is stored. Degrees north and east are absent where nobody has said where it is.
struct LocationTemp
{
    QString title;
    std::optional<double> latitude;
    std::optional<double> longitude;
};

/// Which place a task has, while the user chooses one or makes a new one.
class LocationChoice
{
public:
    static constexpr double mostLatitude = 90;
    static constexpr double mostLongitude = 180;
    static constexpr int addRow = 0;

    /// Begins with the place that the task has; null for none.
    explicit LocationChoice(const LocationPtr &current);

    /// The places by title. Row 0 of the table stands above them, for a new one.
    const std::vector<LocationPtr> &locations() const { return all; }
    LocationPtr locationAt(int row) const;
    /// The last place of which it is known where it is; null without one.
    LocationPtr lastWithPosition() const;
    /// The chosen row, or -1.
    int selectedRow() const { return selected; }

    /// A press on a row: chooses it, or takes the choice back. On row 0 a new place is begun.
    void press(int row);
    bool isAdding() const { return adding; }
    /// Back to the table.
    void stopAdding() { adding = false; }
    LocationTemp locationTemp;

    /// What is handed over from the table: the chosen place, or null.
    LocationPtr chosen() const { return locationAt(selected); }
    /// What is handed over from the map: the new place, stored. A place of the same title is taken as it is.
    /// Absent without a title.
    std::optional<LocationPtr> made() const;

    /// Deletes the place of a row, and saves; the place that is gone is the answer. Null for row 0.
    LocationPtr remove(int row);

    /// Degrees as the user types them, with a point or a comma. Absent for anything that is no number between
    /// -limit and limit.
    static std::optional<double> degrees(const QString &text, double limit);
    static QString degreesText(double degrees);

private:
    void load();

    std::vector<LocationPtr> all;
    int selected = -1;
    bool adding = false;
};
