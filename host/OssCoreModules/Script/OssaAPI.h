#pragma once

#include "OssCoreModules/OssCoreModules_export.h"

#include <QObject>
#include <QPointer>

namespace Ossa {

/// Base of all script objects: a wrapper around one object of the program, whose public slots are
/// what scripts call. It may outlive the object; every slot asks for it first and reports when it
/// is gone. Made by the factories of OssScriptManager, which owns it.
class OSSCOREMODULES_EXPORT API : public QObject
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

private:
    QPointer<QObject> m_internal;
};

} // namespace Ossa
