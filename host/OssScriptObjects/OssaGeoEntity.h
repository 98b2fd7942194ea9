#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>
#include <QStringList>

namespace Ossa {

class ImageSet;
class NodeGraph;

/// An object of the project for scripts.
class OSSSCRIPTOBJECTS_EXPORT GeoEntity : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "An object that is textured.")
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(QString geometry READ geometry)
    Q_CLASSINFO("geometry", "\"plane\", \"sphere\", \"cube\", or the file of the shape.")
    Q_PROPERTY(QStringList geoChannels READ geoChannels)
    Q_CLASSINFO("geoChannels", "Names of the object's geo-channels.")
    Q_CLASSINFO("patches", "The UDIM patches of the object, ascending.")
    Q_CLASSINFO("graphs", "The root graphs of the object.")
    Q_CLASSINFO("imageSets", "The image sets of the object's shading.")
    Q_CLASSINFO("imageSet", "By name; None when there is none.")

public:
    explicit GeoEntity(QObject *entity);
    ~GeoEntity() override;

    QString name() const;
    void setName(const QString &name);
    QString geometry() const;
    QStringList geoChannels() const;

public Q_SLOTS:
    QList<int> patches() const;
    QList<NodeGraph *> graphs() const;
    QList<ImageSet *> imageSets() const;
    ImageSet *imageSet(const QString &name) const;
};

} // namespace Ossa
