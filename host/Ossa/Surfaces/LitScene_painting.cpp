#include "Ossa/Surfaces/LitScene.h"

#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <algorithm>
#include <utility>

// What is painted on, while it is.

void LitScene::setPainted(bool painted)
{
    if (painted == m_isPainted)
        return;
    m_isPainted = painted;
    follow();
    if (m_isDisplaced && !painted)
        m_displacing.start();
}

void LitScene::touch(int patch, const QRectF &area)
{
    if (!m_isActive)
        return;
    m_touched[patch] |= area;
    if (m_hand.isPainting && m_hand.isPainting()) {
        if (m_inHand.empty())
            makeWay();
        m_inHand[patch] |= area;
    }
    if (!m_touching.isActive())
        m_touching.start(0);
}

/// Maps that are being made become others with the stroke: they are begun again when it ends.
void LitScene::makeWay()
{
    for (const auto &piece : m_pieces)
        m_isPutOff = (!piece->pixels.isWhole() && piece->pixels.stopRefining()) || m_isPutOff;
}

void LitScene::takeTouches()
{
    const bool isBusy = std::any_of(m_pieces.cbegin(), m_pieces.cend(),
                                    [](const auto &piece) { return piece->pixels.isTouching(); });
    if (isBusy || m_pieces.empty()) // goes on when that is there
        return;
    const SurfacePixels::Areas areas = std::exchange(m_touched, {});
    const auto look = [this, &areas] {
        for (const auto &piece : m_pieces) {
            if (!piece->entity || piece->entity != m_pieces.front()->entity)
                continue;
            piece->pixels.touch(OssSurfaceMaps::of({piece->node, piece->output}, piece->entity),
                                areas);
        }
    };
    if (m_hand.within)
        m_hand.within(look);
    else
        look();
}

void LitScene::expectSame()
{
    for (const auto &piece : m_pieces)
        piece->pixels.expectSame();
}

void LitScene::strokeEnded()
{
    m_inHand.clear();
    if (std::exchange(m_isPutOff, false))
        follow();
}
