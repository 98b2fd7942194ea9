#include "OssScripting/OssPyValue.h"

#include "OssCore/Values/OssColor.h"
#include "OssScripting/OssScriptHandle.h"
#include "OssScriptObjects/OssScriptTypes.h"

#include <QPointF>
#include <QString>

namespace py = pybind11;

namespace {

constexpr int DeepestNesting = 32;

py::object ossa(const char *name)
{
    return py::module_::import("ossa").attr(name);
}

QString textOf(py::handle value)
{
    Py_ssize_t size = 0;
    const char *bytes = PyUnicode_AsUTF8AndSize(value.ptr(), &size);
    if (!bytes)
        throw py::error_already_set();
    return QString::fromUtf8(bytes, int(size));
}

QVariant wholeNumber(py::handle value)
{
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(value.ptr(), &overflow);
    if (overflow != 0) {
        PyErr_SetString(PyExc_OverflowError, "the number is too large for the program");
        throw py::error_already_set();
    }
    return qlonglong(number);
}

QVariantList listOf(py::handle sequence, int depth)
{
    QVariantList list;
    // Not by iterator: conversions may run code that changes the list.
    for (std::size_t i = 0; i < py::len(sequence); ++i) {
        const auto item = py::reinterpret_steal<py::object>(
            PySequence_GetItem(sequence.ptr(), Py_ssize_t(i)));
        if (!item)
            throw py::error_already_set();
        list.append(OssPyValue::fromPython(item, depth + 1));
    }
    return list;
}

QVariantMap mapOf(py::handle dict, int depth)
{
    QVariantMap map;
    const auto items = py::reinterpret_steal<py::list>(PyDict_Items(dict.ptr()));
    for (const py::handle item : items) {
        const auto pair = py::reinterpret_borrow<py::tuple>(item);
        if (!PyUnicode_Check(py::object(pair[0]).ptr()))
            throw py::type_error("the keys of a dict must be str");
        map.insert(textOf(py::object(pair[0])),
                   OssPyValue::fromPython(py::object(pair[1]), depth + 1));
    }
    return map;
}

double realOf(py::handle value)
{
    const double number = PyFloat_AsDouble(value.ptr());
    if (PyErr_Occurred())
        throw py::error_already_set();
    return number;
}

QVariant ownType(py::handle value)
{
    if (py::isinstance(value, ossa("Object")))
        return QVariant::fromValue(value.attr("_handle").cast<OssScriptHandle>());
    if (py::isinstance(value, ossa("Point")))
        return QPointF(realOf(value.attr("x")), realOf(value.attr("y")));
    if (py::isinstance(value, ossa("Color")))
        return QVariant::fromValue(OssColor(realOf(value.attr("red")), realOf(value.attr("green")),
                                            realOf(value.attr("blue")),
                                            realOf(value.attr("alpha"))));
    return {};
}

} // namespace

QVariant OssPyValue::fromPython(py::handle value, int depth)
{
    if (depth > DeepestNesting)
        throw py::value_error("the value is nested too deeply");
    PyObject *object = value.ptr();
    if (object == Py_None)
        return {};
    if (PyBool_Check(object))
        return object == Py_True;
    if (PyLong_Check(object))
        return wholeNumber(value);
    if (PyFloat_Check(object))
        return realOf(value);
    if (PyUnicode_Check(object))
        return textOf(value);
    const QVariant own = ownType(value);
    if (own.isValid())
        return own;
    if (PyList_Check(object) || PyTuple_Check(object))
        return listOf(value, depth);
    if (PyDict_Check(object))
        return mapOf(value, depth);
    if (PyIndex_Check(object)) { // numbers of other libraries
        const auto number = py::reinterpret_steal<py::object>(PyNumber_Index(object));
        if (!number)
            throw py::error_already_set();
        return wholeNumber(number);
    }
    if (Py_TYPE(object)->tp_as_number && Py_TYPE(object)->tp_as_number->nb_float)
        return realOf(value);
    throw py::type_error(std::string("the program takes no ") + Py_TYPE(object)->tp_name);
}

py::str OssPyValue::text(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    return {utf8.constData(), std::size_t(utf8.size())};
}

py::object OssPyValue::toPython(const QVariant &value)
{
    const int type = value.userType();
    switch (type) {
    case QMetaType::UnknownType:
    case QMetaType::Void:
        return py::none();
    case QMetaType::Bool:
        return py::bool_(value.toBool());
    case QMetaType::LongLong:
        return py::int_(value.toLongLong());
    case QMetaType::Double:
        return py::float_(value.toDouble());
    case QMetaType::QPointF:
        return ossa("Point")(value.toPointF().x(), value.toPointF().y());
    case QMetaType::QVariantMap: {
        py::dict dict;
        const QVariantMap map = value.toMap();
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry)
            dict[text(entry.key())] = toPython(entry.value());
        return dict;
    }
    case QMetaType::QVariantList: {
        py::list list;
        const QVariantList entries = value.toList();
        for (const QVariant &entry : entries)
            list.append(toPython(entry));
        return list;
    }
    default:
        break;
    }
    if (type == qMetaTypeId<OssColor>()) {
        const auto color = value.value<OssColor>();
        return ossa("Color")(color.red(), color.green(), color.blue(), color.alpha());
    }
    if (type == qMetaTypeId<OssScriptHandle>()) {
        const auto handle = value.value<OssScriptHandle>();
        const QByteArray name = OssScriptTypes::shortName(handle.type);
        return ossa("_make")(name.toStdString(), py::cast(handle));
    }
    return text(value.toString());
}
