#pragma once

#include "OssScriptObjects/OssScriptException.h"

#include <QByteArray>
#include <QVariant>

class QMetaMethod;
struct OssScriptHandle;

/// Calls of script objects through their meta-objects. Values cross in a plain form: numbers,
/// texts, lists and maps of values, points, colours, and script objects as OssScriptHandle.
namespace OssScriptCall {

struct Outcome
{
    QVariant value;
    bool failed = false;
    OssScriptException error;
};

/// The public slot of that name that fits the arguments best; -1, with the reason, when none does.
/// Any thread.
int chooseMethod(const QMetaObject *type, const QByteArray &name, const QVariantList &arguments,
                 QString *reason);

bool isCallable(const QMetaMethod &method);
/// Whether a plain value can become one of the type. Any thread.
bool fits(const QVariant &value, int type, const QByteArray &typeName);

/// "name(index: int, title: str) -> Node" as scripts see it. Any thread.
QString signatureText(const QMetaMethod &method);
/// How scripts see a type of the meta-object system. Any thread.
QString typeText(int type, const QByteArray &name);

// What follows is for the GUI thread.

/// The caller has chosen the method for the arguments.
Outcome call(const OssScriptHandle &target, int method, const QVariantList &arguments);
/// A public slot of the object that the script object wraps: what other parts of the program call.
Outcome callInternal(const OssScriptHandle &target, const QByteArray &name,
                     const QVariantList &arguments);
Outcome property(const OssScriptHandle &target, const QByteArray &name);
Outcome setProperty(const OssScriptHandle &target, const QByteArray &name, const QVariant &value);
/// A value of a signal or slot in the plain form.
QVariant plain(const QVariant &value);

} // namespace OssScriptCall
