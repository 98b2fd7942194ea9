#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssNodeGraph/Items/OssNgNodeMarks.h"
#include "OssNodeGraph/Items/OssNgNodePorts.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QBrush>
#include <QGraphicsItem>
#include <QPixmap>
#include <QPointer>

#include <memory>

class OssNgEdge;
class OssNgNodeHelp;
class OssNgSceneIndex;

/// The picture of one node in a graph, with its ports and the wires that end at its inputs.
///
/// Whoever creates an item owns it; a scene only shows it. It works without a scene and survives
/// the death of one that lets go of its items (OssNgSceneIndex::releaseItems). It knows its
/// business object only as a QObject and keeps no hold on it.
///
/// The origin is the top-left corner of boundingRect(), which never depends on hover or selection.
/// Ports and labels are painted by the node, they are no items. What the user does is announced by
/// signals and left to the listener: a wire dropped on a port is there when the listener attaches
/// it. Setters announce nothing. GUI thread.
class OSSNODEGRAPH_EXPORT OssNgNode
    : public OssSerializableObject
    , public QGraphicsItem
    , public OssNgNodePorts
    , public OssNgNodeMarks
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)
    Q_PROPERTY(QPointF position READ pos WRITE setPosition)

public:
    enum { Type = UserType + 10 };

    /// Without a parent item and in no scene.
    OssNgNode();
    ~OssNgNode() override;

    /// Leaves the scene and drops every wire that ends here. Announces nothing; may be called
    /// again. The destructor does it too.
    void dispose();

    /// The selection of the item is passed on to it when it is an OssSerializableObject.
    void setBusinessNode(QObject *businessNode);

    QObject *businessNode() const { return m_businessNode; }

    /// Asked when the pointer rests on the node; must live as long as it is set. Null: nobody.
    void setHelp(const OssNgNodeHelp *help) { m_help = help; }

    // Look

    void setText(const QString &text);

    const QString &text() const { return m_text; }

    /// 0 plain, 3 material, 4 group, 7 multi-channel; others look plain. Shown after updateShape().
    void setShapeType(int type);

    int shapeType() const { return m_shapeType; }

    void updateShape();
    /// Header colours, top to bottom. Invalid: the colour of the category.
    void setNodeColor(const QColor &top, const QColor &bottom);
    void setCategory(const QString &category);

    const QString &category() const { return m_category; }

    /// Icon at the right of the header, moved by the offset. A null pixmap takes it away.
    void setPixmap(const QPixmap &pixmap, const QPoint &offset = {});
    /// Picture of the node's result, shown below the ports. A null pixmap takes it away.
    void setThumbnail(const QPixmap &thumbnail);
    /// What the header is filled with: a vertical gradient whose first stop is the node's colour.
    QBrush fillBrush() const;
    /// The colour that stands for the node in overviews.
    virtual QColor mainColor() const;
    /// Lays out and draws anew.
    void refresh();

    /// Scope in which many changes of one node cost one layout, at its end. Scopes do not nest.
    class OSSNODEGRAPH_EXPORT LayoutPause
    {
    public:
        explicit LayoutPause(OssNgNode *node);
        LayoutPause(const LayoutPause &) = delete;
        LayoutPause &operator=(const LayoutPause &) = delete;
        ~LayoutPause();

    private:
        OssNgNode *m_node;
    };

    /// Takes over look, shape, marks and place of another node, not its ports or business object.
    virtual void copyStateFrom(const OssNgNode *other);

    // What is told of the node besides its marks

    void setDebugColor(const QColor &color);
    /// Why the node cannot do its work, in words: its tip, and on it where there is room. Empty: it can.
    void setErrorText(const QString &reason);
    QString errorText() const;

    bool hovered() const { return m_hovered; }

    /// Announced, as no other setter's work is.
    void setHovered(bool hovered);

    void setSelected(bool selected) { QGraphicsItem::setSelected(selected); }

    // Ports and their wires

    /// The wire of the port goes with it.
    void removeInputPort(const QString &name);
    void removeOutputPort(const QString &name);
    void renameInputPort(const QString &oldName, const QString &newName);
    void renameOutputPort(const QString &oldName, const QString &newName);
    /// The header's side for a port that is not listed or not there.
    QPointF inputPortScenePos(const QString &name) const;
    QPointF outputPortScenePos(const QString &name) const;

    // Wires. Those at inputs are owned here, those at outputs by their destination.

    QList<OssNgEdge *> inputs() const { return m_inputEdges; }

    QList<OssNgEdge *> outputs() const { return m_outputEdges; }

    /// Null when nothing is attached.
    OssNgEdge *input(const QString &name) const;
    /// Shows the wire that the model has; replaces another one. The wire enters the scene that both
    /// ends are in. Null when there is no source or output name.
    OssNgEdge *attachInput(const QString &name, OssNgNode *source, const QString &outputName);
    void detachInput(const QString &name);
    /// Brings all wires of this node to where their ports are.
    void updateEdges();
    /// The wire being pulled from a port of this node; the node owns it.
    OssNgEdge *beginTemporaryEdge(const QString &portName, bool fromOutput);

    OssNgEdge *temporaryOutputEdge() const { return m_temporaryEdge.get(); }

    void removeTemporaryOutputEdge();
    /// Marks an input whose wire the user did not draw; drawn dashed and not to be picked up.
    void setVirtualInput(const QString &name, bool on);
    void removeVirtualInputEdge();
    void updateVirtualInputEdge();
    bool isVirtualInput(const QString &name) const;

    // Editing

    void savePosition() { m_savedPosition = pos(); }

    QPointF savedPosition() const { return m_savedPosition; }

    /// Moves without an announcement, to the last digit.
    virtual void setPosition(const QPointF &position);

    /// To the last digit: points themselves compare with tolerance.
    bool isAt(const QPointF &position) const { return x() == position.x() && y() == position.y(); }

    /// Asks for the node to be spliced into the wire it lies on, when a view of the scene has
    /// auto-insert on, the node is not connected yet and is not kept out.
    void processAutoinsert();
    /// The wire into which processAutoinsert() would splice, were the node not kept out; null when
    /// into none.
    OssNgEdge *autoinsertCandidate() const;

    /// Whether the node stays out of wires it is moved onto. A drag says so of nodes for which it
    /// showed no wire; the next drag forgets it.
    void keepOutOfWires(bool out) { m_keptOutOfWires = out; }

    /// Moves the node onto the wire and asks for it to be spliced in.
    void setupNodeForInsertionIntoEdge(OssNgEdge *edge);
    /// Whether a click at the point (node coordinates) means this node.
    virtual bool hitTest(const QPointF &local) const;

    // Geometry and painting

    /// The body without the margin for ports and ring. Node coordinates.
    QRectF bodyRect() const;

    QRectF boundingRect() const override { return {0.0, 0.0, m_size.width(), m_size.height()}; }

    QPainterPath shape() const override;
    bool contains(const QPointF &point) const override;

    int type() const override { return Type; }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *) override;
    /// Paints everything, vectors and text only where the device is one. Node coordinates.
    virtual void paintDetailed(QPainter *painter) const;
    /// Paints what can be told below zoom 0.5.
    virtual void paintSimple(QPainter *painter) const;
    /// What the user should read when the pointer rests at the point.
    virtual QString toolTipAt(const QPointF &local) const;
    /// A click that the node itself understands, such as one on its header's button.
    virtual bool clickAt(const QPointF &local);

    /// Drawn by the view below the wires instead of as an item above them.
    virtual bool isBackground() const { return false; }

    /// Not for use outside this library.
    OssNgSceneIndex *sceneIndex() const { return m_index; }

Q_SIGNALS:
    /// The user, or undo and redo, moved the node. Callers that place a node may emit it too.
    void posChanged(const QPointF &position);
    /// The user connected an input, or disconnected it (null source).
    void inputSourceChanged(OssNgNode *source, const QString &inputName, const QString &outputName);
    /// From the wire's destination only.
    void clickedOnDotableMarkerOnEdge(OssNgEdge *edge);
    void hoveredChanged(bool hovered);

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;

    /// Size of the body, ports placed. The base lists ports in rows below the header.
    virtual QSizeF layoutBody();
    /// Width of the marks at the right of the header.
    qreal statusWidth() const;

    /// Space that a subclass needs in the header, left of the marks.
    virtual qreal headerExtra() const { return 0.0; }

    virtual void paintHeaderExtra(QPainter *, const QRectF &) const {}

    void relayout();
    /// What is painted changed, geometry did not.
    void appearanceChanged();
    void setBodySize(const QSizeF &size);
    void paintFrame(QPainter *painter) const;
    void paintRing(QPainter *painter, const QRectF &body, qreal radius) const;
    /// Where detail is low: as wide in pixels whatever the zoom.
    static void drawThinRing(QPainter *painter, const QRectF &area, const QColor &color);

private:
    friend class OssNgEdge;
    friend class OssNgSceneIndex;

    /// What only some nodes have.
    struct Extras;

    Extras &extras();

    void portsChanged() override { refresh(); }

    void portsRepainted() override { appearanceChanged(); }

    void marksChanged() override { refresh(); }

    bool hasConsumer(const QString &output) const override;
    void renameEdges(Side side, const QString &oldName, const QString &newName);
    QPointF portPosition(Side side, const QString &name, int *hint = nullptr) const;

    void addOutputEdge(OssNgEdge *edge) { m_outputEdges.append(edge); }

    void forgetEdge(OssNgEdge *edge);
    void syncEdgeScene(OssNgEdge *edge);
    void enterScene();
    void leaveScene();
    QStringList errorLines(qreal width) const;
    qreal errorHeight(qreal width) const;
    void fitErrorText();
    qreal thumbnailHeight(qreal width) const;

    void paintHeader(QPainter *painter, const QRectF &body) const;
    void paintHeaderMarks(QPainter *painter, const QRectF &status) const;
    void paintPorts(QPainter *painter, Side side) const;
    void paintLabels(QPainter *painter, Side side) const;
    void paintStrike(QPainter *painter, const QRectF &body) const;
    void paintFoot(QPainter *painter, const QRectF &body) const;
    QRectF statusArea(const QRectF &header) const;

    QPointer<QObject> m_businessNode;
    const OssNgNodeHelp *m_help = nullptr;
    OssNgSceneIndex *m_index = nullptr; ///< cleared by the index when it dies first
    int m_indexSlot = -1;
    QString m_text;
    QString m_category;
    QList<OssNgEdge *> m_inputEdges;
    QList<OssNgEdge *> m_outputEdges;
    std::unique_ptr<OssNgEdge> m_temporaryEdge;
    std::unique_ptr<Extras> m_extras;
    QPointF m_savedPosition;
    QSizeF m_size;
    quint32 m_revision = 0; ///< of what is painted
    qint16 m_shapeType = 0;
    qint16 m_shownShape = 0;
    bool m_hovered = false;
    bool m_inPaintCache = false;
    bool m_layoutPaused = false;
    bool m_keptOutOfWires = false;
};
