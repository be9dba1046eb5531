#include "StoreGenerator.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int rounds = 21;

struct Reading
{
    double milliseconds = 0;
    double residentMegabytes = 0;
    double proportionalMegabytes = 0;
};

/// The megabytes that the kernel gives for a process under a name such as "Pss:".
double memoryOf(qint64 process, const QByteArray &name)
{
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.mid(name.size()).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

/// Starts a program in a home, waits for its first picture and looks at it.
Reading start(const QString &program, const QString &home)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/data"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/config"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
    if (!environment.contains(QStringLiteral("DISPLAY")) &&
        !environment.contains(QStringLiteral("WAYLAND_DISPLAY")))
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    process.start(program, QStringList());
    Reading reading;
    if (!process.waitForReadyRead(10000)) {
        std::fprintf(stderr, "%s shows no window\n", qPrintable(program));
        std::exit(EXIT_FAILURE);
    }
    reading.milliseconds = double(timer.nsecsElapsed()) / 1e6;
    reading.residentMegabytes = memoryOf(process.processId(), "Rss:");
    reading.proportionalMegabytes = memoryOf(process.processId(), "Pss:");
    process.closeWriteChannel();
    process.waitForFinished();
    return reading;
}

Reading median(std::vector<Reading> readings)
{
    const auto middle = [&readings](double Reading::*field) {
        std::nth_element(
            readings.begin(), readings.begin() + std::ptrdiff_t(readings.size() / 2), readings.end(),
            [field](const Reading &one, const Reading &other) { return one.*field < other.*field; });
        return readings[readings.size() / 2].*field;
    };
    Reading result;
    result.milliseconds = middle(&Reading::milliseconds);
    result.residentMegabytes = middle(&Reading::residentMegabytes);
    result.proportionalMegabytes = middle(&Reading::proportionalMegabytes);
    return result;
}

void print(const char *what, const Reading &reading, const Reading &trivial)
{
    std::printf("%-22s %7.1f ms  ratio %4.2f  resident %6.1f MB  proportional %6.1f MB\n", what,
                reading.milliseconds, reading.milliseconds / trivial.milliseconds, reading.residentMegabytes,
                reading.proportionalMegabytes);
}

} // namespace

/// Start to painted window of the program with an empty store and with a full one, against a trivial window,
/// in turn. The argument says how many tasks are full, 100,000 if there is none.
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QString folder = QCoreApplication::applicationDirPath();
    const int tasks = application.arguments().value(1, QStringLiteral("100000")).toInt();
    const QTemporaryDir emptyHome;
    const QTemporaryDir fullHome;
    QDir(fullHome.path()).mkpath(QStringLiteral("data/Morvane"));
    generateStore(fullHome.filePath(QStringLiteral("data/Morvane/Model0.sqlite")), tasks, 1);
    const QString trivial = folder + QStringLiteral("/trivial-window");
    const QString program = folder + QStringLiteral("/program-window");
    std::vector<Reading> trivialReadings, emptyReadings, fullReadings;
    // The first round makes files and fills caches, and does not count.
    for (int round = 0; round <= rounds; ++round) {
        const Reading trivialReading = start(trivial, emptyHome.path());
        const Reading emptyReading = start(program, emptyHome.path());
        const Reading fullReading = start(program, fullHome.path());
        if (round == 0)
            continue;
        trivialReadings.push_back(trivialReading);
        emptyReadings.push_back(emptyReading);
        fullReadings.push_back(fullReading);
    }
    const Reading base = median(trivialReadings);
    print("trivial window", base, base);
    print("program, empty store", median(emptyReadings), base);
    print(("program, " + std::to_string(tasks) + " tasks").c_str(), median(fullReadings), base);
    return 0;
}
