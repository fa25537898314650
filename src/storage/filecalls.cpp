#include "filecalls.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace quillet {

int FileCalls::open(const QByteArray &path, int flags, mode_t mode)
{
    return ::open(path.constData(), flags, mode);
}

ssize_t FileCalls::pread(int fd, char *buffer, size_t size, off_t offset)
{
    return ::pread(fd, buffer, size, offset);
}

ssize_t FileCalls::pwrite(int fd, const char *data, size_t size, off_t offset)
{
    return ::pwrite(fd, data, size, offset);
}

int FileCalls::fdatasync(int fd)
{
    return ::fdatasync(fd);
}

int FileCalls::fsync(int fd)
{
    return ::fsync(fd);
}

int FileCalls::ftruncate(int fd, off_t length)
{
    return ::ftruncate(fd, length);
}

int FileCalls::fstat(int fd, struct stat *info)
{
    return ::fstat(fd, info);
}

int FileCalls::fchmod(int fd, mode_t mode)
{
    return ::fchmod(fd, mode);
}

int FileCalls::close(int fd)
{
    return ::close(fd);
}

int FileCalls::rename(const QByteArray &from, const QByteArray &to)
{
    return std::rename(from.constData(), to.constData());
}

int FileCalls::unlink(const QByteArray &path)
{
    return ::unlink(path.constData());
}

FileCalls &FileCalls::system()
{
    static FileCalls calls;
    return calls;
}

} // namespace quillet
