#pragma once

#include "OssCore/OssCore_export.h"

#include <QColor>
#include <QMetaType>
#include <QString>

/// A scene-linear or display colour as four reals; which of the two, the user of the value knows.
/// Colour channels may exceed 1, alpha is kept within 0 to 1. The meta-type is named "OssColor" and
/// converts from and to QString and QColor.
class OSSCORE_EXPORT OssColor
{
public:
    OssColor() = default;
    OssColor(double red, double green, double blue, double alpha = 1.0);
    explicit OssColor(const QColor &color);

    /// Reads "r,g,b" or "r,g,b,a" (reals), or "#" and digits as QColor does: "#rrggbb",
    /// "#aarrggbb" and the shorter and longer forms. Anything else gives opaque black and `*ok` false.
    static OssColor fromString(const QString &text, bool *ok = nullptr);
    /// "r,g,b,a", shortest digits that read back the same.
    QString toString() const;
    QColor toQColor() const;

    double red() const { return m_red; }

    double green() const { return m_green; }

    double blue() const { return m_blue; }

    double alpha() const { return m_alpha; }

    friend bool operator==(const OssColor &a, const OssColor &b)
    {
        return a.m_red == b.m_red && a.m_green == b.m_green && a.m_blue == b.m_blue
               && a.m_alpha == b.m_alpha;
    }

    friend bool operator!=(const OssColor &a, const OssColor &b) { return !(a == b); }

    friend bool operator<(const OssColor &a, const OssColor &b)
    {
        return a.toString() < b.toString();
    }

    /// Makes the conversions known to QVariant. Called once when the library is used first.
    static void registerMetaType();

private:
    double m_red = 0.0;
    double m_green = 0.0;
    double m_blue = 0.0;
    double m_alpha = 1.0;
};

Q_DECLARE_METATYPE(OssColor)
