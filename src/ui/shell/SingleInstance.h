#pragma once

#include <QObject>
#include <QStringList>

#include <memory>

class QLocalServer;

/// Keeps a second start on the same data from running: the first one is asked to show its window instead.
///
/// A lock file beside the data decides, since that is what two programs must not share. It costs no
/// connection, so the window need not wait for the message bus; the program takes its name there afterwards,
/// for the desktop to activate.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    explicit SingleInstance(QObject *parent = nullptr);
    ~SingleInstance() override;

    /// Whether nobody else runs on this data.
    bool isFirst() const { return first; }
    /// Asks the running one to show its window, and to open files, by their full paths. False if it does not
    /// answer, or goes meanwhile: this one is the first then.
    bool activateOther(const QStringList &files = {});
    /// Takes the program's name on the message bus, if there is one.
    void registerOnBus();

Q_SIGNALS:
    /// Somebody wants to see the window.
    void activated();
    /// Somebody wants files opened, by their full paths.
    void filesWanted(const QStringList &paths);
    /// Somebody wants an action of the desktop file, by its name.
    void actionActivated(const QString &name);

private:
    void tryToBeFirst();
    void listen();

    QString socketPath;
    QLocalServer *server = nullptr;
    /// The open lock file; the system gives up the lock with the process, however that ends.
    int lockFile = -1;
    bool first = false;
};
