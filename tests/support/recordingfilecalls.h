#pragma once

#include "filecalls.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QString>
#include <QStringList>

#include <cerrno>

#include <fcntl.h>

namespace quillet::test {

// The system calls of a list file, written down as "call name" lines (file
// names without their directory; an open says "read-only" or "truncating"
// where it is) and failed on request: a call whose line is in `failing` fails
// with failError, every time it is made.
class RecordingFileCalls final : public FileCalls
{
public:
    QStringList calls;
    QStringList openedPaths;
    QStringList failing;
    int failError = EIO;

    int open(const QByteArray &path, int flags, mode_t mode) override
    {
        const QString name = nameOf(path);
        QString call = QStringLiteral("open ") + name;
        if ((flags & O_ACCMODE) == O_RDONLY)
            call += QStringLiteral(" read-only");
        if (flags & O_TRUNC)
            call += QStringLiteral(" truncating");
        openedPaths << QString::fromLocal8Bit(path);
        if (fails(call))
            return -1;
        const int fd = FileCalls::open(path, flags, mode);
        if (fd >= 0)
            m_names[fd] = name;
        return fd;
    }
    ssize_t pread(int fd, char *buffer, size_t size, off_t offset) override
    {
        if (fails(QStringLiteral("pread ") + nameOfHandle(fd)))
            return -1;
        return FileCalls::pread(fd, buffer, size, offset);
    }
    ssize_t pwrite(int fd, const char *data, size_t size, off_t offset) override
    {
        if (fails(QStringLiteral("pwrite ") + nameOfHandle(fd)))
            return -1;
        return FileCalls::pwrite(fd, data, size, offset);
    }
    int fdatasync(int fd) override
    {
        if (fails(QStringLiteral("fdatasync ") + nameOfHandle(fd)))
            return -1;
        return FileCalls::fdatasync(fd);
    }
    int fsync(int fd) override
    {
        if (fails(QStringLiteral("fsync ") + nameOfHandle(fd)))
            return -1;
        return FileCalls::fsync(fd);
    }
    int ftruncate(int fd, off_t length) override
    {
        if (fails(QStringLiteral("ftruncate ") + nameOfHandle(fd)))
            return -1;
        return FileCalls::ftruncate(fd, length);
    }
    int fstat(int fd, struct stat *info) override
    {
        // Asked often and harmless: not written down.
        return FileCalls::fstat(fd, info);
    }
    int fchmod(int fd, mode_t mode) override
    {
        if (fails(QStringLiteral("fchmod ") + nameOfHandle(fd)))
            return -1;
        return FileCalls::fchmod(fd, mode);
    }
    int close(int fd) override
    {
        const QString name = nameOfHandle(fd);
        m_names.remove(fd);
        if (fails(QStringLiteral("close ") + name)) {
            FileCalls::close(fd);
            errno = failError;
            return -1;
        }
        return FileCalls::close(fd);
    }
    int rename(const QByteArray &from, const QByteArray &to) override
    {
        if (fails(QStringLiteral("rename %1 %2").arg(nameOf(from), nameOf(to))))
            return -1;
        return FileCalls::rename(from, to);
    }
    int unlink(const QByteArray &path) override
    {
        if (fails(QStringLiteral("unlink ") + nameOf(path)))
            return -1;
        return FileCalls::unlink(path);
    }

    // The calls made since the last clear, without the reads of records.
    QStringList changes() const
    {
        QStringList kept;
        for (const QString &call : calls)
            if (!call.startsWith(QStringLiteral("pread ")))
                kept << call;
        return kept;
    }

private:
    // Handles opened before the recorder was set are named by the system.
    QString nameOfHandle(int fd) const
    {
        if (m_names.contains(fd))
            return m_names.value(fd);
        return QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(fd)))
            .fileName();
    }
    static QString nameOf(const QByteArray &path)
    {
        const QString name = QFileInfo(QString::fromLocal8Bit(path)).fileName();
        return name.isEmpty() ? QStringLiteral(".") : name;
    }
    bool fails(const QString &call)
    {
        calls << call;
        if (!failing.contains(call))
            return false;
        errno = failError;
        return true;
    }

    QMap<int, QString> m_names;
};

} // namespace quillet::test
