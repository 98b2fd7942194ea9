#include "LimitScene.h"

#include <QGraphicsItem>
#include <QPainter>
#include <QPixmapCache>
#include <QStaticText>
#include <QWidget>

#include <cmath>

namespace {

const QRectF Body(6.0, 6.0, 138.0, 114.0);

QFont plainFont(int size, QFont::Weight weight)
{
    QFont result(QStringLiteral("Inter"));
    result.setPixelSize(size);
    result.setWeight(weight);
    return result;
}

const QStaticText &label(int index)
{
    static const QStaticText labels[] = {
        QStaticText(QStringLiteral("Base")), QStaticText(QStringLiteral("Over")),
        QStaticText(QStringLiteral("Mask")), QStaticText(QStringLiteral("Amount"))};
    return labels[index];
}

} // namespace

class LimitScene::Wire : public QGraphicsItem
{
public:
    Wire(Node *source, Node *destination, int input)
        : m_source(source)
        , m_destination(destination)
        , m_input(input)
    {
        setZValue(-1.0);
    }

    void follow();

    QRectF boundingRect() const override { return m_bounds; }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *) override
    {
        const qreal zoom = painter->worldTransform().m11();
        if (zoom < 0.25) {
            painter->setPen(QPen(QColor(0xe0, 0xb3, 0x4a), 0.0));
            painter->drawLine(m_start, m_end);
            return;
        }
        QPen pen(QColor(0xe0, 0xb3, 0x4a), std::max(2.0, 1.0 / zoom));
        pen.setCapStyle(Qt::RoundCap);
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        QPainterPath path(m_start);
        const qreal reach = std::max(50.0, std::abs(m_end.x() - m_start.x()) / 2.0);
        path.cubicTo(m_start + QPointF(reach, 0), m_end - QPointF(reach, 0), m_end);
        painter->drawPath(path);
    }

private:
    Node *m_source;
    Node *m_destination;
    int m_input;
    QPointF m_start;
    QPointF m_end;
    QRectF m_bounds;
};

class LimitScene::Node : public QGraphicsItem
{
public:
    Node(const QString &title, const QColor &color)
        : m_title(title)
        , m_color(color)
    {
    }

    std::vector<Wire *> wires;

    QRectF boundingRect() const override { return {0.0, 0.0, 150.0, 126.0}; }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *) override
    {
        const QTransform world = painter->worldTransform();
        if (world.m11() < 0.25) {
            painter->fillRect(Body, m_color);
            return;
        }
        if (world.m11() < 0.5) {
            painter->fillRect(Body, QColor(0x2b, 0x2e, 0x34));
            painter->fillRect(QRectF(6, 6, 138, 26), m_color);
            return;
        }
        if (world.m11() != 1.0) {
            paintWhole(painter);
            return;
        }
        if (m_picture.isNull()) {
            m_picture = QPixmap(150, 126);
            m_picture.fill(Qt::transparent);
            QPainter inner(&m_picture);
            inner.setRenderHint(QPainter::Antialiasing);
            paintWhole(&inner);
        }
        painter->drawPixmap(0, 0, m_picture);
    }

private:
    void paintWhole(QPainter *painter) const
    {
        static const QFont titleFont = plainFont(12, QFont::DemiBold);
        static const QFont labelFont = plainFont(11, QFont::Normal);
        painter->setPen(QPen(QColor(0x3b, 0x3f, 0x47), 1.0));
        painter->setBrush(QColor(0x2b, 0x2e, 0x34));
        painter->drawRoundedRect(Body, 8.0, 8.0);
        painter->setPen(Qt::NoPen);
        painter->setBrush(m_color);
        painter->drawRoundedRect(QRectF(6, 6, 138, 26), 8.0, 8.0);
        painter->setPen(Qt::white);
        painter->setFont(titleFont);
        painter->drawStaticText(QPointF(18, 11), QStaticText(m_title));
        painter->setFont(labelFont);
        painter->setPen(QColor(0xb6, 0xbc, 0xc6));
        for (int i = 0; i < 4; ++i)
            painter->drawStaticText(QPointF(17, 39 + 20 * i), label(i));
        painter->setPen(QPen(QColor(0x1b, 0x1d, 0x20), 1.5));
        painter->setBrush(QColor(0xe0, 0xb3, 0x4a));
        for (int i = 0; i < 4; ++i)
            painter->drawEllipse(QPointF(6, 46 + 20 * i), 5.0, 5.0);
        painter->drawEllipse(QPointF(144, 46), 5.0, 5.0);
    }

    QString m_title;
    QColor m_color;
    QPixmap m_picture;
};

void LimitScene::Wire::follow()
{
    prepareGeometryChange();
    m_start = m_source->pos() + QPointF(144, 46);
    m_end = m_destination->pos() + QPointF(6, 46 + 20 * m_input);
    m_bounds = QRectF(m_start, m_end).normalized().adjusted(-60, -10, 60, 10);
}

LimitScene::LimitScene(int count)
{
    static const QColor colors[] = {QColor(0x4f, 0x8a, 0x8b), QColor(0x6a, 0x6f, 0xb5),
                                    QColor(0xb0, 0x8a, 0x3c), QColor(0xc8, 0x70, 0x4a),
                                    QColor(0xa0, 0x58, 0x8f)};
    const int columns = std::max(1, int(std::sqrt(double(count))));
    for (int i = 0; i < count; ++i) {
        auto *node = new Node(QStringLiteral("Node %1").arg(i), colors[i % 5]);
        node->setPos(250.0 * (i % columns), 160.0 * (i / columns));
        addItem(node);
        m_nodes.push_back(node);
        if (i == 0)
            continue;
        Node *source = m_nodes[std::size_t(i >= columns ? i - columns : i - 1)];
        auto *wire = new Wire(source, node, i >= columns ? i % 2 : 0);
        source->wires.push_back(wire);
        node->wires.push_back(wire);
        wire->follow();
        addItem(wire);
    }
}

void LimitScene::moveNode(int index, const QPointF &offset)
{
    Node *node = m_nodes[std::size_t(index)];
    node->setPos(node->pos() + offset);
    for (Wire *wire : node->wires)
        wire->follow();
}
