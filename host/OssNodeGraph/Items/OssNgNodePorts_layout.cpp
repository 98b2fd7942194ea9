#include "OssNodeGraph/Items/OssNgNodePorts.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Drawing/OssNgText.h"

#include <algorithm>

namespace {

constexpr qreal LabelGap = 18.0;   ///< between the label of an input and that of an output
constexpr qreal MostSpread = 18.0; ///< between ports along an edge
constexpr qreal FirstRowY = OssNgStyle::Margin + OssNgStyle::HeaderHeight + OssNgStyle::FirstRow;

/// How many rows the listed ports reach down to.
int rowsOf(const QVector<OssNgPort> &ports)
{
    int rows = 0;
    for (const OssNgPort &port : ports) {
        if (port.listed)
            rows = std::max(rows,
                            1 + qRound((port.position.y() - FirstRowY) / OssNgStyle::RowHeight));
    }
    return rows;
}

} // namespace

bool OssNgNodePorts::isPortListed(const OssNgPort &, Side) const
{
    return true;
}

QString OssNgNodePorts::portRow(const OssNgPort &, Side) const
{
    return {};
}

int OssNgNodePorts::rowCount() const
{
    return portsAlongEdges() ? 0 : std::max(rowsOf(inputPorts()), rowsOf(outputPorts()));
}

void OssNgNodePorts::placePortsInRows()
{
    for (const Side side : {Side::Input, Side::Output}) {
        QHash<QString, qreal> shared;
        int row = 0;
        for (OssNgPort &port : ports(side)) {
            port.listed = isPortListed(port, side);
            port.labelled = true;
            port.position = {OssNgStyle::Margin,
                             OssNgStyle::Margin + OssNgStyle::HeaderHeight / 2.0};
            if (!port.listed)
                continue;
            const QString key = portRow(port, side);
            const qreal y = FirstRowY + row * OssNgStyle::RowHeight;
            if (!key.isEmpty() && shared.contains(key)) {
                port.position.setY(shared.value(key));
                port.labelled = false;
                continue;
            }
            port.position.setY(y);
            if (!key.isEmpty())
                shared.insert(key, y);
            ++row;
        }
    }
}

void OssNgNodePorts::placePortsAlongEdges()
{
    for (const Side side : {Side::Input, Side::Output}) {
        QVector<OssNgPort> &all = ports(side);
        const qreal spread = std::min(MostSpread, (OssNgStyle::MinimumWidth - 24.0)
                                                      / std::max(1, all.size() - 1));
        for (int i = 0; i < all.size(); ++i) {
            OssNgPort &port = all[i];
            port.listed = true;
            port.labelled = false;
            const OssNgPortList::Stub *stub = list(side).stub(port.name);
            const qreal x = stub ? stub->first.x() : spread * (i - (all.size() - 1) / 2.0);
            port.position = {x, OssNgStyle::Margin};
        }
    }
}

qreal OssNgNodePorts::rowsWidth() const
{
    if (!m_labelsVisible || portsAlongEdges())
        return 0.0;
    QVector<qreal> inputs;
    for (int i = 0; i < inputPorts().size(); ++i) {
        const OssNgPort &port = inputPorts()[i];
        if (!port.listed || !port.labelled)
            continue;
        inputs.append(OssNgText::width(OssNgText::Role::Label, portLabel(i, Side::Input))
                      + std::max(0.0, m_inputs.textPosition(port.name)));
    }
    qreal widest = 0.0;
    for (const qreal width : qAsConst(inputs))
        widest = std::max(widest, width + 2 * OssNgStyle::LabelInset);
    if (outputPorts().size() < 2)
        return widest;
    int row = 0;
    for (int i = 0; i < outputPorts().size(); ++i) {
        const OssNgPort &port = outputPorts()[i];
        if (!port.listed || !port.labelled)
            continue;
        const qreal width = OssNgText::width(OssNgText::Role::Label, portLabel(i, Side::Output));
        const qreal beside = inputs.value(row++, -LabelGap);
        widest = std::max(widest, width + beside + LabelGap + 2 * OssNgStyle::LabelInset);
    }
    return widest;
}
