#include "scenariofile.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace quillet {

namespace {

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

bool syncHandle(int handle)
{
    return handle >= 0 && ::fdatasync(handle) == 0;
}

// A rename is durable only once the directory entry is on disk as well.
void syncDirectory(const QString &directory)
{
    const int handle = ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY);
    if (handle < 0)
        return;
    ::fsync(handle);
    ::close(handle);
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

ScenarioFile::~ScenarioFile() = default;

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
    auto file = std::make_unique<QFile>(m_path);
    if (!file->open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return failure(QStringLiteral("open"), file->errorString());
    const qint64 records = countForSize(file->size());
    if (records > MaxRecords) {
        return Status::failure(
            QStringLiteral("%1 holds %2 records, more than the %3 a list can hold.")
                .arg(displayName())
                .arg(records)
                .arg(MaxRecords));
    }
    m_file = std::move(file);
    m_count = static_cast<int>(records);
    return {};
}

void ScenarioFile::close()
{
    m_file.reset();
    m_count = 0;
}

bool ScenarioFile::isOpen() const
{
    return m_file != nullptr;
}

QString ScenarioFile::displayName() const
{
    return QFileInfo(m_path).fileName();
}

Status ScenarioFile::failure(const QString &what, const QString &why) const
{
    return Status::failure(QStringLiteral("Could not %1 %2: %3").arg(what, displayName(), why));
}

Status ScenarioFile::read(int n, ScenarioRecord &record) const
{
    const QString what = QStringLiteral("read record %1 of").arg(n);
    if (!m_file)
        return failure(what, QStringLiteral("the file is not open."));
    if (n < 1 || n > m_count)
        return failure(what, QStringLiteral("it holds %1 records.").arg(m_count));
    if (!m_file->seek(slotOffset(n)))
        return failure(what, m_file->errorString());
    QByteArray bytes(SlotSize, '\0');
    const qint64 got = m_file->read(bytes.data(), SlotSize);
    if (got < 0)
        return failure(what, m_file->errorString());
    record = decodeRecord(QByteArrayView(bytes.constData(), got));
    return {};
}

Status ScenarioFile::write(int n, const ScenarioRecord &record)
{
    const QString what = QStringLiteral("write record %1 of").arg(n);
    if (!m_file)
        return failure(what, QStringLiteral("the file is not open."));
    if (n < 1 || n > m_count + 1)
        return failure(what, QStringLiteral("it holds %1 records.").arg(m_count));
    if (n > MaxRecords)
        return failure(what, QStringLiteral("a list holds at most %1 records.").arg(MaxRecords));

    const qint64 offset = slotOffset(n);
    // A short last slot is completed with zeros rather than left to chance.
    if (m_file->size() < offset && !m_file->resize(offset))
        return failure(what, m_file->errorString());
    const QByteArray bytes = encodeRecord(record);
    if (!m_file->seek(offset) || m_file->write(bytes) != bytes.size())
        return failure(what, m_file->errorString());
    if (!syncHandle(m_file->handle()))
        return failure(what, systemError());
    if (n == m_count + 1)
        ++m_count;
    return {};
}

Status ScenarioFile::readAllRecords(QByteArray &contents) const
{
    if (!m_file)
        return failure(QStringLiteral("read"), QStringLiteral("the file is not open."));
    if (!m_file->seek(0))
        return failure(QStringLiteral("read"), m_file->errorString());
    const QByteArray bytes = m_file->readAll();
    if (bytes.size() != m_file->size())
        return failure(QStringLiteral("read"), m_file->errorString());

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

bool ScenarioFile::injectedFailure(RewriteStep step) const
{
    return m_failureInjector && m_failureInjector(step);
}

Status ScenarioFile::rewrite(const QByteArray &contents, int newCount)
{
    const QString directory = QFileInfo(m_path).absolutePath();
    const QString scratchPath = QDir(directory).filePath(ScratchName);
    const QString injected = QStringLiteral("simulated failure");

    // Truncating means a scratch file left by a crash is never taken for data.
    QFile scratch(scratchPath);
    auto discardScratch = qScopeGuard([&] {
        scratch.close();
        QFile::remove(scratchPath);
    });
    if (injectedFailure(RewriteStep::OpenScratch))
        return failure(QStringLiteral("create a scratch file for"), injected);
    if (!scratch.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return failure(QStringLiteral("create a scratch file for"), scratch.errorString());
    if (injectedFailure(RewriteStep::WriteScratch))
        return failure(QStringLiteral("write the new version of"), injected);
    if (scratch.write(contents) != contents.size() || !scratch.flush())
        return failure(QStringLiteral("write the new version of"), scratch.errorString());
    if (injectedFailure(RewriteStep::SyncScratch))
        return failure(QStringLiteral("save the new version of"), injected);
    if (!syncHandle(scratch.handle()))
        return failure(QStringLiteral("save the new version of"), systemError());
    scratch.close();

    if (injectedFailure(RewriteStep::CloseList))
        return failure(QStringLiteral("close"), injected);
    m_file.reset();

    // The old file is replaced in one step, never deleted first.
    QString renameError;
    if (injectedFailure(RewriteStep::Rename))
        renameError = injected;
    else if (std::rename(QFile::encodeName(scratchPath).constData(),
                         QFile::encodeName(m_path).constData()) != 0)
        renameError = systemError();
    if (!renameError.isEmpty()) {
        if (Status reopened = openHandle(); !reopened.ok())
            return reopened;
        return failure(QStringLiteral("replace"), renameError);
    }
    discardScratch.dismiss();
    syncDirectory(directory);

    if (injectedFailure(RewriteStep::Reopen)) {
        m_count = newCount;
        return failure(QStringLiteral("reopen"), injected);
    }
    if (Status reopened = openHandle(); !reopened.ok()) {
        m_count = newCount;
        return reopened;
    }
    return {};
}

} // namespace quillet
