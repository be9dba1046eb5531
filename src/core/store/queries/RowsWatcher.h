#pragma once

/// Hears of each step by which the rows of a list change, right before and right after it.
class RowsWatcher
{
public:
    virtual ~RowsWatcher() = default;
    virtual void willInsert(int first, int last) = 0;
    virtual void didInsert() = 0;
    virtual void willRemove(int first, int last) = 0;
    virtual void didRemove() = 0;
    /// A row goes to the place above another one, as both are numbered before it goes.
    virtual void willMove(int row, int above) = 0;
    virtual void didMove() = 0;
    /// All rows become others.
    virtual void willReset() = 0;
    virtual void didReset() = 0;
    /// What a row shows can be different.
    virtual void rowChanged(int row) = 0;
};
