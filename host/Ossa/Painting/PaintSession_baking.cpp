#include "Ossa/Painting/PaintSession.h"

#include "Ossa/Painting/PaintNodes.h"
#include "Ossa/Painting/PaintPreferences.h"
#include "Ossa/Painting/PaintStep.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProjectManager.h"

// All paint at once: baked, cleared, gone with its node.

void PaintSession::removeAll(Notice notice)
{
    std::vector<OssEvStroke::Change> changes;
    Tiles nothing;
    for (const auto &entry : m_buffer.tiles()) {
        changes.push_back({entry.first, entry.second, nullptr});
        nothing.emplace_back(entry.first, nullptr);
    }
    setTiles(m_images, m_buffer.resolution(), nothing, notice);
    record(changes, notice == Show ? PaintStep::Clear : PaintStep::Bake);
}

void PaintSession::clearOwn()
{
    end();
    if (!m_buffer.isEmpty())
        removeAll(Show);
}

/// An edit ends: if it took the painted node away nobody sees its paint any more.
void PaintSession::letGo()
{
    if (m_buffer.isEmpty() || m_stroke || m_isBusy || !m_painted)
        return;
    const OssShaderNetwork *network = m_painted->network();
    const bool isThere = network && !network->rootNetwork()->parentGroupNode();
    if (!isThere && !PaintNodes::find(OssProjectManager::instance()->currentProject(), m_images))
        removeAll(Show);
}

OssResult PaintSession::bakeOwn()
{
    end();
    if (m_buffer.isEmpty() || !m_images || m_isBusy)
        return {};
    QMap<int, QString> pixels;
    m_isBusy = true;
    const OssResult composed = m_composer.compose(m_buffer, m_images, &pixels);
    m_isBusy = false;
    if (!composed || m_buffer.isEmpty() || !m_images)
        return composed;
    const OssUndoManager::AutoMacro macro(tr("Bake Paint"));
    m_images->setPixels(pixels);
    removeAll(node() ? Quietly : Show); // a node that is gone shows no images
    return {};
}

bool PaintSession::settle()
{
    if (!PaintPreferences::instance()->asksBeforeBaking())
        return bakeOrTell();
    const auto answer = OssMessageBox::question(
        nullptr, tr("Bake Paint"),
        tr("There is paint on \"%1\" that is not in its images yet. Do you want to bake it? "
           "Otherwise it is cleared.")
            .arg(m_images ? m_images->name() : QString()),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
    if (answer == QMessageBox::Cancel)
        return false;
    if (answer == QMessageBox::No) {
        clearOwn();
        return true;
    }
    return bakeOrTell();
}

bool PaintSession::bakeOrTell()
{
    const OssResult baked = bakeOwn();
    if (!baked)
        OssMessageBox::warning(nullptr, tr("Bake Paint"), baked.error());
    return baked.ok();
}

void PaintSession::handleBakeBehavior(const OssImageSet *images)
{
    end();
    for (const auto &along : m_along)
        along->handleBakeBehavior(images);
    if (!images || images != m_images || m_buffer.isEmpty() || m_wasRefused)
        return;
    if (PaintPreferences::instance()->asksBeforeBaking()) {
        const auto answer = OssMessageBox::question(
            nullptr, tr("Bake Paint"),
            tr("There is paint on \"%1\" that is not in its images yet. Do you want to bake it? "
               "Otherwise it is left out, and stays for later.")
                .arg(images->name()),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
        m_wasRefused = answer != QMessageBox::Yes;
        if (m_wasRefused) {
            m_images->setLivePaint(nullptr); // what reads the images now is to have none
            return;
        }
    }
    bakeOrTell();
}

void PaintSession::composeInAdvance()
{
    if (m_buffer.isEmpty() || !m_images)
        return;
    if (m_isBusy || m_stroke || !m_composer.start(m_buffer, m_images))
        m_rest.start();
}
