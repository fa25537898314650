#pragma once

#include "filecalls.h"
#include "scenariorecord.h"
#include "status.h"

#include <QString>

#include <vector>

namespace quillet {

// The records of a list file's bytes, counted as a list file counts them: a
// short last slot reads as far as its bytes go, the rest as zeros.
std::vector<ScenarioRecord> decodeListBytes(QByteArrayView bytes);

// One list file: a sequence of 148-byte slots, record n at (n - 1) * 148.
// Single records are written in place and synced at once; removing or
// inserting a record rewrites the whole list through a scratch file that
// replaces the list file by an atomic rename, so a failure at any step, or a
// crash, leaves either the old file or the new one, complete. The file stays
// open and usable after any failure.
class ScenarioFile final
{
public:
    static constexpr int MaxRecords = 32767;
    static inline const QString ScratchName = QStringLiteral("tmpil.dat");

    // How far the list can be used. A file that can be read but not written
    // shows its records and refuses every change; one that cannot be read at
    // all, or holds more records than a list can, is an empty list that is
    // never written.
    enum class Access { Closed, ReadWrite, ReadOnly, Unavailable };

    ScenarioFile();
    ~ScenarioFile();
    Q_DISABLE_COPY_MOVE(ScenarioFile)

    // Opens (creating it empty when missing) and counts the records. A
    // failure explains why the list is read-only or unavailable; the file is
    // then open as far as it can be.
    Status OpenDataFile(const QString &path);
    void close();
    bool isOpen() const { return m_fd >= 0; }
    Access access() const { return m_access; }
    bool isWritable() const { return m_access == Access::ReadWrite; }

    // The file's name as the user knows it, for messages.
    QString displayName() const;
    QString path() const { return m_path; }

    // NumRecs: the file length in slots, a half slot rounding to even.
    int count() const { return m_count; }
    static qint64 countForSize(qint64 bytes);

    // Reads record n, 1 <= n <= count().
    Status read(int n, ScenarioRecord &record);
    // Writes record n, 1 <= n <= count() + 1; count() + 1 appends.
    Status write(int n, const ScenarioRecord &record);
    // Removes record n; the records after it move up one place.
    Status remove(int n, ScenarioRecord *removed = nullptr);
    // Inserts a record as number n, 1 <= n <= count() + 1; later ones move down.
    Status insert(int n, const ScenarioRecord &record);

    // The system calls the file makes: the real ones unless a test sets its own.
    void setCalls(FileCalls *calls) { m_calls = calls ? calls : &FileCalls::system(); }

private:
    Status openHandle();
    Status unavailable(const QString &why);
    Status ensureOpen(const QString &what);
    Status ensureWritable(const QString &what);
    Status readAllRecords(QByteArray &contents);
    Status rewrite(const QByteArray &contents, int newCount);
    bool writeAll(int fd, const QByteArray &bytes, qint64 offset);
    QByteArray readBytes(qint64 offset, qint64 size);
    void restoreSlot(qint64 offset, qint64 oldSize, const QByteArray &previous);
    void syncDirectory(const QString &directory);
    Status failure(const QString &what, const QString &why) const;

    QString m_path;
    int m_fd = -1;
    int m_count = 0;
    Access m_access = Access::Closed;
    QString m_why; // why the list is read-only or unavailable
    FileCalls *m_calls = &FileCalls::system();
};

} // namespace quillet
