#include "Ossa/Painting/PaintSession.h"

#include "Ossa/Painting/PaintNodes.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssShadingContext.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

// What a crash must not cost.

// Only the first stroke needs a copy of the project: it says where all that follow will be found.
void PaintSession::keep(const Tiles &tiles)
{
    if (m_buffer.isEmpty() || !m_images)
        return;
    const bool isFirst = m_journal.name().isEmpty();
    if (isFirst)
        m_journal.begin(m_buffer.resolution());
    m_journal.write(tiles);
    m_images->setUnbakedPaint(m_journal.name());
    if (isFirst)
        Q_EMIT OssProjectManager::instance()->copyWanted();
}

/// Takes up the paint that the project names: it was not baked when its session ended.
void PaintSession::recover()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const QList<OssImageSet *> sets = group->network()->shadingContext()->imageSets();
        for (OssImageSet *images : sets) {
            const QString name = images->unbakedPaint();
            if (name.isEmpty())
                continue;
            PaintSession *taker = m_buffer.isEmpty() ? this : spare();
            taker->takeUp(images, name);
        }
    }
}

void PaintSession::takeUp(OssImageSet *images, const QString &name)
{
    OssEvPaintBuffer paint;
    const OssResult read = PaintJournal::read(name, &paint);
    if (!read) {
        images->setUnbakedPaint({});
        OssDebug("PaintSession", __LINE__, "[ !! ] %s", qPrintable(read.error()));
        OssStatusManager::instance()->showMessage(read.error());
        return;
    }
    m_images = images;
    m_buffer = std::move(paint);
    m_journal.resume(name, m_buffer.resolution());
    noteChange();
    // It is painted on as before, also with others.
    m_painted = PaintNodes::find(OssProjectManager::instance()->currentProject(), images);
    m_node = m_painted;
    Q_EMIT stateChanged();
}
