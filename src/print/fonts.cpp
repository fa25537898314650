#include "fonts.h"

#include <QFont>
#include <QString>

namespace quillet {

void installFontSubstitutions()
{
    QFont::insertSubstitution(QStringLiteral("Arial"), QStringLiteral("Liberation Sans"));
    QFont::insertSubstitution(QStringLiteral("MS Sans Serif"), QStringLiteral("Liberation Sans"));
    QFont::insertSubstitution(QStringLiteral("MS Serif"), QStringLiteral("Liberation Serif"));
    QFont::insertSubstitution(QStringLiteral("Courier"), QStringLiteral("Liberation Mono"));
}

} // namespace quillet
