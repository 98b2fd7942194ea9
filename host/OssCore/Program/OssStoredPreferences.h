#pragma once

#include "OssCore/OssCore_export.h"

class QObject;
class QString;

/// Preferences of an object in the user's settings: all writable properties that its class declares,
/// in that order, each under its name in a group of the settings.
namespace OssStoredPreferences {

/// What becomes of a stored value that is no value of its property.
enum class Unfit {
    Refused,  ///< the default is taken, and the log has a line
    Converted ///< as QVariant converts it: a text that is no number is 0
};

/// Sets what is stored. For what is not, the object's slot <key>Default() is asked where it has one;
/// the present value stays where it has none.
OSSCORE_EXPORT void load(QObject *object, const QString &group, Unfit unfit = Unfit::Refused);
OSSCORE_EXPORT void save(const QObject *object, const QString &group);

} // namespace OssStoredPreferences
