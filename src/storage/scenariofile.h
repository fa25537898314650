#pragma once

#include "scenariorecord.h"
#include "status.h"

#include <QFile>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace quillet {

// The records of a list file's bytes, counted as a list file counts them: a
// short last slot reads as far as its bytes go, the rest as zeros.
std::vector<ScenarioRecord> decodeListBytes(QByteArrayView bytes);

// One list file: a sequence of 148-byte slots, record n at (n - 1) * 148.
// Single records are written in place and synced at once; removing or
// inserting a record rewrites the whole list through a scratch file that
// replaces the list file by an atomic rename, so a failure at any step, or a
// crash, leaves either the old file or the new one, complete.
class ScenarioFile final
{
public:
    static constexpr int MaxRecords = 32767;
    static inline const QString ScratchName = QStringLiteral("tmpil.dat");

    // The steps of a rewrite, named so that tests can make each one fail.
    enum class RewriteStep { OpenScratch, WriteScratch, SyncScratch, CloseList, Rename, Reopen };
    using FailureInjector = std::function<bool(RewriteStep)>;

    ScenarioFile();
    ~ScenarioFile();
    Q_DISABLE_COPY_MOVE(ScenarioFile)

    // Opens (creating it empty when missing) and counts the records.
    Status OpenDataFile(const QString &path);
    void close();
    bool isOpen() const;

    // The file's name as the user knows it, for messages.
    QString displayName() const;
    QString path() const { return m_path; }

    // NumRecs: the file length in slots, a half slot rounding to even.
    int count() const { return m_count; }
    static qint64 countForSize(qint64 bytes);

    // Reads record n, 1 <= n <= count().
    Status read(int n, ScenarioRecord &record) const;
    // Writes record n, 1 <= n <= count() + 1; count() + 1 appends.
    Status write(int n, const ScenarioRecord &record);
    // Removes record n; the records after it move up one place.
    Status remove(int n, ScenarioRecord *removed = nullptr);
    // Inserts a record as number n, 1 <= n <= count() + 1; later ones move down.
    Status insert(int n, const ScenarioRecord &record);

    void setFailureInjector(FailureInjector injector) { m_failureInjector = std::move(injector); }

private:
    Status openHandle();
    Status readAllRecords(QByteArray &contents) const;
    Status rewrite(const QByteArray &contents, int newCount);
    bool injectedFailure(RewriteStep step) const;
    Status failure(const QString &what, const QString &why) const;

    QString m_path;
    std::unique_ptr<QFile> m_file;
    int m_count = 0;
    FailureInjector m_failureInjector;
};

} // namespace quillet
