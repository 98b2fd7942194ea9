#include "OssScripting/OssPyModule.h"

#include "OssScripting/OssPyValue.h"
#include "OssScripting/OssScriptCall.h"
#include "OssScripting/OssScriptClass.h"
#include "OssScripting/OssScriptSlot.h"
#include "OssScripting/OssScriptThread.h"
#include "OssScriptObjects/OssaApplication.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"
#include "OssScriptObjects/OssScriptTypes.h"

#include <QCoreApplication>
#include <QMetaEnum>
#include <QMetaProperty>

#include <pybind11/embed.h>

namespace py = pybind11;

namespace {

/// Carries out on the GUI thread what a script waits for.
void onGui(const std::function<void()> &work)
{
    bool done = false;
    {
        const py::gil_scoped_release released;
        done = OssScriptThread::current()->onGui(work);
    }
    if (!done)
        throw std::runtime_error("no script is running");
}

[[noreturn]] void raise(const OssScriptException &error)
{
    const py::object type = py::module_::import("ossa").attr("Error");
    const py::object raised = type(int(error.type), OssPyValue::text(error.message));
    PyErr_SetObject(type.ptr(), raised.ptr());
    throw py::error_already_set();
}

py::object answer(const OssScriptCall::Outcome &outcome)
{
    OssPyModule::deliverSignals();
    if (outcome.failed)
        raise(outcome.error);
    return OssPyValue::toPython(outcome.value);
}

py::object call(const OssScriptHandle &target, const std::string &name, const py::tuple &arguments)
{
    const QVariantList values = OssPyValue::fromPython(arguments).toList();
    QString reason;
    const int method = OssScriptCall::chooseMethod(target.type, QByteArray::fromStdString(name),
                                                   values, &reason);
    if (method < 0)
        throw py::type_error(reason.toStdString());
    OssScriptCall::Outcome outcome;
    onGui([&] { outcome = OssScriptCall::call(target, method, values); });
    return answer(outcome);
}

py::object invoke(const OssScriptHandle &target, const std::string &name, const py::args &arguments)
{
    const QVariantList values = OssPyValue::fromPython(arguments).toList();
    OssScriptCall::Outcome outcome;
    onGui([&] {
        outcome = OssScriptCall::callInternal(target, QByteArray::fromStdString(name), values);
    });
    return answer(outcome);
}

py::object get(const OssScriptHandle &target, const std::string &name)
{
    OssScriptCall::Outcome outcome;
    onGui([&] { outcome = OssScriptCall::property(target, QByteArray::fromStdString(name)); });
    return answer(outcome);
}

void set(const OssScriptHandle &target, const std::string &name, py::handle value)
{
    const QVariant plain = OssPyValue::fromPython(value);
    const QMetaProperty property = target.type->property(
        target.type->indexOfProperty(name.c_str()));
    if (!OssScriptCall::fits(plain, property.userType(), property.typeName()))
        throw py::type_error(
            name + " takes "
            + OssScriptCall::typeText(property.userType(), property.typeName()).toStdString());
    OssScriptCall::Outcome outcome;
    onGui([&] {
        outcome = OssScriptCall::setProperty(target, QByteArray::fromStdString(name), plain);
    });
    answer(outcome);
}

int connectSignal(const OssScriptHandle &target, const std::string &name)
{
    const QMetaMethod signal = OssScriptSlot::find(target.type, QByteArray::fromStdString(name));
    int id = 0;
    onGui([&] { id = OssScriptSlot::connectTo(target, signal); });
    if (id == 0) {
        OssScriptException error;
        error.message = QStringLiteral("The script object is gone");
        raise(error);
    }
    return id;
}

OssScriptHandle application()
{
    OssScriptHandle handle;
    onGui([&] {
        handle = OssScriptHandle::of(
            OssScriptObject<Ossa::Application>(QCoreApplication::instance()));
    });
    return handle;
}

py::dict errorTypes()
{
    py::dict types;
    const QMetaEnum all = QMetaEnum::fromType<OssScriptException::Type>();
    for (int i = 0; i < all.keyCount(); ++i)
        types[all.key(i)] = all.value(i);
    return types;
}

py::list classes()
{
    QVector<OssScriptClass> all;
    onGui([&] { all = OssScriptClass::all(); });
    py::list list;
    for (const OssScriptClass &entry : qAsConst(all))
        list.append(OssPyValue::toPython(entry.toMap()));
    return list;
}

int interruptAtNextLine(PyObject *, PyFrameObject *, int what, PyObject *)
{
    if (what != PyTrace_LINE)
        return 0;
    PyErr_SetNone(PyExc_KeyboardInterrupt);
    return -1;
}

} // namespace

PYBIND11_EMBEDDED_MODULE(_ossa, module)
{
    py::class_<OssScriptHandle>(module, "Handle")
        .def("__eq__", [](const OssScriptHandle &a,
                          const OssScriptHandle &b) { return a.identity == b.identity; })
        .def("__hash__",
             [](const OssScriptHandle &handle) { return std::size_t(handle.identity); });
    module.def("call", call);
    module.def("invoke", invoke);
    module.def("get", get);
    module.def("set", set);
    module.def("connect", connectSignal);
    module.def("disconnect", [](int id) { onGui([id] { OssScriptSlot::disconnectFrom(id); }); });
    module.def("application", application);
    module.def("classes", classes);
    module.def("error_types", errorTypes);
    module.def("write", [](py::handle text, bool isError) {
        const QString written = OssPyValue::fromPython(text).toString();
        const py::gil_scoped_release released;
        OssScriptThread::current()->write(written, isError);
    });
    // A script that catches the interrupt is interrupted in its handler, too.
    module.def("stop_at_every_line", [] { PyEval_SetTrace(interruptAtNextLine, nullptr); });
    module.def("interrupt_thread", [](unsigned long thread) {
        PyThreadState_SetAsyncExc(thread, PyExc_KeyboardInterrupt);
    });
}

void OssPyModule::use() {}

void OssPyModule::deliverSignals()
{
    static bool delivering = false;
    const py::object ossa = py::module_::import("ossa");
    // Only the script itself: its threads leave signals to it.
    if (delivering || !ossa.attr("_in_main_thread")().cast<bool>())
        return;
    delivering = true;
    OssScriptThread::Job job;
    try {
        while (OssScriptThread::current()->takeCallback(&job))
            ossa.attr("_deliver")(job.callback, OssPyValue::toPython(job.values));
    } catch (...) {
        delivering = false;
        throw;
    }
    delivering = false;
}
