#pragma once

#include <QString>
#include <QTimer>

#include <set>

/// A line that was begun.
struct CaptureDraft
{
    QString text;
    /// Places at which nothing is to be understood.
    std::set<int> literal = {};

    bool operator==(const CaptureDraft &) const = default;
};

/// Keeps the line that is typed above a list in a file, one for all lists of a store, until the line is
/// stored or emptied. Whatever ends the program in between, the line is there again.
///
/// Main thread only.
class CaptureDraftKeeper
{
public:
    /// For the store in use. \param list the key of the list.
    explicit CaptureDraftKeeper(QString list);
    /// Writes what is still to be written.
    ~CaptureDraftKeeper();
    Q_DISABLE_COPY_MOVE(CaptureDraftKeeper)

    /// What was typed above the list and not stored; empty if nothing was.
    CaptureDraft kept() const;
    /// The file follows soon, and at once when nothing is left to keep.
    void keep(const CaptureDraft &draft);
    /// Writes what all keepers have still to write.
    static void finishAll();

private:
    void write();

    QString list;
    QString path;
    CaptureDraft draft;
    QTimer pause;
};
