#pragma once

#include "shell/Actions.h"

#include <QHash>
#include <QObject>

#include <functional>
#include <vector>

/// The commands that every window knows by their keys, such as a new task, closing, quitting, help. Each
/// window beside the main one gets them when it is first shown; questions, menus and bubbles do not.
class WindowCommands : public QObject
{
    Q_OBJECT
public:
    /// Watches all windows of the program for as long as it lives.
    WindowCommands();

    /// What a command does wherever it is given.
    void bind(ActionId id, std::function<void()> run) { runs.insert(id, std::move(run)); }

    /// Those that all windows know, unless one has a use of its own for the keys.
    static std::vector<ActionId> everywhere();
    /// The commands that a window knows, for the overlay of its shortcuts.
    static std::vector<ActionId> commandsOf(const QWidget &window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void equip(QWidget &window);
    void run(ActionId id, QWidget &window);

    QHash<ActionId, std::function<void()>> runs;
};
