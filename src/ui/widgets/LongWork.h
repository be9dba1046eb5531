#pragma once

#include "widgets/BusyCursor.h"

#include <QElapsedTimer>
#include <QString>

#include <memory>
#include <optional>

class ProgressSign;

/// Work in many equal steps. The pointer tells of it; if it lasts, it shows how far it is and, where that is
/// possible, lets the user stop it between two steps.
class LongWork
{
public:
    /// \param sentence says what is done, in the user's language.
    LongWork(std::size_t steps, QString sentence, bool canBeStopped = true);
    ~LongWork();
    Q_DISABLE_COPY_MOVE(LongWork)

    /// Counts a step, the first of which begins the work. False once the user wants no more of them.
    bool step();

private:
    void show();

    int count;
    QString label;
    bool isStoppable;
    int done = 0;
    qint64 lastShown = 0;
    QElapsedTimer timer;
    std::optional<BusyCursor> busy;
    std::unique_ptr<ProgressSign> sign;
};
