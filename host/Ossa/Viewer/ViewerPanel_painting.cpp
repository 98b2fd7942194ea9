#include "Ossa/Viewer/ViewerPanel.h"

#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/ObjectView.h"
#include "Ossa/Viewer/PaintBar.h"
#include "Ossa/Viewer/UvView.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "Ossa/Viewer/ViewerSource.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"

#include <QApplication>
#include <QToolButton>

#include <algorithm>
#include <utility>

// The Viewer while one paints.

namespace {

constexpr int handTime = 80; ///< milliseconds between pictures of a stroke in hand, at least

} // namespace

void ViewerPanel::followStrokes()
{
    followPaint();
    m_hand.setSingleShot(true);
    connect(&m_hand, &QTimer::timeout, this, &ViewerPanel::followHand);
    connect(m_session, &PaintSession::painted, this, [this] {
        const bool isExact = m_session->along().isEmpty() && m_source->showsOnly(m_session->node());
        // The object in light has the stroke by itself.
        const bool isSeen = m_view->isVisible()
                            || (m_object->isVisible() && !m_object->isMaterial());
        if (m_session->isPainting() && !isExact && isSeen && !m_hand.isActive())
            m_hand.start(std::max(handTime, 2 * m_tookPicture));
    });
    connect(m_session, &PaintSession::settled, m_source, &ViewerSource::expectSamePicture);
    // A stroke that was taken back leaves no step that would tell.
    connect(m_session, &PaintSession::settled, this, [this] {
        if (!m_session->isPainting() && std::exchange(m_hasHand, false))
            m_source->touch();
    });
    connect(m_session, &PaintSession::painted, m_pictures, &ViewerPictures::showPaint);
    connect(m_session, &PaintSession::settled, m_pictures, &ViewerPictures::expectSamePicture);
    connect(m_session, &PaintSession::stateChanged, this, &ViewerPanel::followPaint);
    // Patches that nobody sees wait for the end of a stroke, which waits for nothing.
    connect(m_session, &PaintSession::painted, this, [this] {
        if (m_session->isPainting() && !m_makesWay && !m_view->isVisible())
            m_makesWay = m_source->makeWay();
    });
    connect(m_session, &PaintSession::stateChanged, this, [this] {
        if (m_makesWay && !m_session->isPainting()) {
            m_makesWay = false;
            m_source->refresh();
        }
    });
}

// Over the picture lies the paint of a node that it is made of.
void ViewerPanel::followPaint()
{
    const OssSnImageSetNodeBase *shown = m_session->node();
    const QVector<OssSnImageSetNodeBase *> along = m_session->along();
    const auto other = std::find_if(along.cbegin(), along.cend(),
                                    [this](const auto *node) { return m_source->shows(node); });
    if (!m_source->shows(shown) && other != along.cend())
        shown = *other;
    m_isPaintSeen = m_source->shows(shown);
    m_session->show(shown);
    m_pictures->setPaint(&m_session->shownBuffer());
    m_pictures->setShowsOwnImages(m_source->showsOnly(shown));
}

/// What no paint over a picture can tell, such as an eraser behind other nodes, is computed while the stroke
/// goes on.
void ViewerPanel::followHand()
{
    if (!m_session->isPainting())
        return;
    if (!m_source->isIdle()) {
        m_hand.start(handTime);
        return;
    }
    m_session->publishInHand();
    m_hasHand = true;
    m_source->touch();
}

void ViewerPanel::setPainting(bool on)
{
    m_paintBar->setVisible(on);
    m_view->setPainting(on);
    m_object->setPainted(on);
    showLightBar();
    followProject();
    m_paintBar->refresh();
}

void ViewerPanel::welcomeBrush(QWidget *canvas)
{
    m_paintBar->refresh();
    // The brush's keys act as soon as the pointer is here, but nobody is interrupted in writing.
    const QWidget *focus = QApplication::focusWidget();
    const bool isWriting = focus && focus->testAttribute(Qt::WA_InputMethodEnabled);
    if (m_paint->isChecked() && (!isWriting || isAncestorOf(focus)))
        canvas->setFocus();
}
