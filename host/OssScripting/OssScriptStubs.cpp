#include "OssScripting/OssScriptClass.h"
#include "OssScripting/OssScriptEngine.h"
#include "OssScriptObjects/OssScriptException.h"

#include <QMetaEnum>

namespace {

const char *const Preamble =
    R"(# Types of the module "ossa", for editors and type checkers. Made by "ossa stubs".
from enum import IntEnum
from typing import Any, Callable, ContextManager, NamedTuple, overload

class ErrorType(IntEnum):
%1

class Error(Exception):
    type: ErrorType
    message: str

class Point(NamedTuple):
    x: float
    y: float

class Color(NamedTuple):
    red: float
    green: float
    blue: float
    alpha: float = ...

class Signal:
    def connect(self, function: Callable[..., Any]) -> None: ...
    def disconnect(self, function: Callable[..., Any]) -> None: ...

class Object: ...

class _Progress:
    cancelled: bool
    def step(self, count: int = ...) -> None: ...

def undoMacro(title: str) -> ContextManager[None]: ...
def progress(title: str, total: int = ...) -> ContextManager[_Progress]: ...
def invoke(object: Object, slot: str, *arguments: Any) -> Any: ...

)";

QString quoted(const QString &doc)
{
    return QStringLiteral("\"\"\"") + QString(doc).replace(QLatin1String("\""), QLatin1String("'"))
           + QStringLiteral("\"\"\"");
}

/// "name(input: str) -> Node" as a definition.
QString definition(const QString &signature, const QString &self, const QString &doc,
                   const QString &indent)
{
    QString text = signature;
    if (!self.isEmpty())
        text.replace(text.indexOf(QLatin1Char('(')), 1,
                     text.contains(QLatin1String("()"))
                         ? QStringLiteral("(") + self
                         : QStringLiteral("(") + self + QStringLiteral(", "));
    if (!text.contains(QLatin1String("->")))
        text += QStringLiteral(" -> None");
    QString lines = indent + QStringLiteral("def ") + text + QLatin1Char(':');
    if (doc.isEmpty())
        return lines + QStringLiteral(" ...\n");
    return lines + QLatin1Char('\n') + indent + QStringLiteral("    ") + quoted(doc)
           + QLatin1Char('\n');
}

QString methodText(const OssScriptClass::Method &method, const QString &self, const QString &indent)
{
    QString text;
    QString doc = method.doc; // with the first only
    for (const QString &signature : method.signatures) {
        if (method.signatures.size() > 1)
            text += indent + QStringLiteral("@overload\n");
        text += definition(signature, self, doc, indent);
        doc.clear();
    }
    return text;
}

QString classText(const OssScriptClass &entry)
{
    const QString indent = QStringLiteral("    ");
    const QString base = entry.base.isEmpty() ? QStringLiteral("Object")
                                              : QString::fromLatin1(entry.base);
    QString text = QStringLiteral("class %1(%2):\n").arg(QString::fromLatin1(entry.name), base);
    text += indent + quoted(entry.doc) + QLatin1Char('\n');
    for (const OssScriptClass::Property &property : entry.properties) {
        const QString name = QString::fromLatin1(property.name);
        text += indent + QStringLiteral("@property\n")
                + definition(name + QStringLiteral("() -> ") + property.type,
                             QStringLiteral("self"), property.doc, indent);
        if (property.isWritable)
            text += indent + QStringLiteral("@%1.setter\n").arg(name)
                    + definition(QStringLiteral("%1(value: %2)").arg(name, property.type),
                                 QStringLiteral("self"), QString(), indent);
    }
    for (const OssScriptClass::Method &method : entry.methods)
        text += methodText(method, QStringLiteral("self"), indent);
    for (const OssScriptClass::Signal &signal : entry.signals_)
        text += indent + QString::fromLatin1(signal.name) + QStringLiteral(": Signal  # ")
                + signal.signature + QLatin1Char('\n');
    return text + QLatin1Char('\n');
}

} // namespace

QString OssScriptEngine::stubs()
{
    const QMetaEnum errors = QMetaEnum::fromType<OssScriptException::Type>();
    QString types;
    for (int i = 0; i < errors.keyCount(); ++i)
        types += QStringLiteral("    %1 = %2\n")
                     .arg(QString::fromLatin1(errors.key(i)))
                     .arg(errors.value(i));
    QString text = QString::fromLatin1(Preamble).arg(types);
    const QVector<OssScriptClass> classes = OssScriptClass::all();
    for (const OssScriptClass &entry : classes)
        text += classText(entry);
    text += QStringLiteral("application: Application\nversion: str\n\n");
    for (const OssScriptClass &entry : classes) {
        if (entry.name != "Application")
            continue;
        for (const OssScriptClass::Method &method : entry.methods)
            text += methodText(method, QString(), QString());
    }
    return text;
}
