#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>

namespace Ossa {

/// An image of the project's image list for scripts.
class OSSSCRIPTOBJECTS_EXPORT Image : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "An image of the project's image list.")
    Q_PROPERTY(QString name READ name)
    Q_CLASSINFO("name", "The file's name without its folder.")
    Q_PROPERTY(QString path READ path)
    Q_CLASSINFO("path", "Where patches have files of their own, \"<UDIM>\" stands for the number.")
    Q_PROPERTY(QString category READ category)
    Q_CLASSINFO("patches", "The patches that have files now; 1001 alone for a single file.")

public:
    explicit Image(QObject *image);
    ~Image() override;

    QString name() const;
    QString path() const;
    QString category() const;

public Q_SLOTS:
    QList<int> patches() const;
};

} // namespace Ossa
