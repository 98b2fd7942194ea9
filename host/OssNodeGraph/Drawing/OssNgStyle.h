#pragma once

#include "OssNodeGraph/Drawing/OssNgPortKind.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QColor>
#include <QFont>
#include <QHash>
#include <QObject>

#include <array>

/// Colours, fonts and measures of every node graph in the process. Lengths are scene units, which
/// are device-independent pixels at zoom 1. GUI thread.
class OSSNODEGRAPH_EXPORT OssNgStyle : public QObject
{
    Q_OBJECT

public:
    enum class Role {
        Canvas,
        GridDot,
        Body,
        BodyHovered,
        Outline,
        OutlineHovered,
        Title,
        Label,
        PortOutline,
        Accent,   ///< selection and focus, nothing else
        Inviting, ///< a wire into which the node in the hand would be spliced
        Error,
        ErrorText,
        Stale,
        Baked,
        Highlight,
        Strike, ///< the stroke through disabled nodes
        Note,
        NoteOutline,
        NoteText,
        MapCanvas,
        MapOutline,
        MapNode,
    };
    Q_ENUM(Role)
    static constexpr int RoleCount = int(Role::MapNode) + 1;

    static OssNgStyle *instance();
    ~OssNgStyle() override;

    const QColor &color(Role role) const { return m_colors[std::size_t(role)]; }

    void setColor(Role role, const QColor &color);
    /// Header colour of a node's category; one neutral colour for categories never heard of.
    QColor categoryColor(const QString &category) const;

    const QColor &portColor(OssNgPortKind kind) const { return m_portColors[std::size_t(kind)]; }

    const QFont &titleFont() const { return m_titleFont; }

    const QFont &labelFont() const { return m_labelFont; }

    const QFont &noteFont() const { return m_noteFont; }

    const QFont &backdropFont() const { return m_backdropFont; }

    /// Clear space that placement leaves between a node and the one underneath. Both are added.
    int verticalSpacing() const { return 10; }

    float extraVerticalSpacing() const { return 10.0F; }

    /// Clear space that placement leaves beside a node.
    float horizontalSpacing() const { return 20.0F; }

    /// Room around the body for ports and the selection ring; part of a node's bounding rectangle.
    static constexpr qreal Margin = 6.0;
    static constexpr qreal CornerRadius = 8.0;
    static constexpr qreal HeaderHeight = 26.0;
    static constexpr qreal RowHeight = 20.0;
    /// From the header's lower edge to the centre of the first row of ports.
    static constexpr qreal FirstRow = 14.0;
    static constexpr qreal LowerPadding = 14.0;
    static constexpr qreal MinimumWidth = 138.0;
    static constexpr qreal MaximumWidth = 300.0;
    static constexpr qreal PortRadius = 5.0;
    static constexpr qreal LabelInset = 11.0;
    static constexpr qreal TitleInset = 12.0;
    static constexpr qreal WireWidth = 2.0;
    static constexpr qreal GridStep = 24.0;
    static constexpr qreal BackdropTitleHeight = 28.0;

    /// Zoom from which nodes are drawn whole; below it they lose text and ports.
    static constexpr qreal FullDetail = 0.5;
    /// Zoom below which the graph is drawn as an overview, without visiting any item.
    static constexpr qreal Overview = 0.25;

Q_SIGNALS:
    /// A colour changed: nodes rebuild what they drew.
    void colorsUpdated();

private:
    OssNgStyle();

    std::array<QColor, std::size_t(RoleCount)> m_colors;
    std::array<QColor, 5> m_portColors;
    QHash<QString, QColor> m_categoryColors;
    QFont m_titleFont;
    QFont m_labelFont;
    QFont m_noteFont;
    QFont m_backdropFont;
};
