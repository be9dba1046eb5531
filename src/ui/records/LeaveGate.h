#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <vector>

/// A pane or a window in which something can be typed that is not saved yet.
class EditedPlace
{
public:
    virtual ~EditedPlace() = default;

    /// Whether something was typed that would be lost.
    virtual bool hasChanges() { return false; }
    /// Saves what was typed. False if that was refused; whoever refused it has said why.
    virtual bool saveEdit() { return true; }
    /// Gives up what was typed.
    virtual void dropEdit() {}
};

/// The one gate that every way out of what is edited leads through.
class LeaveGate
{
public:
    /// `place` is a widget; `bringUp` lets the user see it.
    template <typename Place>
    void add(Place &place, std::function<void()> bringUp)
    {
        places.push_back({&place, &place, std::move(bringUp)});
    }

    /// Asks about each place with changes, once. Only when nothing stands against leaving, that which the
    /// user does not want to save is given up. False if the user wants to stay, or a save was refused.
    bool mayLeave();

private:
    struct Asked
    {
        QPointer<QWidget> widget;
        EditedPlace *place;
        std::function<void()> bringUp;
    };
    std::vector<Asked> places;
};
