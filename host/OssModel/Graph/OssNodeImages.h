#pragma once

#include "OssModel/OssModel_export.h"

#include <QList>
#include <QString>

#include <memory>

class OssDeserializer;
class OssSerializer;
class OssShaderNetwork;
class OssShadingContext;
class OssSnBaseNode;

/// The image sets of nodes that leave a network as text: a copy has images of its own, with the same
/// pixels. GUI thread.
class OSSMODEL_EXPORT OssNodeImages
{
public:
    OssNodeImages();
    OssNodeImages(const OssNodeImages &) = delete;
    OssNodeImages &operator=(const OssNodeImages &) = delete;
    ~OssNodeImages();

    /// The name of the object element that they are written as.
    static QString elementName() { return QStringLiteral("images"); }

    /// Has fresh paint of the nodes baked, as the user's preference says.
    static void bakePaint(const QList<OssSnBaseNode *> &nodes);
    /// Writes the images of the nodes and of those inside groups; nothing when there are none.
    static void write(OssSerializer &serializer, const QList<OssSnBaseNode *> &nodes);
    /// Reads the object element at which the reader stands.
    void read(OssDeserializer &reader);
    /// Gives the nodes of `copies`, which is in no document yet, images in the shading of `target`.
    /// Pixels of another project are brought along; the user is told of nodes whose pixels are
    /// nowhere. Undoable.
    void give(const OssShaderNetwork *copies, const OssShaderNetwork *target) const;

private:
    std::unique_ptr<OssShadingContext> m_sets; ///< as they were read
    QString m_project;                         ///< folder of the project that they come from
};
