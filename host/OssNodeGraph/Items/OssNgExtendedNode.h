#pragma once

#include "OssNodeGraph/Items/OssNgNode.h"

/// A node whose ports can be listed in several ways, with small icons and named groups of ports.
class OSSNODEGRAPH_EXPORT OssNgExtendedNode : public OssNgNode
{
    Q_OBJECT

public:
    enum { Type = UserType + 11 };

    enum PortListMode {
        Expanded = 0,        ///< every port has its row
        NoPortList = 1,      ///< no rows; inputs along the upper edge, outputs along the lower
        StreamCollapsed = 2, ///< one row for each cluster of ports
        ConnectedOnly = 3,   ///< rows for connected ports only
        Collapsed = 4,       ///< the header alone; wires end at its sides
    };
    Q_ENUM(PortListMode)

    OssNgExtendedNode();
    ~OssNgExtendedNode() override;

    PortListMode portListMode() const { return m_mode; }

    /// Announces nothing.
    void setPortListMode(PortListMode mode);
    /// To the next mode that shows something else, as the user's click does. Announced.
    void cyclePortListMode();
    /// Between the full list and the header alone, as the user's command does. Announced.
    void togglePortVisibility();
    /// The outputs as the output menu lists them: names that are listed first, then the rest.
    QStringList outputPortList() const;

    /// Hidden at first. The index is for setIconVisible(); -1 when there is no such icon.
    int addIcon(const QString &name);
    void setIconVisible(int index, bool visible);
    bool isIconVisible(int index) const;

    /// Puts input and output ports of the given names into one cluster.
    void setPortCluster(const QString &cluster, const QStringList &inputs,
                        const QStringList &outputs = {});
    void clearPortClusters();

    bool hasPortClusters() const
    {
        return !m_inputClusters.isEmpty() || !m_outputClusters.isEmpty();
    }

    bool isInputInCluster(const QString &input) const { return m_inputClusters.contains(input); }

    /// Brings the row of the input's cluster up to date after its connections changed.
    void refreshCluster(const QString &input);

    int type() const override { return Type; }

    bool clickAt(const QPointF &local) override;
    QString toolTipAt(const QPointF &local) const override;
    void copyStateFrom(const OssNgNode *other) override;

Q_SIGNALS:
    /// The user changed the mode on the item. The item has the new mode already.
    void nodePortListModeChanged(int mode);

protected:
    bool isPortListed(const OssNgPort &port, Side side) const override;
    QString portRow(const OssNgPort &port, Side side) const override;

    bool portsAlongEdges() const override { return m_mode == NoPortList; }

    qreal headerExtra() const override;
    void paintHeaderExtra(QPainter *painter, const QRectF &area) const override;

private:
    struct Icon
    {
        QString name;
        bool visible;
    };

    void changeMode(PortListMode mode);
    QRectF modeButton() const;

    QVector<Icon> m_icons;
    QHash<QString, QString> m_inputClusters;
    QHash<QString, QString> m_outputClusters;
    PortListMode m_mode = Expanded;
};

Q_DECLARE_METATYPE(OssNgExtendedNode::PortListMode)
