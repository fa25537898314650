#pragma once

#include <QString>

#include <utility>

namespace quillet {

// The outcome of a file operation. A failure carries a message for the user
// that names the file and what went wrong.
class [[nodiscard]] Status
{
public:
    Status() = default;

    static Status failure(QString message)
    {
        Status status;
        status.m_ok = false;
        status.m_message = std::move(message);
        return status;
    }

    bool ok() const noexcept { return m_ok; }
    const QString &message() const noexcept { return m_message; }

private:
    bool m_ok = true;
    QString m_message;
};

} // namespace quillet
