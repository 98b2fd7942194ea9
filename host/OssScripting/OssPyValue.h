#pragma once

#include <QVariant>

#include <pybind11/pybind11.h>

/// Values between Python and the plain form of OssScriptCall. With the interpreter's lock held.
/// Faults are Python exceptions, thrown as pybind11 does; they go no further than the interpreter.
namespace OssPyValue {

QVariant fromPython(pybind11::handle value, int depth = 0);
pybind11::object toPython(const QVariant &value);
pybind11::str text(const QString &text);

} // namespace OssPyValue
