#include "OssCore/Values/OssGroupParameterObject.h"

OssGroupParameterObject::~OssGroupParameterObject() = default;

QString OssGroupParameterObject::prettyPropertyName(const QString &Name) const
{
    QString label;
    bool startsWord = true;
    for (const QChar c : Name) {
        if (c == QLatin1Char('_') || c.isSpace()) {
            startsWord = true;
            continue;
        }
        const bool capital = c.isUpper() && !label.isEmpty() && label.back().isLower();
        if ((startsWord || capital) && !label.isEmpty())
            label += QLatin1Char(' ');
        label += startsWord ? c.toUpper() : c;
        startsWord = false;
    }
    return label;
}
