#pragma once

#include "CoreTest.h"

#include "foundation/ApplicationPaths.h"
#include "store/state/CloudUserDefaults.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

/// A program that may be given a folder which devices share.
class CloudTest : public CoreTest
{
protected:
    ~CloudTest() override
    {
        leaveCloud();
        CloudUserDefaults::removeNotifications();
    }

    void joinCloud()
    {
        writeFile(configuration(), QJsonDocument(QJsonObject{{u"cloudFolder"_qs, cloud.path()}}).toJson());
    }
    static void leaveCloud() { QFile::remove(configuration()); }

    static void writeFile(const QString &path, const QByteArray &contents)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
        EXPECT_EQ(file.write(contents), contents.size());
    }
    static QByteArray contentsOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static QString configuration()
    {
        return ApplicationPaths::configFolder() + QStringLiteral("/Morvane/platform.json");
    }

    QTemporaryDir cloud;
};
