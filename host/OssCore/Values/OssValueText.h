#pragma once

#include "OssCore/OssCore_export.h"

#include <QString>
#include <QVariant>

/// Text forms of property and attribute values in files: exact (what is read back is equal), the
/// same on every machine and in every locale.
namespace OssValueText {

/// Points and sizes are "x,y", rectangles "x,y,w,h", lists of strings are joined with escaped
/// commas, enumerations are their number.
OSSCORE_EXPORT QString toText(const QVariant &value);

/// The value of `text` read as the meta-type `type`. Invalid when the text is none of that type;
/// numbers that are infinite or none are refused too.
OSSCORE_EXPORT QVariant fromText(const QString &text, int type);

} // namespace OssValueText
