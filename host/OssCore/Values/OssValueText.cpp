#include "OssCore/Values/OssValueText.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssNumberText.h"

#include <QPoint>
#include <QRectF>
#include <QSizeF>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Coordinates that are whole numbers.
bool readWhole(const QString &text, int count, double *numbers)
{
    const auto fits = [](double value) {
        return std::abs(value) <= std::numeric_limits<int>::max();
    };
    return OssNumberText::read(text, count, numbers) && std::all_of(numbers, numbers + count, fits);
}

} // namespace

// What attributes can be stands in OssAttributeKind; here is what only properties are.

QString OssValueText::toText(const QVariant &value)
{
    const int type = value.userType();
    if (const OssAttributeKind *kind = OssAttributeKind::ofType(type))
        return kind->form.toText(value);
    switch (type) {
    case QMetaType::Float:
        return OssNumberText::of(value.toDouble());
    case QMetaType::QPoint:
        return OssNumberText::of({double(value.toPoint().x()), double(value.toPoint().y())});
    case QMetaType::QSize:
    case QMetaType::QSizeF:
        return OssNumberText::of({value.toSizeF().width(), value.toSizeF().height()});
    case QMetaType::QRect:
    case QMetaType::QRectF: {
        const QRectF r = value.toRectF();
        return OssNumberText::of({r.x(), r.y(), r.width(), r.height()});
    }
    default:
        break;
    }
    if (QMetaType(type).flags() & QMetaType::IsEnumeration)
        return QString::number(value.toInt());
    return value.toString();
}

QVariant OssValueText::fromText(const QString &text, int type)
{
    if (const OssAttributeKind *kind = OssAttributeKind::ofType(type))
        return kind->form.fromText(text);
    double v[4] = {};
    switch (type) {
    case QMetaType::Float:
        return OssNumberText::read(text, 1, v) ? QVariant(float(v[0])) : QVariant();
    case QMetaType::QPoint:
        return readWhole(text, 2, v) ? QVariant(QPointF(v[0], v[1]).toPoint()) : QVariant();
    case QMetaType::QSize:
        return readWhole(text, 2, v) ? QVariant(QSizeF(v[0], v[1]).toSize()) : QVariant();
    case QMetaType::QSizeF:
        return OssNumberText::read(text, 2, v) ? QVariant(QSizeF(v[0], v[1])) : QVariant();
    case QMetaType::QRect:
        return readWhole(text, 4, v) ? QVariant(QRectF(v[0], v[1], v[2], v[3]).toRect())
                                     : QVariant();
    case QMetaType::QRectF:
        return OssNumberText::read(text, 4, v) ? QVariant(QRectF(v[0], v[1], v[2], v[3]))
                                               : QVariant();
    default:
        break;
    }
    if (QMetaType(type).flags() & QMetaType::IsEnumeration) {
        bool ok = false;
        const int number = text.toInt(&ok);
        return ok ? QVariant(number) : QVariant();
    }
    QVariant value(text);
    return value.convert(type) ? value : QVariant();
}
