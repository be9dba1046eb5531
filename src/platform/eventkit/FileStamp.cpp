#include "eventkit/FileStamp.h"

#include <QFile>

#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static constexpr qint64 nanosecondsOfASecond = 1'000'000'000;
static constexpr qint64 longestStep = nanosecondsOfASecond / 20;

std::optional<FileStamp> FileStamp::of(const QString &path)
{
    struct stat found = {};
    if (::stat(QFile::encodeName(path).constData(), &found) != 0)
        return std::nullopt;
    return FileStamp{found.st_mtim.tv_sec * nanosecondsOfASecond + found.st_mtim.tv_nsec, found.st_ino,
                     found.st_size, S_ISDIR(found.st_mode)};
}

QByteArray FileStamp::text() const
{
    return QByteArray::number(nanoseconds) + ';' + QByteArray::number(inode) + ';' + QByteArray::number(size);
}

bool FileStamp::isSettled() const
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto present = std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
    return present - nanoseconds > longestStep || present < nanoseconds;
}

bool isWritablePath(const QString &path)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), W_OK, AT_EACCESS) == 0;
}
