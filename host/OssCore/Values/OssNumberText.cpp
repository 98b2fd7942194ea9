#include "OssCore/Values/OssNumberText.h"

#include <QLocale>
#include <QStringList>
#include <QVector>

#include <cmath>

QString OssNumberText::of(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

QString OssNumberText::of(std::initializer_list<double> numbers)
{
    QStringList parts;
    for (const double number : numbers)
        parts.append(of(number));
    return parts.join(QLatin1Char(','));
}

bool OssNumberText::read(const QString &text, int count, double *numbers)
{
    const QVector<QStringRef> parts = text.splitRef(QLatin1Char(','));
    if (parts.size() != count)
        return false;
    for (int i = 0; i < count; ++i) {
        bool ok = false;
        numbers[i] = parts.at(i).trimmed().toDouble(&ok);
        // Infinities are texts of numbers, too, but nothing that a document may hold.
        if (!ok || !std::isfinite(numbers[i]))
            return false;
    }
    return true;
}
