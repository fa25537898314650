#include "readonlylistfile.h"

#include "scenariofile.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace quillet::report {

Status ReadOnlyListFile::load(const QString &path)
{
    const QFileInfo info(path);
    m_fileName = info.fileName();
    m_records.clear();

    // Checked first: a failed open of a missing file must not be the
    // first sign of it, and nothing here may ever create one.
    if (!info.exists()) {
        return Status::failure(QStringLiteral("%1 not found in %2")
                                   .arg(m_fileName, QDir::toNativeSeparators(info.absolutePath())));
    }
    if (!info.isFile()) {
        return Status::failure(QStringLiteral("%1 is not a file")
                                   .arg(QDir::toNativeSeparators(info.absoluteFilePath())));
    }

    QFile file(info.absoluteFilePath());
    if (!file.open(QIODevice::ReadOnly)) {
        return Status::failure(
            QStringLiteral("could not open %1: %2")
                .arg(QDir::toNativeSeparators(info.absoluteFilePath()), file.errorString()));
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return Status::failure(
            QStringLiteral("could not read %1: %2")
                .arg(QDir::toNativeSeparators(info.absoluteFilePath()), file.errorString()));
    }

    const qint64 count = ScenarioFile::countForSize(bytes.size());
    if (count > ScenarioFile::MaxRecords) {
        return Status::failure(
            QStringLiteral("%1 holds %2 records, more than the %3 a list can hold")
                .arg(m_fileName)
                .arg(count)
                .arg(ScenarioFile::MaxRecords));
    }
    m_records = decodeListBytes(bytes);
    return {};
}

} // namespace quillet::report
