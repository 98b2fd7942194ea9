#include "Ossa/Painting/PaintSession.h"

#include "Ossa/Painting/PaintNodes.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"

#include <algorithm>

// Several nodes that are painted on at once.

namespace {

// A stroke changes nothing but the color until one says what else.
OssColor usualAlong(const OssSnImageSetNodeBase *node)
{
    const double usual = PaintNodes::usualOf(node).value_or(0.5);
    return {usual, usual, usual};
}

std::array<float, 3> toArray(const OssColor &color)
{
    return {float(color.red()), float(color.green()), float(color.blue())};
}

} // namespace

std::vector<PaintSession *> PaintSession::inUse() const
{
    std::vector<PaintSession *> used;
    for (const auto &along : m_along) {
        if (along->node())
            used.push_back(along.get());
    }
    return used;
}

/// One that has nothing to do.
PaintSession *PaintSession::spare()
{
    for (const auto &along : m_along) {
        if (!along->node() && along->m_buffer.isEmpty())
            return along.get();
    }
    m_along.push_back(std::unique_ptr<PaintSession>(new PaintSession(this)));
    PaintSession *made = m_along.back().get();
    connect(made, &PaintSession::stateChanged, this, &PaintSession::stateChanged);
    return made;
}

bool PaintSession::setAlong(const QVector<OssSnImageSetNodeBase *> &nodes)
{
    end();
    // Paint of a node is in one place: what others hold of these goes into the images first.
    for (const auto &along : m_along) {
        const bool stays = along->node() && nodes.contains(along->node());
        if (!stays && !along->m_buffer.isEmpty() && !along->settle())
            return false;
        if (!stays)
            along->setNode(nullptr);
    }
    for (OssSnImageSetNodeBase *node : nodes) {
        if (!node || node == m_node || along().contains(node))
            continue;
        PaintSession *other = spare();
        const OssColor usual = usualAlong(node);
        other->m_ownColor = toArray(m_colorsAlong.value(node->imageSet(), usual));
        other->m_ownSecond = toArray(m_secondsAlong.value(node->imageSet(), usual));
        other->setNode(node);
    }
    Q_EMIT stateChanged();
    return true;
}

QVector<OssSnImageSetNodeBase *> PaintSession::along() const
{
    QVector<OssSnImageSetNodeBase *> nodes;
    for (const PaintSession *along : inUse())
        nodes.append(along->node());
    return nodes;
}

OssColor PaintSession::colorAlong(const OssSnImageSetNodeBase *node, ColorOf of) const
{
    for (const PaintSession *along : inUse()) {
        const auto &color = of == ColorOf::Strokes ? along->m_ownColor : along->m_ownSecond;
        if (along->node() == node)
            return {double(color[0]), double(color[1]), double(color[2])};
    }
    return {};
}

void PaintSession::setColorAlong(const OssSnImageSetNodeBase *node, const OssColor &color,
                                 ColorOf of)
{
    for (PaintSession *along : inUse()) {
        if (along->node() == node)
            (of == ColorOf::Strokes ? along->m_ownColor : along->m_ownSecond) = toArray(color);
    }
    (of == ColorOf::Strokes ? m_colorsAlong : m_secondsAlong).insert(node->imageSet(), color);
    Q_EMIT stateChanged();
}

void PaintSession::show(const OssSnImageSetNodeBase *node)
{
    m_shown = this;
    for (PaintSession *along : inUse()) {
        if (along->node() == node)
            m_shown = along;
    }
}

bool PaintSession::hasPaint() const
{
    return !m_buffer.isEmpty()
           || std::any_of(m_along.cbegin(), m_along.cend(),
                          [](const auto &along) { return along->hasPaint(); });
}

/// Whether what strokes need of the object is there for all of them.
bool PaintSession::areReady()
{
    for (PaintSession *along : inUse()) {
        along->m_scale = double(along->texelsAcross()) / texelsAcross();
        if (!surface() || along->surface())
            continue;
        along->wantSurface();
        OssStatusManager::instance()->showMessage(
            tr("The object is being made ready to be painted on"));
        return false;
    }
    return true;
}

PaintStart PaintSession::startOf(const PaintSession &along, const PaintStart &start) const
{
    PaintStart other = start;
    other.pixel *= along.m_scale;
    return other;
}

void PaintSession::clear()
{
    const OssUndoManager::AutoMacro macro(tr("Clear Paint"));
    clearOwn();
    for (const auto &along : m_along)
        along->clearOwn();
}

OssResult PaintSession::bake()
{
    end();
    if (std::none_of(m_along.cbegin(), m_along.cend(),
                     [](const auto &along) { return along->hasPaint(); }))
        return bakeOwn();
    const OssUndoManager::AutoMacro macro(tr("Bake Paint"));
    OssResult baked = bakeOwn();
    for (const auto &along : m_along) {
        if (baked)
            baked = along->bakeOwn();
    }
    return baked;
}
