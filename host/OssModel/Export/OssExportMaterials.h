#pragma once

#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnDataKind.h"

#include <QMap>
#include <QPointer>
#include <QString>
#include <QVector>

#include <vector>

class OssEvMesh;
class OssGeoEntity;
class OssProject;
class OssSnBaseNode;

/// A material of an object, and the channels that it is made of: the inputs of a shader, or the streams
/// of a material.
struct OSSMODEL_EXPORT OssExportMaterial
{
    struct Channel
    {
        QString name;
        OssSnDataKind kind = OssSnDataKind::Color;
        bool isFed = false; ///< by a wire; else it is one value everywhere
    };

    QPointer<const OssSnBaseNode> node;
    QPointer<const OssGeoEntity> entity;
    QVector<Channel> channels;
    /// A ready-made material that the node alone makes, and that users know it by; else null.
    QPointer<const OssSnBaseNode> within;

    QString name() const;
    QString object() const;

    /// "OBJECT/MATERIAL", by which it is chosen.
    QString path() const { return object() + QLatin1Char('/') + name(); }

    /// Null when there is none of that name.
    const Channel *channel(const QString &name) const;

    /// One without a node where the node is no shader and no material.
    static OssExportMaterial of(const OssSnBaseNode *node);

    /// The material that really comes out where one looks: of a group that holds it, or behind what
    /// passes it on. What is looked at itself where that is no material.
    static OssSnProducer behind(const OssSnProducer &shown);

    /// Of an object's materials, by their places, the mesh's material slots whose faces are theirs: a
    /// slot belongs to the material of its name, or else to the first. Those without a slot have no face.
    static QMap<int, std::vector<int>> slotsOf(const OssEvMesh &mesh,
                                               const QVector<OssExportMaterial> &materials);

    /// All of the project's, in the order of its objects; a material's inside is not looked into,
    /// that of other groups is.
    static QVector<OssExportMaterial> of(const OssProject *project);
};
