#pragma once

#include "shell/Actions.h"

#include <QHash>
#include <QObject>

#include <functional>
#include <vector>

/// The commands that every window knows by their keys: closing, saving, quitting, help. Each window beside
/// the main one gets them when it is first shown; questions, menus and bubbles do not.
class WindowCommands : public QObject
{
    Q_OBJECT
public:
    /// Watches all windows of the program for as long as it lives.
    WindowCommands();

    /// What a command does wherever it is given.
    void bind(ActionId id, std::function<void()> run) { runs.insert(id, std::move(run)); }

    /// The commands that a window knows, for the overlay of its shortcuts.
    static std::vector<ActionId> commandsOf(const QWidget &window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void equip(QWidget &window);
    void run(ActionId id, QWidget &window);

    QHash<ActionId, std::function<void()>> runs;
};
