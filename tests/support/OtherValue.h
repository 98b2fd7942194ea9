#pragma once

#include "OssCore/Values/OssAttributeKind.h"

/// A value of the same attribute that differs from the present one; `number`, which is not negative,
/// chooses which. Made through the plain form, so that it knows no kind by name.
inline QVariant otherValue(const QVariant &present, int number)
{
    const QStringList choices = OssAttributeKind::choices(present);
    const QVariant plain = OssAttributeKind::plain(present);
    QVariant other;
    if (!choices.isEmpty()) {
        const int next = choices.indexOf(plain.toString()) + 1
                         + number % qMax(1, choices.size() - 1);
        other = choices.at(next % choices.size());
    } else if (plain.userType() == QMetaType::Bool) {
        other = !plain.toBool();
    } else if (plain.userType() == QMetaType::Int) {
        other = number + (number == plain.toInt() ? 1 : 0);
    } else if (plain.userType() == QMetaType::Double) {
        other = number / 37.0 + (number / 37.0 == plain.toDouble() ? 1.0 : 0.0);
    } else if (plain.userType() == QMetaType::QVariantList) {
        QVariantList list = plain.toList();
        list[0] = list.at(0).toDouble() + 0.1 + number / 37.0;
        other = list;
    } else if (plain.userType() == QMetaType::QStringList) {
        other = plain.toStringList()
                + QStringList{QStringLiteral("a, \\%1").arg(number), QString()};
    } else {
        other = QStringLiteral("text <%1>").arg(number);
    }
    return OssAttributeKind::like(present, other);
}
