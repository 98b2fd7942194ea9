#include "Ossa/Viewer/DecalHandle.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssInterface/Properties/OssAttributeEdit.h"
#include "OssModel/Evaluation/OssViewedNode.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QKeyEvent>
#include <QLineF>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace {

constexpr double reach = 9.0;             ///< pixels about a mark that take it
constexpr double stalk = 26.0;            ///< pixels from the upper edge to the knob
constexpr double half = 4.0;              ///< pixels: of a mark
constexpr float turnStep = 0.2617993878F; ///< radians: 15 degrees
const QColor lineColor(0x5a, 0xa9, 0xff);
const QColor behindColor(0x5a, 0xa9, 0xff, 110);
const QColor shadeColor(0, 0, 0, 150);

bool isDecal(const OssSnBaseNode *node)
{
    return node && node->nodeType() && node->nodeType()->kernel == QLatin1String("decal");
}

glm::vec3 through(const glm::mat4 &matrix, const glm::vec3 &place)
{
    return glm::vec3(matrix * glm::vec4(place, 1.0F));
}

} // namespace

DecalHandle::DecalHandle(QWidget *view, Sight sight)
    : QObject(view)
    , m_view(view)
    , m_sight(std::move(sight))
{
    view->installEventFilter(this);
    const OssUndoManager *undo = OssUndoManager::instance();
    connect(undo, &OssUndoManager::aboutToEdit, this, &DecalHandle::finish);
    connect(undo, &OssUndoManager::takingBack, this,
            [this](bool *taken) { *taken = takeBack() || *taken; });
    connect(undo, &OssUndoManager::changed, view, qOverload<>(&QWidget::update));
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::currentViewNetworkChanged, this, &DecalHandle::watchNetwork);
    watchNetwork();
}

DecalHandle::~DecalHandle()
{
    finish();
}

void DecalHandle::watchNetwork()
{
    disconnect(m_selection);
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentViewNetwork();
    if (network)
        m_selection = connect(network, &OssShaderNetwork::nodeSelectionChanged, m_view,
                              qOverload<>(&QWidget::update));
    m_view->update();
}

void DecalHandle::setSeen(const std::shared_ptr<const OssEvMesh> &mesh, const OssGeoEntity *entity)
{
    if (mesh != m_mesh || entity != m_entity)
        finish();
    m_mesh = mesh;
    m_entity = entity;
}

void DecalHandle::setActive(bool active)
{
    m_isActive = active;
    if (!active) {
        finish();
        hover(Part::None);
    }
}

OssSnBaseNode *DecalHandle::node() const
{
    if (!m_isActive || !m_mesh || !m_entity)
        return nullptr;
    QList<OssSnBaseNode *> decals;
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentViewNetwork();
    const QList<OssSnBaseNode *> selected = network ? network->selectedNodes()
                                                    : QList<OssSnBaseNode *>();
    std::copy_if(selected.cbegin(), selected.cend(), std::back_inserter(decals), isDecal);
    if (decals.isEmpty()) {
        const OssSnBaseNode *viewed = OssViewedNode::now().node;
        if (isDecal(viewed) && viewed->network())
            decals.append(viewed->network()->node(viewed->name()));
    }
    const bool isOne = decals.size() == 1 && decals.first()->network()
                       && decals.first()->network()->geoEntity() == m_entity;
    return isOne ? decals.first() : nullptr;
}

// --- where it is

bool DecalHandle::isInWorld(const OssSnBaseNode &node) const
{
    return node.attribute(QStringLiteral("Space")).toString() == QLatin1String("World");
}

glm::mat4 DecalHandle::space(const OssSnBaseNode &node) const
{
    return isInWorld(node) ? glm::mat4(1.0F) : ScenePick::worldOf(*m_mesh);
}

ScenePick::Ray DecalHandle::rayWithin(const OssSnBaseNode &node, const QPointF &view) const
{
    const ScenePick::Ray ray = m_sight.ray(view);
    const glm::mat4 back = glm::inverse(space(node));
    return {through(back, ray.from), glm::vec3(back * glm::vec4(ray.direction, 0.0F))};
}

DecalHandle::Marks DecalHandle::marks(const OssSnBaseNode &node) const
{
    Marks marks;
    marks.isSeen = true;
    const DecalPlace decal = DecalPlace::of(node);
    const glm::mat4 toClip = m_sight.toClip() * space(node);
    const auto project = [&](const glm::vec2 &at) {
        const glm::vec4 clip = toClip * glm::vec4(decal.at(at), 1.0F);
        if (clip.w <= 0.0F) {
            marks.isSeen = false;
            return QPointF();
        }
        return QPointF(double(clip.x / clip.w * 0.5F + 0.5F) * m_view->width(),
                       double(0.5F - clip.y / clip.w * 0.5F) * m_view->height());
    };
    for (const glm::vec2 &at :
         {glm::vec2(-1, -1), glm::vec2(1, -1), glm::vec2(1, 1), glm::vec2(-1, 1)})
        marks.corners.append(project(at));
    for (const glm::vec2 &at :
         {glm::vec2(1, 0), glm::vec2(0, 1), glm::vec2(-1, 0), glm::vec2(0, -1)})
        marks.sides.append(project(at));
    marks.middle = project({0.0F, 0.0F});
    QLineF upwards(marks.middle, marks.sides[1]);
    if (upwards.length() < 1.0)
        upwards.setP2(marks.middle - QPointF(0.0, 1.0));
    upwards.setLength(upwards.length() + stalk);
    marks.knob = upwards.p2();
    const ScenePick::Ray ray = rayWithin(node, marks.middle);
    marks.facesAway = glm::dot(ray.direction, decal.out()) > 0.0F;
    return marks;
}

DecalHandle::Part DecalHandle::partAt(const QPointF &view) const
{
    const OssSnBaseNode *decal = node();
    const Marks seen = decal ? marks(*decal) : Marks();
    if (!seen.isSeen)
        return Part::None;
    const auto isAt = [&view](const QPointF &mark) {
        return QLineF(view, mark).length() <= reach;
    };
    if (seen.facesAway)
        return isAt(seen.middle) ? Part::Middle : Part::None;
    if (isAt(seen.knob))
        return Part::Knob;
    if (isAt(seen.middle))
        return Part::Middle;
    if (std::any_of(seen.corners.cbegin(), seen.corners.cend(), isAt))
        return Part::Corner;
    for (int k = 0; k < seen.sides.size(); ++k) {
        if (isAt(seen.sides[k]))
            return k % 2 == 0 ? Part::Across : Part::Upwards;
    }
    return seen.corners.containsPoint(view, Qt::OddEvenFill) ? Part::Middle : Part::None;
}

// --- the gesture

bool DecalHandle::begin(Part part, const QPointF &view)
{
    OssSnBaseNode *decal = node();
    for (int k = 0; k < DecalPlace::attributeCount; ++k) {
        const QString lock = decal->lockOf(QLatin1String(DecalPlace::attribute(k)));
        if (lock.isEmpty())
            continue;
        OssStatusManager::instance()->showMessage(
            tr("%1 cannot be edited: %2").arg(decal->name(), lock));
        return false;
    }
    m_start = DecalPlace::of(*decal);
    m_offset = marks(*decal).middle - view;
    const ScenePick::Ray ray = rayWithin(*decal, view);
    if (part != Part::Middle && !m_start.onPlane(ray.from, ray.direction, &m_taken))
        return false;
    const QString title = part == Part::Middle ? tr("Move %1")
                          : part == Part::Knob ? tr("Turn %1")
                                               : tr("Resize %1");
    auto macro = std::make_unique<OssUndoManager::AutoMacro>(title.arg(decal->name()));
    for (int k = 0; k < DecalPlace::attributeCount; ++k) {
        m_edits.push_back(
            std::make_unique<OssAttributeEdit>(decal, QLatin1String(DecalPlace::attribute(k))));
        m_edits.back()->begin();
    }
    m_macro = std::move(macro);
    m_node = decal;
    m_part = part;
    return true;
}

DecalPlace DecalHandle::moved(const QPointF &view, bool turns) const
{
    const auto hit = ScenePick::hitOf(*m_mesh, m_sight.ray(view + m_offset));
    if (!hit)
        return DecalPlace::of(*m_node); // beside the object
    glm::vec3 place = hit->place;
    glm::vec3 normal = hit->normal;
    if (isInWorld(*m_node)) {
        const glm::mat4 world = ScenePick::worldOf(*m_mesh);
        place = through(world, place);
        normal = glm::normalize(glm::transpose(glm::inverse(glm::mat3(world))) * normal);
    }
    if (turns)
        return m_start.laidOn(place, normal);
    DecalPlace same = m_start;
    same.middle = place;
    return same;
}

DecalPlace DecalHandle::dragged(const QMouseEvent &event) const
{
    const bool isShift = event.modifiers() & Qt::ShiftModifier;
    if (m_part == Part::Middle)
        return moved(event.localPos(), !isShift);
    const ScenePick::Ray ray = rayWithin(*m_node, event.localPos());
    glm::vec2 now(0.0F);
    if (!m_start.onPlane(ray.from, ray.direction, &now))
        return DecalPlace::of(*m_node);
    if (m_part == Part::Knob) {
        const float angle = std::atan2(now.y, now.x) - std::atan2(m_taken.y, m_taken.x);
        return m_start.turned(isShift ? std::round(angle / turnStep) * turnStep : angle);
    }
    const auto factor = [](float after, float before) {
        return before != 0.0F ? std::abs(double(after) / double(before)) : 1.0;
    };
    if (m_part == Part::Corner)
        return m_start.scaled(factor(glm::length(now), glm::length(m_taken)));
    return m_part == Part::Across ? m_start.stretched({factor(now.x, m_taken.x), 1.0})
                                  : m_start.stretched({1.0, factor(now.y, m_taken.y)});
}

bool DecalHandle::press(const QMouseEvent &event)
{
    m_isSwallowing = false;
    const bool isPlain = event.button() == Qt::LeftButton
                         && !(event.modifiers() & (Qt::AltModifier | Qt::ControlModifier));
    const Part part = isPlain ? partAt(event.localPos()) : Part::None;
    if (part == Part::None)
        return isDragged(); // another button while it is in hand
    m_isSwallowing = !begin(part, event.localPos());
    return true;
}

bool DecalHandle::move(const QMouseEvent &event)
{
    if (!(event.buttons() & Qt::LeftButton)) {
        finish(); // the release went elsewhere
        m_isSwallowing = false;
        hover(event.buttons() == Qt::NoButton ? partAt(event.localPos()) : Part::None);
        return false;
    }
    if (!isDragged())
        return m_isSwallowing;
    if (!m_node) {
        finish();
        return true;
    }
    const QVector<double> before = DecalPlace::of(*m_node).values();
    const QVector<double> after = dragged(event).values();
    for (int k = 0; k < after.size(); ++k) {
        if (std::abs(after[k] - before[k]) > 1e-7)
            m_edits[std::size_t(k)]->drag(after[k]);
    }
    m_view->update();
    return true;
}

void DecalHandle::finish()
{
    // Each holds a macro within the one before it.
    while (!m_edits.empty()) {
        m_edits.back()->end();
        m_edits.pop_back();
    }
    m_macro.reset();
    m_part = Part::None;
    m_node = nullptr;
}

bool DecalHandle::takeBack()
{
    if (!isDragged())
        return false;
    std::for_each(m_edits.rbegin(), m_edits.rend(), [](const auto &edit) { edit->takeBack(); });
    finish();
    m_isSwallowing = true;
    m_view->update();
    return true;
}

bool DecalHandle::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_view)
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return press(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseMove:
        return move(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease: {
        if (static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
            return isDragged();
        const bool wasIn = isDragged() || std::exchange(m_isSwallowing, false);
        finish();
        return wasIn;
    }
    case QEvent::KeyPress:
        return static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape && takeBack();
    case QEvent::Wheel:
        return isDragged(); // it is held where the camera stands
    case QEvent::FocusOut:
    case QEvent::Hide:
        finish();
        break;
    case QEvent::Leave:
        hover(Part::None);
        break;
    default:
        break;
    }
    return false;
}

// --- what is seen

void DecalHandle::hover(Part part)
{
    if (part == m_hovered)
        return;
    m_hovered = part;
    m_view->update();
    if (part == Part::None) {
        if (m_ownCursor)
            m_view->setCursor(*std::exchange(m_ownCursor, std::nullopt));
        OssStatusManager::instance()->showMessage(QString());
        return;
    }
    if (!m_ownCursor)
        m_ownCursor = m_view->cursor();
    switch (part) {
    case Part::Knob:
        m_view->setCursor(Qt::PointingHandCursor);
        OssStatusManager::instance()->showMessage(
            tr("Drag to turn the decal, with Shift in steps of 15 degrees"));
        break;
    case Part::Middle:
        m_view->setCursor(Qt::SizeAllCursor);
        OssStatusManager::instance()->showMessage(
            tr("Drag to move the decal over the surface, with Shift without turning it"));
        break;
    default:
        m_view->setCursor(Qt::SizeFDiagCursor);
        OssStatusManager::instance()->showMessage(
            part == Part::Corner ? tr("Drag to make the decal larger or smaller")
                                 : tr("Drag to make the decal longer or shorter this way"));
    }
}

void DecalHandle::draw(QPainter *painter)
{
    const OssSnBaseNode *decal = node();
    const Marks seen = decal ? marks(*decal) : Marks();
    if (!seen.isSeen)
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QColor color = seen.facesAway ? behindColor : lineColor;
    const auto line = [&](const QPen &pen) {
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        painter->drawPolygon(seen.corners);
        if (!seen.facesAway)
            painter->drawLine(seen.sides[1], seen.knob);
    };
    // Dark and light, so that it is seen on any picture.
    if (!seen.facesAway)
        line(QPen(shadeColor, 3.0));
    line(QPen(color, 1.4, seen.facesAway ? Qt::DashLine : Qt::SolidLine));
    painter->setPen(QPen(shadeColor, 1.0));
    painter->setBrush(color);
    painter->drawEllipse(seen.middle, half, half);
    if (!seen.facesAway) {
        painter->drawEllipse(seen.knob, half + 1.0, half + 1.0);
        for (const QPolygonF &marks : {seen.corners, seen.sides}) {
            for (const QPointF &at : marks)
                painter->drawRect(QRectF(at.x() - half, at.y() - half, 2.0 * half, 2.0 * half));
        }
    }
    painter->restore();
}
