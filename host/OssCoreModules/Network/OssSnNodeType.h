#pragma once

#include "OssCore/OssCustomAttribute.h"
#include "OssCore/OssResult.h"
#include "OssCoreModules/Network/OssSnDataKind.h"
#include "OssCoreModules/OssCoreModules_export.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QVector>

#include <memory>

/// One kind of node, read from its XML description and shared, unchanged, by all its nodes.
///
///     <NodeType PathKey="Filter/Blur" MenuPath="..." Class="OssSnBaseNode" Kernel="blur"
///               VersionUUID="OSS_Filter_Blur" Date="2026-11-01">
///       <Description>...</Description>
///       <Tags><Tag>_blend</Tag></Tags>
///       <Inputs><Input Name="Input" Kind="Color" Preferred="true" Label="..."/></Inputs>
///       <Outputs><Output Name="Output" Kind="Color"/></Outputs>
///       <Attributes><Group Name="Size">
///         <Attribute Name="Radius" Type="real" Default="8" Minimum="0" Maximum="200"
///                    Label="..." ToolTip="..." Visible="true" Choices="a,b,c"/>
///       </Group></Attributes>
///       <Contexts>...</Contexts>
///     </NodeType>
///
/// Attribute types: real, integer, boolean, text, file, color, vector2, choice, images.
/// An absent MenuPath is the path key; an empty one keeps the type out of menus.
class OSSCOREMODULES_EXPORT OssSnNodeType
{
public:
    struct Port
    {
        QString name;
        QString label;
        OssSnDataKind kind = OssSnDataKind::Color;
        bool preferred = false;
        bool setAtLoad = false;
        QStringList tags;
    };

    /// Reads a description. `fileName` is for messages. Null and a reason on any fault: unknown
    /// attribute types, defaults that are none of their type, doubled names, missing keys.
    static std::shared_ptr<const OssSnNodeType> read(const QByteArray &xml, const QString &fileName,
                                                     OssResult *result);

    QString pathKey;
    QString menuPath;
    QString className;
    QString kernel;
    QString versionUUID;
    QString date;
    QString description;
    QSet<QString> tags;
    QVector<Port> inputs;
    QVector<Port> outputs;
    QVector<OssCustomAttribute> attributes;
    /// The whole description as far as context loaders read it: the document element with its
    /// "Contexts". Kept apart so that making a node does not read the rest again.
    QString contextsDescription;
    /// What the type is, canonically: the base of version hashes.
    QByteArray definition;

    /// "Blur" of "Filter/Blur".
    QString baseName() const;
};
