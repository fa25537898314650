#include "scenariofile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <cerrno>
#include <cstring>

#include <fcntl.h>

namespace quillet {

namespace {

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// Open errors that still allow reading the file.
bool refusesWritingOnly(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == ETXTBSY;
}

qint64 slotOffset(int n)
{
    return static_cast<qint64>(n - 1) * SlotSize;
}

} // namespace

std::vector<ScenarioRecord> decodeListBytes(QByteArrayView bytes)
{
    const qint64 count = ScenarioFile::countForSize(bytes.size());
    std::vector<ScenarioRecord> records;
    records.reserve(static_cast<std::size_t>(count));
    for (qint64 offset = 0; offset < count * SlotSize; offset += SlotSize)
        records.push_back(
            decodeRecord(bytes.sliced(offset, std::min<qint64>(SlotSize, bytes.size() - offset))));
    return records;
}

ScenarioFile::ScenarioFile() = default;

ScenarioFile::~ScenarioFile()
{
    close();
}

qint64 ScenarioFile::countForSize(qint64 bytes)
{
    // A trailing piece of more than half a record counts as a record; exactly
    // half a record goes to the even count.
    const qint64 whole = bytes / SlotSize;
    const qint64 rest = bytes % SlotSize;
    if (rest * 2 > SlotSize || (rest * 2 == SlotSize && whole % 2 == 1))
        return whole + 1;
    return whole;
}

Status ScenarioFile::OpenDataFile(const QString &path)
{
    close();
    m_path = QFileInfo(path).absoluteFilePath();
    return openHandle();
}

Status ScenarioFile::openHandle()
{
    const QByteArray path = QFile::encodeName(m_path);
    // Non-blocking, so that a pipe in the list's place cannot hang the program.
    int fd = m_calls->open(path, O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
    Access access = Access::ReadWrite;
    QString why;
    if (fd < 0 && refusesWritingOnly(errno)) {
        why = systemError();
        fd = m_calls->open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
        access = Access::ReadOnly;
    }
    if (fd < 0)
        return unavailable(systemError());

    struct stat info = {};
    if (m_calls->fstat(fd, &info) != 0) {
        const QString error = systemError();
        m_calls->close(fd);
        return unavailable(error);
    }
    if (!S_ISREG(info.st_mode)) {
        m_calls->close(fd);
        return unavailable(QStringLiteral("it is not a plain file"));
    }
    const qint64 records = countForSize(info.st_size);
    if (records > MaxRecords) {
        m_calls->close(fd);
        return unavailable(QStringLiteral("it holds %1 records, more than the %2 a list can hold")
                               .arg(records)
                               .arg(MaxRecords));
    }
    m_fd = fd;
    m_count = static_cast<int>(records);
    m_access = access;
    m_why = why;
    if (access == Access::ReadOnly) {
        return Status::failure(QStringLiteral("%1 can be read but not written (%2). Its scenarios "
                                              "are shown, but changes to them cannot be saved.")
                                   .arg(displayName(), why));
    }
    return {};
}

Status ScenarioFile::unavailable(const QString &why)
{
    m_fd = -1;
    m_count = 0;
    m_access = Access::Unavailable;
    m_why = why;
    return Status::failure(QStringLiteral("%1 cannot be used: %2. Quillet shows it as an empty "
                                          "list and leaves the file as it is.")
                               .arg(displayName(), why));
}

void ScenarioFile::close()
{
    if (m_fd >= 0)
        m_calls->close(m_fd);
    m_fd = -1;
    m_count = 0;
    m_access = Access::Closed;
    m_why.clear();
}

QString ScenarioFile::displayName() const
{
    return QFileInfo(m_path).fileName();
}

Status ScenarioFile::failure(const QString &what, const QString &why) const
{
    return Status::failure(QStringLiteral("Could not %1 %2: %3").arg(what, displayName(), why));
}

// A list whose file could not be opened again after a rewrite tries again on
// its next use, so the user never has to restart.
Status ScenarioFile::ensureOpen(const QString &what)
{
    if (m_fd >= 0)
        return {};
    if (m_access == Access::ReadWrite) {
        const int count = m_count;
        (void)openHandle();
        if (m_fd >= 0)
            return {};
        // Still closed: keep the list as it was and try again next time.
        m_access = Access::ReadWrite;
        m_count = count;
        return failure(what, QStringLiteral("the file could not be opened again (%1).").arg(m_why));
    }
    if (m_access == Access::Unavailable)
        return failure(what, QStringLiteral("the file cannot be used (%1).").arg(m_why));
    return failure(what, QStringLiteral("the file is not open."));
}

Status ScenarioFile::ensureWritable(const QString &what)
{
    if (m_access == Access::ReadOnly)
        return failure(what, QStringLiteral("the file can only be read (%1).").arg(m_why));
    if (Status open = ensureOpen(what); !open.ok())
        return open;
    if (m_access != Access::ReadWrite)
        return failure(what, QStringLiteral("the file can only be read (%1).").arg(m_why));
    return {};
}

QByteArray ScenarioFile::readBytes(qint64 offset, qint64 size)
{
    QByteArray bytes(size, '\0');
    qint64 got = 0;
    while (got < size) {
        const ssize_t n = m_calls->pread(m_fd, bytes.data() + got, static_cast<size_t>(size - got),
                                         static_cast<off_t>(offset + got));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return {};
        if (n == 0)
            break;
        got += n;
    }
    bytes.truncate(got);
    return bytes;
}

bool ScenarioFile::writeAll(int fd, const QByteArray &bytes, qint64 offset)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t n =
            m_calls->pwrite(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done),
                            static_cast<off_t>(offset + done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            if (n == 0)
                errno = EIO;
            return false;
        }
        done += n;
    }
    return true;
}

Status ScenarioFile::read(int n, ScenarioRecord &record)
{
    const QString what = QStringLiteral("read record %1 of").arg(n);
    if (Status open = ensureOpen(what); !open.ok())
        return open;
    if (n < 1 || n > m_count)
        return failure(what, QStringLiteral("it holds %1 records.").arg(m_count));
    errno = 0;
    const QByteArray bytes = readBytes(slotOffset(n), SlotSize);
    if (bytes.isEmpty() && errno != 0)
        return failure(what, systemError());
    record = decodeRecord(bytes);
    return {};
}

Status ScenarioFile::write(int n, const ScenarioRecord &record)
{
    const QString what = QStringLiteral("write record %1 of").arg(n);
    if (Status writable = ensureWritable(what); !writable.ok())
        return writable;
    if (n < 1 || n > m_count + 1)
        return failure(what, QStringLiteral("it holds %1 records.").arg(m_count));
    if (n > MaxRecords)
        return failure(what, QStringLiteral("a list holds at most %1 records.").arg(MaxRecords));

    struct stat info = {};
    if (m_calls->fstat(m_fd, &info) != 0)
        return failure(what, systemError());
    const qint64 offset = slotOffset(n);
    const qint64 oldSize = info.st_size;
    // What the write replaces, to put back if it fails half way.
    const QByteArray previous = n <= m_count ? readBytes(offset, SlotSize) : QByteArray();

    // A short last slot is completed with zeros rather than left to chance.
    if (oldSize < offset && m_calls->ftruncate(m_fd, static_cast<off_t>(offset)) != 0)
        return failure(what, systemError());
    if (!writeAll(m_fd, encodeRecord(record), offset) || m_calls->fdatasync(m_fd) != 0) {
        const QString why = systemError();
        restoreSlot(offset, oldSize, previous);
        return failure(what, why);
    }
    if (n == m_count + 1)
        ++m_count;
    return {};
}

void ScenarioFile::restoreSlot(qint64 offset, qint64 oldSize, const QByteArray &previous)
{
    const int savedErrno = errno;
    if (!previous.isEmpty())
        (void)writeAll(m_fd, previous, offset);
    if (oldSize < offset + SlotSize)
        (void)m_calls->ftruncate(m_fd, static_cast<off_t>(oldSize));
    (void)m_calls->fdatasync(m_fd);
    errno = savedErrno;
}

Status ScenarioFile::readAllRecords(QByteArray &contents)
{
    const QString what = QStringLiteral("read");
    if (Status open = ensureOpen(what); !open.ok())
        return open;
    struct stat info = {};
    if (m_calls->fstat(m_fd, &info) != 0)
        return failure(what, systemError());
    errno = 0;
    const QByteArray bytes = readBytes(0, info.st_size);
    if (bytes.size() != info.st_size)
        return failure(what, errno != 0 ? systemError()
                                        : QStringLiteral("the file is shorter than it was."));

    // Every record passes through the codec, exactly as a read and a write
    // of each would: a short last slot is completed, a shorter piece dropped.
    contents.clear();
    contents.reserve(static_cast<qsizetype>(m_count) * SlotSize);
    for (const ScenarioRecord &record : decodeListBytes(bytes))
        contents.append(encodeRecord(record));
    return {};
}

Status ScenarioFile::remove(int n, ScenarioRecord *removed)
{
    const QString what = QStringLiteral("delete record %1 of").arg(n);
    if (Status writable = ensureWritable(what); !writable.ok())
        return writable;
    if (n < 1 || n > m_count)
        return failure(what, QStringLiteral("it holds %1 records.").arg(m_count));
    QByteArray contents;
    if (Status status = readAllRecords(contents); !status.ok())
        return status;
    const qint64 offset = slotOffset(n);
    if (removed)
        *removed = decodeRecord(QByteArrayView(contents).sliced(offset, SlotSize));
    contents.remove(offset, SlotSize);
    return rewrite(contents, m_count - 1);
}

Status ScenarioFile::insert(int n, const ScenarioRecord &record)
{
    const QString what = QStringLiteral("insert record %1 into").arg(n);
    if (Status writable = ensureWritable(what); !writable.ok())
        return writable;
    if (n < 1 || n > m_count + 1)
        return failure(what, QStringLiteral("it holds %1 records.").arg(m_count));
    if (m_count >= MaxRecords)
        return failure(what, QStringLiteral("a list holds at most %1 records.").arg(MaxRecords));
    QByteArray contents;
    if (Status status = readAllRecords(contents); !status.ok())
        return status;
    contents.insert(slotOffset(n), encodeRecord(record));
    return rewrite(contents, m_count + 1);
}

// A rename is durable only once the directory entry is on disk as well.
void ScenarioFile::syncDirectory(const QString &directory)
{
    const int fd =
        m_calls->open(QFile::encodeName(directory), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (fd < 0)
        return;
    (void)m_calls->fsync(fd);
    m_calls->close(fd);
}

Status ScenarioFile::rewrite(const QByteArray &contents, int newCount)
{
    // A list that is a symbolic link keeps its link: the file it leads to is
    // replaced, next to itself.
    const QString target = QFileInfo(m_path).canonicalFilePath();
    if (target.isEmpty())
        return failure(QStringLiteral("find the file behind"), QStringLiteral("it is gone."));
    const QString directory = QFileInfo(target).absolutePath();
    const QByteArray scratchPath = QFile::encodeName(QDir(directory).filePath(ScratchName));

    struct stat info = {};
    if (m_calls->fstat(m_fd, &info) != 0)
        return failure(QStringLiteral("read"), systemError());
    const mode_t mode = info.st_mode & 07777;

    // A scratch file left by a crash is never taken for data, and a link in
    // its place is never followed.
    (void)m_calls->unlink(scratchPath);
    int scratch = m_calls->open(scratchPath, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (scratch < 0)
        return failure(QStringLiteral("create a scratch file for"), systemError());
    auto discardScratch = qScopeGuard([&] {
        const int savedErrno = errno;
        if (scratch >= 0)
            m_calls->close(scratch);
        (void)m_calls->unlink(scratchPath);
        errno = savedErrno;
    });
    // The new version keeps the permissions of the old, whatever the umask.
    if (m_calls->fchmod(scratch, mode) != 0)
        return failure(QStringLiteral("set the permissions of the new version of"), systemError());
    if (!writeAll(scratch, contents, 0))
        return failure(QStringLiteral("write the new version of"), systemError());
    if (m_calls->fdatasync(scratch) != 0)
        return failure(QStringLiteral("save the new version of"), systemError());
    const int written = scratch;
    scratch = -1;
    if (m_calls->close(written) != 0)
        return failure(QStringLiteral("save the new version of"), systemError());

    // The old file is replaced in one step, never deleted or truncated first;
    // until then it stays open and untouched.
    if (m_calls->rename(scratchPath, QFile::encodeName(target)) != 0)
        return failure(QStringLiteral("replace"), systemError());
    discardScratch.dismiss();
    syncDirectory(directory);

    // The old handle still reads the replaced file.
    m_calls->close(m_fd);
    m_fd = -1;
    m_count = newCount;
    Status reopened = openHandle();
    if (m_fd < 0) {
        // The change is made; the next use of the list opens it again.
        const QString why = m_why;
        m_access = Access::ReadWrite;
        m_count = newCount;
        m_why.clear();
        return Status::failure(QStringLiteral("%1 was saved, but could not be opened again (%2). "
                                              "Quillet tries again at the next change.")
                                   .arg(displayName(), why));
    }
    return reopened;
}

} // namespace quillet
