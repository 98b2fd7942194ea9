#include "OssCore/OssValueText.h"

#include "OssCore/OssColor.h"
#include "OssCore/OssUserEnum.h"

#include <QLocale>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QString real(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString joined(std::initializer_list<double> values)
{
    QStringList parts;
    for (const double value : values)
        parts.append(real(value));
    return parts.join(QLatin1Char(','));
}

// Infinities are texts of numbers, too, but nothing that a document may hold.
bool readReal(const QStringRef &text, double *out)
{
    bool ok = false;
    *out = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(*out);
}

bool readReals(const QString &text, int count, double *out)
{
    const QVector<QStringRef> parts = text.splitRef(QLatin1Char(','));
    if (parts.size() != count)
        return false;
    for (int i = 0; i < count; ++i) {
        if (!readReal(parts.at(i), &out[i]))
            return false;
    }
    return true;
}

/// The same for coordinates that are whole numbers.
bool readWhole(const QString &text, int count, double *out)
{
    const auto fits = [](double value) {
        return std::abs(value) <= std::numeric_limits<int>::max();
    };
    return readReals(text, count, out) && std::all_of(out, out + count, fits);
}

QString escapedList(const QStringList &list)
{
    QString text;
    for (int i = 0; i < list.size(); ++i) {
        if (i > 0)
            text += QLatin1Char(',');
        for (const QChar c : list.at(i)) {
            if (c == QLatin1Char(',') || c == QLatin1Char('\\'))
                text += QLatin1Char('\\');
            text += c;
        }
    }
    // A list of one empty text must differ from the empty list.
    return list.size() == 1 && list.first().isEmpty() ? QStringLiteral("\\") : text;
}

QStringList unescapedList(const QString &text)
{
    if (text.isEmpty())
        return {};
    if (text == QLatin1String("\\"))
        return {QString()};
    QStringList list{QString()};
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\') && i + 1 < text.size())
            list.last() += text.at(++i);
        else if (c == QLatin1Char(','))
            list.append(QString());
        else
            list.last() += c;
    }
    return list;
}

/// The types that Ossa registers, and the enumerations.
QVariant registeredFromText(const QString &text, int type)
{
    bool ok = false;
    if (type == qMetaTypeId<OssColor>()) {
        const OssColor color = OssColor::fromString(text, &ok);
        return ok ? QVariant::fromValue(color) : QVariant();
    }
    if (type == qMetaTypeId<OssUserEnum>()) {
        const int number = text.toInt(&ok);
        return ok ? QVariant::fromValue(OssUserEnum({}, number)) : QVariant();
    }
    if (QMetaType(type).flags() & QMetaType::IsEnumeration) {
        const int number = text.toInt(&ok);
        return ok ? QVariant(number) : QVariant();
    }
    QVariant value(text);
    return value.convert(type) ? value : QVariant();
}

} // namespace

QString OssValueText::toText(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Double:
    case QMetaType::Float:
        return real(value.toDouble());
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return joined({value.toPointF().x(), value.toPointF().y()});
    case QMetaType::QSize:
    case QMetaType::QSizeF:
        return joined({value.toSizeF().width(), value.toSizeF().height()});
    case QMetaType::QRect:
    case QMetaType::QRectF: {
        const QRectF r = value.toRectF();
        return joined({r.x(), r.y(), r.width(), r.height()});
    }
    case QMetaType::QStringList:
        return escapedList(value.toStringList());
    default:
        break;
    }
    if (value.userType() == qMetaTypeId<OssUserEnum>())
        return QString::number(value.value<OssUserEnum>().currentValue());
    if (QMetaType(value.userType()).flags() & QMetaType::IsEnumeration)
        return QString::number(value.toInt());
    return value.toString();
}

QVariant OssValueText::fromText(const QString &text, int type)
{
    double v[4] = {};
    bool ok = false;
    switch (type) {
    case QMetaType::Bool:
        if (text == QLatin1String("true") || text == QLatin1String("1"))
            return true;
        return text == QLatin1String("false") || text == QLatin1String("0") ? QVariant(false)
                                                                            : QVariant();
    case QMetaType::Int: {
        const int number = text.toInt(&ok);
        return ok ? QVariant(number) : QVariant();
    }
    case QMetaType::Double:
        return readReal(QStringRef(&text), v) ? QVariant(v[0]) : QVariant();
    case QMetaType::Float:
        return readReal(QStringRef(&text), v) ? QVariant(float(v[0])) : QVariant();
    case QMetaType::QPoint:
        return readWhole(text, 2, v) ? QVariant(QPointF(v[0], v[1]).toPoint()) : QVariant();
    case QMetaType::QPointF:
        return readReals(text, 2, v) ? QVariant(QPointF(v[0], v[1])) : QVariant();
    case QMetaType::QSize:
        return readWhole(text, 2, v) ? QVariant(QSizeF(v[0], v[1]).toSize()) : QVariant();
    case QMetaType::QSizeF:
        return readReals(text, 2, v) ? QVariant(QSizeF(v[0], v[1])) : QVariant();
    case QMetaType::QRect:
        return readWhole(text, 4, v) ? QVariant(QRectF(v[0], v[1], v[2], v[3]).toRect())
                                     : QVariant();
    case QMetaType::QRectF:
        return readReals(text, 4, v) ? QVariant(QRectF(v[0], v[1], v[2], v[3])) : QVariant();
    case QMetaType::QStringList:
        return unescapedList(text);
    default:
        break;
    }
    return registeredFromText(text, type);
}
