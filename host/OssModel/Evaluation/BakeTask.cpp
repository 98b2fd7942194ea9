#include "OssModel/Evaluation/BakeTask.h"

#include "OssModel/Graph/OssBakeReport.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnResultKey.h"

bool BakeTask::isThere() const
{
    return node() && node()->network();
}

// --- bake points

BakePointTask::BakePointTask(OssSnBakePointNode *node, const BakeChoice &choice)
    : m_node(node)
    , m_choice(choice)
{
}

const OssSnBaseNode *BakePointTask::node() const
{
    return m_node;
}

void BakePointTask::knowFiles(const std::function<bool()> &goesOn) const
{
    BakePointBake::knowFiles({m_node}, goesOn);
}

bool BakePointTask::isWanted(OssBakeReport *report) const
{
    QStringList OssBakeReport::*list = m_choice.listFor(m_node);
    const bool isBaked = list == &OssBakeReport::baked;
    if (isBaked && (m_choice.again || !m_node->arePixelsUpToDate()))
        return true;
    if (isBaked)
        BakePointBake::fillGeoChannel(m_node);
    (report->*list).append(m_node->name());
    return false;
}

OssResult BakePointTask::prepare()
{
    m_bake = {};
    return BakePointBake::prepare(m_node, &m_bake);
}

bool BakePointTask::isCurrent() const
{
    return m_bake.isCurrent();
}

OssResult BakePointTask::take(OssBakeReport *report)
{
    const OssResult taken = m_bake.take();
    if (taken)
        report->baked.append(m_node->name());
    return taken;
}

OssResult BakePointTask::tell(const OssResult &baked) const
{
    return m_node ? BakePointBake::tell(m_node, baked) : baked;
}

// --- for somebody else

NodeBakeTask::NodeBakeTask(OssNodeBake bake)
    : m_bake(std::move(bake))
{
}

const OssSnBaseNode *NodeBakeTask::node() const
{
    return m_bake.node;
}

void NodeBakeTask::knowFiles(const std::function<bool()> &goesOn) const
{
    OssSnResultKey::of(m_bake.node, m_bake.outputPoint);
    OssFileWatch::instance()->settle(goesOn);
}

bool NodeBakeTask::isWanted(OssBakeReport * /*report*/) const
{
    return true;
}

OssResult NodeBakeTask::prepare()
{
    m_pixels = {};
    const OssResult prepared = m_bake.prepare(&m_pixels);
    if (isThere()) {
        m_key = OssSnResultKey::of(m_bake.node, m_bake.outputPoint);
        m_patches = m_pixels.files.keys();
    }
    return prepared;
}

bool NodeBakeTask::isCurrent() const
{
    return isThere()
           && OssEvaluationService::instance()->patches(m_bake.node->network()->geoEntity())
                  == m_patches
           && OssSnResultKey::of(m_bake.node, m_bake.outputPoint) == m_key;
}

OssResult NodeBakeTask::take(OssBakeReport *report)
{
    const OssResult taken = m_bake.take(m_pixels);
    if (taken)
        report->forOthers.append(m_bake.message);
    return taken;
}

OssResult NodeBakeTask::tell(const OssResult &baked) const
{
    if (baked.ok() || baked.isCancelled() || !m_bake.node)
        return baked;
    return OssResult::failure(m_bake.node->name() + QStringLiteral(": ") + baked.error());
}
