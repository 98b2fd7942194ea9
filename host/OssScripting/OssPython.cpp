#include "OssScripting/OssPython.h"

#include "OssCore/Program/OssDebug.h"
#include "OssScripting/OssPyModule.h"
#include "OssScripting/OssPyValue.h"
#include "OssScripting/OssScriptThread.h"

#include <QFile>

#include <functional>

#include <pybind11/embed.h>

namespace py = pybind11;

namespace {

constexpr int Failure = 1;
constexpr int MostAttempts = 5; // each may be interrupted by another wish to stop

/// Isolated: no environment variables, no folder of the user's, not the current one.
std::unique_ptr<py::scoped_interpreter> makeInterpreter()
{
    PyConfig config;
    PyConfig_InitIsolatedConfig(&config);
    config.install_signal_handlers = 0;
    config.write_bytecode = 0;
    PyConfig_SetString(&config, &config.home, OSSA_PYTHON_HOME); // not what PATH leads to
    return std::make_unique<py::scoped_interpreter>(&config, 0, nullptr, false);
}

} // namespace

struct OssPython::Private
{
    std::unique_ptr<py::scoped_interpreter> interpreter;
    py::object ossa;

    /// Calls what may be interrupted, again and again.
    int insist(const std::function<int()> &call) const
    {
        for (int attempt = 0; attempt < MostAttempts; ++attempt) {
            try {
                return call();
            } catch (const py::error_already_set &) {
                PyEval_SetTrace(nullptr, nullptr);
            } catch (const std::exception &error) {
                OssDebug(__FILE__, __LINE__, "[ !! ] %s", error.what());
            }
        }
        return Failure;
    }

    /// What a script raises is reported by the module, which knows the exit code for it.
    int guarded(const std::function<void()> &script) const
    {
        while (PyErr_CheckSignals() != 0) // a wish to stop that came too late for the last script
            PyErr_Clear();
        int exitCode = 0;
        try {
            script();
        } catch (const py::error_already_set &error) {
            PyEval_SetTrace(nullptr, nullptr);
            py::object raised = error.value();
            if (error.trace())
                PyException_SetTraceback(raised.ptr(), error.trace().ptr());
            exitCode = insist([&] { return ossa.attr("_report")(raised).cast<int>(); });
        } catch (const std::exception &error) {
            OssDebug(__FILE__, __LINE__, "[ !! ] %s", error.what());
            exitCode = Failure;
        }
        insist([&] {
            ossa.attr("_finish")(exitCode != 0);
            return 0;
        });
        PyEval_SetTrace(nullptr, nullptr);
        return exitCode;
    }
};

OssPython::OssPython(OssScriptThread *, OssScriptEngine::Output output)
    : m_private(std::make_unique<Private>())
{
    OssPyModule::use();
    m_private->interpreter = makeInterpreter();
    QFile source(QStringLiteral(":/scripting/ossa.py"));
    source.open(QIODevice::ReadOnly);
    const QByteArray text = source.readAll();
    try {
        const py::object types = py::module_::import("types");
        m_private->ossa = types.attr("ModuleType")("ossa");
        const py::object code = py::module_::import("builtins")
                                    .attr("compile")(text.toStdString(), "<ossa>", "exec");
        py::module_::import("sys").attr("modules")["ossa"] = m_private->ossa;
        py::module_::import("builtins").attr("exec")(code, m_private->ossa.attr("__dict__"));
        m_private->ossa.attr("_prepare")(output == OssScriptEngine::Output::Signals,
                                         int(StopSignal));
    } catch (const py::error_already_set &error) {
        OssDebug(__FILE__, __LINE__, "[ !! ] Python cannot be used: %s", error.what());
    }
}

OssPython::~OssPython()
{
    m_private->ossa = py::object();
}

int OssPython::runFile(const QString &path, const QStringList &arguments)
{
    return m_private->guarded([&] {
        py::list list;
        for (const QString &argument : arguments)
            list.append(OssPyValue::text(argument));
        m_private->ossa.attr("_run_file")(OssPyValue::text(path), list);
    });
}

int OssPython::runInput(const QString &text)
{
    return m_private->guarded([&] { m_private->ossa.attr("_run_input")(OssPyValue::text(text)); });
}

int OssPython::runCallback(int callback, const QVariantList &values)
{
    return m_private->guarded(
        [&] { m_private->ossa.attr("_deliver")(callback, OssPyValue::toPython(values)); });
}

bool OssPython::isComplete(const QString &text)
{
    return m_private->insist([&] {
        return m_private->ossa.attr("_is_complete")(OssPyValue::text(text)).cast<bool>() ? 1 : 0;
    }) != 0;
}

QStringList OssPython::complete(const QString &text)
{
    QStringList names;
    m_private->insist([&] {
        const py::list found = m_private->ossa.attr("_complete")(OssPyValue::text(text));
        for (const py::handle name : found)
            names.append(OssPyValue::fromPython(name).toString());
        return 0;
    });
    return names;
}

void OssPython::resetNames()
{
    m_private->insist([&] {
        m_private->ossa.attr("_reset_names")();
        return 0;
    });
}
