#pragma once

#include "scenariofile.h"
#include "scenariorecord.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <initializer_list>

namespace quillet::test {

// A record told apart from others by its description and amount.
inline ScenarioRecord sampleRecord(int number)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, QStringLiteral("Scenario %1").arg(number));
    record.InitialAmount = 1000.0 * number;
    record.IRate = 0.01 * number;
    record.PerYear = static_cast<qint16>(number);
    return record;
}

inline QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

inline bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

// The bytes of a list file holding the sample records with these numbers.
inline QByteArray listBytes(std::initializer_list<int> numbers)
{
    QByteArray bytes;
    for (const int number : numbers)
        bytes += encodeRecord(sampleRecord(number));
    return bytes;
}

// Makes a fresh temporary directory the current one for the test's lifetime.
class ScratchDirectory
{
public:
    ScratchDirectory() : m_previous(QDir::currentPath())
    {
        if (m_dir.isValid())
            QDir::setCurrent(m_dir.path());
    }
    ~ScratchDirectory() { QDir::setCurrent(m_previous); }
    Q_DISABLE_COPY_MOVE(ScratchDirectory)

    bool isValid() const { return m_dir.isValid(); }
    QString filePath(const QString &name) const { return m_dir.filePath(name); }

private:
    QString m_previous;
    QTemporaryDir m_dir;
};

} // namespace quillet::test
