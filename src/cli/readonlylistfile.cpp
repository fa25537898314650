#include "readonlylistfile.h"

#include "scenariofile.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillet::report {

namespace {

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// stat() of a path, with errno kept for the message.
struct PathStatus
{
    bool exists = false;
    int error = 0;
    struct stat info = {};
};

PathStatus statOf(const QString &path, bool followLinks = true)
{
    PathStatus status;
    const QByteArray encoded = QFile::encodeName(path);
    const int result = followLinks ? ::stat(encoded.constData(), &status.info)
                                   : ::lstat(encoded.constData(), &status.info);
    status.exists = result == 0;
    status.error = result == 0 ? 0 : errno;
    return status;
}

Status checkDirectory(const QString &directory)
{
    const PathStatus status = statOf(directory);
    if (status.exists) {
        if (!S_ISDIR(status.info.st_mode))
            return Status::failure(QStringLiteral("%1 is not a directory").arg(native(directory)));
        return {};
    }
    switch (status.error) {
    case ENOENT:
        return Status::failure(QStringLiteral("directory %1 not found").arg(native(directory)));
    case ELOOP:
        return Status::failure(
            QStringLiteral("directory %1: symbolic link loop").arg(native(directory)));
    case EACCES:
        return Status::failure(
            QStringLiteral("directory %1: permission denied (a directory on the way cannot be "
                           "entered)")
                .arg(native(directory)));
    case ENOTDIR:
        return Status::failure(QStringLiteral("directory %1 not found: a part of the path is not a "
                                              "directory")
                                   .arg(native(directory)));
    default:
        return Status::failure(
            QStringLiteral("directory %1: %2").arg(native(directory), systemError(status.error)));
    }
}

// Why the file cannot be reached, once the directory is known to exist.
Status unreachableFile(const QString &directory, const QString &fileName, int error)
{
    const QString path = QDir(directory).filePath(fileName);
    switch (error) {
    case ENOENT: {
        const PathStatus link = statOf(path, false);
        if (link.exists && S_ISLNK(link.info.st_mode)) {
            return Status::failure(
                QStringLiteral("%1 is a symbolic link to %2, which does not exist")
                    .arg(native(path), native(QFileInfo(path).symLinkTarget())));
        }
        return Status::failure(
            QStringLiteral("%1 not found in %2").arg(fileName, native(directory)));
    }
    case ELOOP:
        return Status::failure(
            QStringLiteral("%1: symbolic link loop (the link leads back to itself)")
                .arg(native(path)));
    case EACCES:
        return Status::failure(
            QStringLiteral("permission denied: directory %1 cannot be entered to read %2")
                .arg(native(directory), fileName));
    default:
        return Status::failure(
            QStringLiteral("could not open %1: %2").arg(native(path), systemError(error)));
    }
}

} // namespace

Status ReadOnlyListFile::load(const QString &directory, const QString &fileName)
{
    m_fileName = fileName;
    m_records.clear();

    // Every check is made on the path as it stands, before anything is
    // opened: nothing here may ever create a file.
    if (Status status = checkDirectory(directory); !status.ok())
        return status;
    const QString path = QDir(directory).filePath(fileName);
    const PathStatus file = statOf(path);
    if (!file.exists)
        return unreachableFile(directory, fileName, file.error);
    if (!S_ISREG(file.info.st_mode))
        return Status::failure(QStringLiteral("%1 is not a file").arg(native(path)));

    // The size decides before any reading: a list holds at most 32,767
    // records, so a larger file is refused without reading a byte.
    const qint64 count = ScenarioFile::countForSize(file.info.st_size);
    if (count > ScenarioFile::MaxRecords) {
        return Status::failure(
            QStringLiteral("%1 holds %2 records, more than the %3 a list can hold")
                .arg(fileName)
                .arg(count)
                .arg(ScenarioFile::MaxRecords));
    }

    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        const int error = errno;
        if (error == EACCES)
            return Status::failure(
                QStringLiteral("permission denied: cannot read %1").arg(native(path)));
        return Status::failure(
            QStringLiteral("could not open %1: %2").arg(native(path), systemError(error)));
    }
    QFile handle;
    if (!handle.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return Status::failure(
            QStringLiteral("could not open %1: %2").arg(native(path), handle.errorString()));
    }
    // Read no more than the counted records hold, even if the file grew in
    // the meantime.
    const qint64 limit = std::min<qint64>(file.info.st_size, count * SlotSize);
    const QByteArray bytes = handle.read(limit);
    if (handle.error() != QFileDevice::NoError) {
        return Status::failure(
            QStringLiteral("could not read %1: %2").arg(native(path), handle.errorString()));
    }
    m_records = decodeListBytes(bytes);
    return {};
}

} // namespace quillet::report
