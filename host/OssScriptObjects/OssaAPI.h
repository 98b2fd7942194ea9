#pragma once

#include "OssScriptObjects/OssScriptException.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QObject>
#include <QPointer>

namespace Ossa {

/// Base of all script objects: a wrapper around one object of the program, whose public slots,
/// properties and signals are what scripts reach. It may outlive the object; every slot asks for it
/// first and reports when it is gone. Made by the factories of OssScriptManager, which owns it.
///
/// Q_CLASSINFO("doc", ...) tells scripts what the class is for, Q_CLASSINFO("NAME", ...) what its
/// slot, property or signal NAME does.
class OSSSCRIPTOBJECTS_EXPORT API : public QObject
{
    Q_OBJECT

public:
    explicit API(QObject *parent = nullptr);
    ~API() override;

    /// Nothing was bound, or it is gone.
    bool isNull() const { return m_internal.isNull(); }

    /// Null when isNull().
    QObject *internalObject() const { return m_internal; }

protected:
    /// Binds the wrapped object, once, from a constructor.
    void initAPI(QObject *internal) { m_internal = internal; }

    /// For constructors: binds an object of the class, reports any other.
    template <class Internal>
    void initAs(QObject *internal)
    {
        if (qobject_cast<Internal *>(internal))
            initAPI(internal);
        else
            reportInvalid(Internal::staticMetaObject.className());
    }

    /// Null, and reported, when it is gone.
    template <class Internal>
    Internal *wrapped() const
    {
        auto *object = qobject_cast<Internal *>(m_internal.data());
        if (!object)
            reportGone(Internal::staticMetaObject.className());
        return object;
    }

    /// Reports that the call has failed.
    static void fail(OssScriptException::Type type, const QString &message,
                     const char *file = __builtin_FILE(), int line = __builtin_LINE());

private:
    static void reportInvalid(const char *className);
    static void reportGone(const char *className);

    QPointer<QObject> m_internal;
};

} // namespace Ossa
