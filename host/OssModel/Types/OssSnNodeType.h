#pragma once

#include "OssCore/Values/OssCustomAttribute.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnDataKind.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QVector>

#include <memory>

/// One kind of node, read from its XML description and shared, unchanged, by all its nodes.
///
///     <NodeType PathKey="Filter/Blur" MenuPath="..." Class="OssSnBaseNode" Kernel="blur"
///               VersionUUID="OSS_Filter_Blur" Date="2026-11-01"
///               Aliases="soften,gauss">
///       <Description>...</Description>
///       <Tags><Tag>_blend</Tag></Tags>
///       <Inputs><Input Name="Input" Kind="Color" Preferred="true" Label="..."
///                     Description="..."/></Inputs>
///       <Outputs><Output Name="Output" Kind="Color"/></Outputs>
///       <Attributes><Group Name="Size">
///         <Attribute Name="Radius" Type="real" Default="8" Minimum="0" Maximum="200"
///                    SoftMinimum="0" SoftMaximum="50"
///                    Label="..." ToolTip="..." Visible="true" Choices="a,b,c"/>
///       </Group></Attributes>
///       <Contexts>...</Contexts>
///       <Content><ossaNodes ...>...</ossaNodes></Content>
///     </NodeType>
///
/// Attribute types are the names of OssAttributeKind. A color is scene-linear, a displaycolor is
/// what is seen. Soft bounds are what a slider spans; a typed value may lie beyond them.
/// Content is one group, as OssShaderNetworkIO writes nodes: what each node of the type begins as. Where
/// a document brings a description along, it leaves out the content and keeps its hash.
/// An absent MenuPath is the path key; an empty one keeps the type out of menus.
class OSSMODEL_EXPORT OssSnNodeType
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
        QString description; ///< what it means, where its name does not say it
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
    /// Other names by which people look for it; no part of what the type is.
    QStringList aliases;
    QSet<QString> tags;
    QVector<Port> inputs;
    QVector<Port> outputs;
    QVector<OssCustomAttribute> attributes;
    /// The whole description as far as context loaders read it: the document element with its
    /// "Contexts". Kept apart so that making a node does not read the rest again.
    QString contextsDescription;
    /// Empty for types that are not published groups, and where the content was left out.
    QString content;
    /// Of the content; empty for types that are not published groups.
    QString contentHash;
    /// What the type is, canonically: the base of version hashes.
    QByteArray definition;

    /// The description itself, without its content and what does not count in XML: comments and white
    /// space.
    QString source;
    /// Short hash of the description: tells two definitions of one type apart.
    QString id;

    /// Whether a node of the one is a node of the other, labels and texts for users aside.
    bool isSameAs(const OssSnNodeType &other) const;

    bool isPublishedGroup() const { return !contentHash.isEmpty(); }

    /// "Blur" of "Filter/Blur".
    QString baseName() const;
};
