#include "support/TestSupport.h"

#include "foundation/Alert.h"
#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "foundation/Region.h"

#include <QDir>
#include <QTemporaryDir>

#ifdef MORVANE_TEST_WIDGETS
#include <QApplication>
#include <QWidget>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>

/// What Qt's platform plugins say on a machine without a desktop; it means nothing here.
static bool isHarmless(const QString &message)
{
    static constexpr std::array<QStringView, 4> harmless = {
        u"This plugin does not support", u"QStandardPaths: XDG_RUNTIME_DIR not set",
        u"QStandardPaths: runtime directory", u"propagateSizeHints"};
    return std::any_of(harmless.begin(), harmless.end(),
                       [&](QStringView known) { return message.contains(known); });
}

static void failOnWarnings(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    const bool isFailure = type != QtDebugMsg && type != QtInfoMsg && !isHarmless(message);
    if (isFailure)
        ADD_FAILURE() << "Qt warns: " << qPrintable(message);
    else
        std::fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtFatalMsg)
        std::abort();
}

static void setEnvironment(const QString &home)
{
    qputenv("HOME", QFile::encodeName(home));
    const std::array<std::pair<const char *, const char *>, 5> folders = {{{"XDG_CONFIG_HOME", "/config"},
                                                                           {"XDG_DATA_HOME", "/data"},
                                                                           {"XDG_CACHE_HOME", "/cache"},
                                                                           {"XDG_STATE_HOME", "/state"},
                                                                           {"XDG_RUNTIME_DIR", "/runtime"}}};
    for (const auto &[variable, folder] : folders) {
        const QString path = home + QString::fromLatin1(folder);
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(variable, QFile::encodeName(path));
    }
    qputenv("TZ", "Europe/Berlin");
    qputenv("LC_ALL", "en_US.UTF-8");
    qunsetenv("LANGUAGE");
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

/// Each test finds the process as the first one did, whatever the one before it has set.
class FreshProcess : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo &) override
    {
        Clock::setSource({});
        Log::setSink({});
        Alert::setPresenter(nullptr);
        Region::reload();
    }

#ifdef MORVANE_TEST_WIDGETS
    void OnTestEnd(const testing::TestInfo &) override
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (const QWidget *window : QApplication::topLevelWidgets())
            if (window->isVisible())
                ADD_FAILURE() << "A window is left over: " << qPrintable(window->objectName());
    }
#endif
};

int main(int argc, char *argv[])
{
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir home;
    // A test that starts itself once more, as another process, shares its files with that.
    setEnvironment(qEnvironmentVariable("MORVANE_TEST_HOME", home.path()));
    const TestApplication application(argc, argv);
    qInstallMessageHandler(failOnWarnings);
    std::printf("Seed of generated cases: %u\n", testSeed());

    testing::UnitTest::GetInstance()->listeners().Append(new FreshProcess);
    const int result = RUN_ALL_TESTS();
    UserDefaults::standard().synchronize();
    return result;
}
