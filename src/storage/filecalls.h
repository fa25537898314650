#pragma once

#include <QByteArray>

#include <sys/stat.h>
#include <sys/types.h>

namespace quillet {

// The system calls through which a list file is opened, read, written and
// replaced. They are virtual so that tests can record the order of the calls
// or make any one of them fail; each behaves as the call of the same name,
// setting errno on failure.
class FileCalls
{
public:
    FileCalls() = default;
    virtual ~FileCalls() = default;
    Q_DISABLE_COPY_MOVE(FileCalls)

    virtual int open(const QByteArray &path, int flags, mode_t mode);
    virtual ssize_t pread(int fd, char *buffer, size_t size, off_t offset);
    virtual ssize_t pwrite(int fd, const char *data, size_t size, off_t offset);
    virtual int fdatasync(int fd);
    virtual int fsync(int fd);
    virtual int ftruncate(int fd, off_t length);
    virtual int fstat(int fd, struct stat *info);
    virtual int fchmod(int fd, mode_t mode);
    virtual int close(int fd);
    virtual int rename(const QByteArray &from, const QByteArray &to);
    virtual int unlink(const QByteArray &path);

    // The real calls; stateless, shared by every file that has no others.
    static FileCalls &system();
};

} // namespace quillet
