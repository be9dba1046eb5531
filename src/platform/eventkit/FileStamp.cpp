#include "eventkit/FileStamp.h"

#include <QByteArrayList>
#include <QFile>

#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static constexpr qint64 nanosecondsOfASecond = 1'000'000'000;
static constexpr qint64 longestStep = nanosecondsOfASecond / 20;

static qint64 nanosecondsOf(const timespec &time)
{
    return time.tv_sec * nanosecondsOfASecond + time.tv_nsec;
}

std::optional<FileStamp> FileStamp::of(const QString &path)
{
    struct stat found = {};
    if (::stat(QFile::encodeName(path).constData(), &found) != 0)
        return std::nullopt;
    return FileStamp{nanosecondsOf(found.st_mtim), nanosecondsOf(found.st_ctim), found.st_ino, found.st_size,
                     S_ISDIR(found.st_mode),       S_ISREG(found.st_mode)};
}

QByteArray FileStamp::text() const
{
    const QByteArrayList parts = {QByteArray::number(date), QByteArray::number(recorded),
                                  QByteArray::number(inode), QByteArray::number(size)};
    return parts.join(';');
}

bool FileStamp::isSettled() const
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto present = std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
    return present - recorded > longestStep || present < recorded;
}

bool isWritablePath(const QString &path)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), W_OK, AT_EACCESS) == 0;
}
