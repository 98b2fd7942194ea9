#pragma once

#include "OssCore/OssCore_export.h"

#include <QString>

#include <initializer_list>

/// Real numbers as text: the shortest digits that read back the same, in no locale.
namespace OssNumberText {

OSSCORE_EXPORT QString of(double number);
/// Joined by commas.
OSSCORE_EXPORT QString of(std::initializer_list<double> numbers);
/// Reads exactly `count` finite numbers that commas part; false when they are not that.
OSSCORE_EXPORT bool read(const QString &text, int count, double *numbers);

} // namespace OssNumberText
