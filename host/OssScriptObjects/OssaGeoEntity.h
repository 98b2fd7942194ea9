#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>
#include <QStringList>

struct OssGeometrySource;

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
    Q_CLASSINFO("geometry", "\"plane\", \"sphere\", \"cube\", \"cylinder\", \"shaderBall\", or the "
                            "file of the shape.")
    Q_PROPERTY(QString meshState READ meshState)
    Q_CLASSINFO("meshState",
                "\"ready\", or \"kept\" or \"missing\" where the file cannot be used: then "
                "the mesh that the project keeps is used, or there is none.")
    Q_PROPERTY(QString meshProblem READ meshProblem)
    Q_CLASSINFO("meshProblem", "Why the file cannot be used, or what is wrong with its texture "
                               "coordinates; empty when all is well.")
    Q_PROPERTY(QString uvSet READ uvSet WRITE setUvSet)
    Q_CLASSINFO("uvSet", "The set of the file's texture coordinates; empty for the first.")
    Q_PROPERTY(bool unwraps READ unwraps WRITE setUnwraps)
    Q_CLASSINFO("unwraps", "Whether texture coordinates are made, whatever the file has.")
    Q_CLASSINFO("replaceMesh",
                "Gives the object another shape or file; wires, paint and bakes stay. "
                "What is other, in words.")
    Q_CLASSINFO("reloadMesh", "Reads the file again.")
    Q_PROPERTY(QStringList geoChannels READ geoChannels)
    Q_CLASSINFO("geoChannels", "Names of the object's geo-channels.")
    Q_CLASSINFO("addGeoChannel", "Makes a geo-channel, without pixels at first.")
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
    QString meshState() const;
    QString meshProblem() const;
    QString uvSet() const;
    void setUvSet(const QString &name);
    bool unwraps() const;
    void setUnwraps(bool on);

public Q_SLOTS:
    QString replaceMesh(const QString &geometry);
    void reloadMesh();
    void addGeoChannel(const QString &name);
    QList<int> patches() const;
    QList<NodeGraph *> graphs() const;
    QList<ImageSet *> imageSets() const;
    ImageSet *imageSet(const QString &name) const;

private:
    /// Fails where the mesh cannot be used so; then nothing changes.
    QString change(const OssGeometrySource &source, const QString &title);
};

} // namespace Ossa
