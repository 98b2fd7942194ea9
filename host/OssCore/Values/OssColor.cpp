#include "OssCore/Values/OssColor.h"

#include "OssCore/Values/OssNumberText.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

OssColor::OssColor(double red, double green, double blue, double alpha)
    : m_red(red)
    , m_green(green)
    , m_blue(blue)
    , m_alpha(std::clamp(alpha, 0.0, 1.0))
{
}

OssColor::OssColor(const QColor &color)
    : OssColor(color.redF(), color.greenF(), color.blueF(), color.alphaF())
{
}

OssColor OssColor::fromString(const QString &text, bool *ok)
{
    bool good = false;
    OssColor color;
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(QLatin1Char('#'))) {
        const QColor named(trimmed);
        good = named.isValid();
        if (good)
            color = OssColor(named);
    } else {
        const QStringList parts = trimmed.split(QLatin1Char(','));
        good = parts.size() == 3 || parts.size() == 4;
        double values[4] = {0.0, 0.0, 0.0, 1.0};
        for (int i = 0; good && i < parts.size(); ++i) {
            values[i] = parts.at(i).trimmed().toDouble(&good);
            good = good && std::isfinite(values[i]);
        }
        if (good)
            color = OssColor(values[0], values[1], values[2], values[3]);
    }
    if (ok)
        *ok = good;
    return color;
}

QString OssColor::toString() const
{
    return OssNumberText::of({m_red, m_green, m_blue, m_alpha});
}

QColor OssColor::toQColor() const
{
    const auto unit = [](double value) {
        return std::clamp(value, 0.0, 1.0);
    };
    return QColor::fromRgbF(unit(m_red), unit(m_green), unit(m_blue), unit(m_alpha));
}

void OssColor::registerMetaType()
{
    static const bool once = [] {
        qRegisterMetaType<OssColor>("OssColor");
        QMetaType::registerComparators<OssColor>();
        QMetaType::registerConverter<OssColor, QString>(&OssColor::toString);
        QMetaType::registerConverter<OssColor, QColor>(&OssColor::toQColor);
        QMetaType::registerConverter<QString, OssColor>(
            [](const QString &text) { return OssColor::fromString(text); });
        QMetaType::registerConverter<QColor, OssColor>(
            [](const QColor &color) { return OssColor(color); });
        return true;
    }();
    Q_UNUSED(once)
}
