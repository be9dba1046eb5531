#include "StoreGenerator.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 2 || QFile::exists(arguments.at(1))) {
        std::fprintf(stderr, "Usage: generate-store <new file> [tasks, 100000] [seed, 1] [contacts, 0]\n");
        return 2;
    }
    generateStore(arguments.at(1), arguments.value(2, QStringLiteral("100000")).toInt(),
                  arguments.value(3, QStringLiteral("1")).toUInt(), arguments.value(4).toInt());
    return 0;
}
