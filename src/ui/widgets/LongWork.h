#pragma once

#include <QElapsedTimer>

#include <memory>

class QProgressDialog;

/// Work in many equal steps. One that lasts shows how far it is and lets the user stop it between two steps.
class LongWork
{
public:
    explicit LongWork(int steps);
    ~LongWork();
    Q_DISABLE_COPY_MOVE(LongWork)

    /// Counts a step. False once the user wants no more of them.
    bool step();

private:
    void show();

    int count;
    int done = 0;
    qint64 lastShown = 0;
    QElapsedTimer timer;
    std::unique_ptr<QProgressDialog> dialog;
};
