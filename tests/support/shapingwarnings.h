#pragma once

#include <QString>
#include <QtGlobal>

namespace quillet::test {

// Qt warns once for each script that no installed font can shape; tests that
// lay out every locale's texts are not concerned with it.
class ShapingWarningsSilenced
{
public:
    ShapingWarningsSilenced() { s_previous = qInstallMessageHandler(drop); }
    ~ShapingWarningsSilenced() { qInstallMessageHandler(s_previous); }
    ShapingWarningsSilenced(const ShapingWarningsSilenced &) = delete;
    ShapingWarningsSilenced &operator=(const ShapingWarningsSilenced &) = delete;

private:
    static void drop(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (!message.contains(QStringLiteral("OpenType support missing")) && s_previous)
            s_previous(type, context, message);
    }
    static inline QtMessageHandler s_previous = nullptr;
};

} // namespace quillet::test
