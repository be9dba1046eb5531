#pragma once

#include <QObject>

class QSocketNotifier;

/// SIGTERM and SIGINT as a signal of Qt, delivered on the main loop.
class QuitSignals : public QObject
{
    Q_OBJECT
public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

Q_SIGNALS:
    void received();

private:
    void drain();

    QSocketNotifier *notifier = nullptr;
};
