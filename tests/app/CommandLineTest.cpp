#include "support/TestSupport.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Answer
{
    int code = -1;
    QString output;
    QString error;
    QStringList left;
};

/// Runs the program in an empty home, without a screen or a session.
Answer run(const QStringList &arguments, const QString &platform = u"offscreen"_qs)
{
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        environment.insert(QString::fromLatin1(name), home.path());
    environment.insert(u"QT_QPA_PLATFORM"_qs, platform);
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(MORVANE_PROGRAM), arguments);
    if (!program.waitForFinished(20000))
        program.kill();
    return {program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1,
            QString::fromUtf8(program.readAllStandardOutput()),
            QString::fromUtf8(program.readAllStandardError()),
            QDir(home.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)};
}

TEST(CommandLineTest, AnswersWithoutOpeningTheProgram)
{
    for (const QStringList &asked :
         {QStringList{u"--help"_qs}, {u"-h"_qs}, {u"-style"_qs, u"x"_qs, u"-h"_qs}}) {
        const Answer help = run(asked);
        EXPECT_EQ(help.code, 0);
        EXPECT_TRUE(help.output.startsWith(u"Usage: morvane"_qs)) << qPrintable(help.output);
        EXPECT_TRUE(help.left.isEmpty()) << qPrintable(help.left.join(u' '));
    }
    EXPECT_TRUE(run({u"--version"_qs}).output.startsWith(u"Morvane "_qs));
    for (const QStringList &given :
         {QStringList{u"--helq"_qs}, {u"-style"_qs, u"x"_qs, u"--helq"_qs}, {u"-style=x"_qs, u"--helq"_qs}}) {
        // There is no such platform, as there is no screen at a console.
        const Answer unknown = run(given, u"none"_qs);
        EXPECT_EQ(unknown.code, 2);
        EXPECT_EQ(unknown.error, u"morvane: unknown argument \"--helq\". See \"morvane --help\".\n"_qs);
        EXPECT_TRUE(unknown.left.isEmpty()) << qPrintable(unknown.left.join(u' '));
    }
    EXPECT_EQ(run({u"nowhere.vcf"_qs}, u"none"_qs).error,
              u"morvane: there is no file \"nowhere.vcf\". See \"morvane --help\".\n"_qs);
    const Answer unfinished = run({u"-reverse"_qs, u"-style"_qs}, u"none"_qs);
    EXPECT_EQ(unfinished.code, 2);
    EXPECT_EQ(unfinished.error, u"morvane: \"-style\" needs a value. See \"morvane --help\".\n"_qs);
    EXPECT_FALSE(run({u"-title"_qs, u"-h"_qs}, u"none"_qs).output.contains(u"Usage"_qs)) << "A title";
}

} // namespace
