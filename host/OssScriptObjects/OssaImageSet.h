#pragma once

#include "OssCore/Values/OssColor.h"
#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>

namespace Ossa {

/// The images of one texture for scripts.
class OSSSCRIPTOBJECTS_EXPORT ImageSet : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "The images of one texture, one for each UDIM patch.")
    Q_PROPERTY(QString name READ name)
    Q_PROPERTY(int resolution READ resolution)
    Q_CLASSINFO("resolution", "Width and height of a patch in pixels.")
    Q_PROPERTY(int bits READ bits)
    Q_CLASSINFO("bits", "Of each component: 8 for bytes, 16 for half, 32 for single precision.")
    Q_PROPERTY(bool scalar READ isScalar)
    Q_CLASSINFO("scalar", "The values are no colours: masks, heights.")
    Q_PROPERTY(OssColor fillColor READ fillColor)
    Q_CLASSINFO("fillColor", "Of pixels that nothing was written to.")
    Q_CLASSINFO("patches", "The patches that something was written to.")

public:
    explicit ImageSet(QObject *set);
    ~ImageSet() override;

    QString name() const;
    int resolution() const;
    int bits() const;
    bool isScalar() const;
    OssColor fillColor() const;

public Q_SLOTS:
    QList<int> patches() const;

Q_SIGNALS:
    void pixelsChanged();
};

} // namespace Ossa
