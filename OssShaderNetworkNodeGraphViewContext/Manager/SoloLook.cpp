#include "Manager/SoloLook.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QAction>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QStyleHints>

#include <algorithm>

namespace {

constexpr int Repeat = 60; // milliseconds within which a key that is still held comes again

/// A key that is held comes again and again, as if it were let go between.
bool isLetGo(const QAction *action, const QKeyEvent *event)
{
    const QList<QKeySequence> keys = action->shortcuts();
    return !event->isAutoRepeat()
           && std::any_of(keys.cbegin(), keys.cend(), [event](const QKeySequence &sequence) {
                  // Modifiers may be let go before it.
                  return sequence.count() == 1
                         && (sequence[0] & ~int(Qt::KeyboardModifierMask)) == event->key();
              });
}

void tell(const QString &text)
{
    OssStatusManager::instance()->showMessage(text);
}

} // namespace

SoloLook::SoloLook(QObject *parent)
    : QObject(parent)
    , m_action(OssCommandTable::makeAction(QStringLiteral("/Ossa/NodeGraph/Look At"), this))
{
    m_action->setCheckable(true);
    m_action->setAutoRepeat(false);
    m_action->installEventFilter(this);
    m_letGo.setSingleShot(true);
    m_letGo.setInterval(Repeat);
    connect(&m_letGo, &QTimer::timeout, this, &SoloLook::release);
    connect(m_action, &QAction::triggered, this, &SoloLook::toggle);
    connect(OssSolo::instance(), &OssSolo::changed, this, &SoloLook::onSoloChanged);
    OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph"), m_action);
}

const OssSnBaseNode *SoloLook::nodeUnderPointer(const OssShaderNetworkView *view)
{
    const QPoint place = view->viewport()->mapFromGlobal(QCursor::pos());
    if (!view->scene() || !view->viewport()->rect().contains(place))
        return nullptr;
    const OssNgNode *item = OssNgSceneIndex::of(view->scene())->nodeAt(view->toScene(place));
    return item ? qobject_cast<OssSnBaseNode *>(item->businessNode()) : nullptr;
}

void SoloLook::toggle()
{
    OssSolo *solo = OssSolo::instance();
    m_action->setChecked(solo->node()); // a click turned it
    if (solo->node()) {
        solo->end();
        return;
    }
    OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    if (!view || !view->network())
        return;
    const OssSnBaseNode *node = m_isByKey ? nodeUnderPointer(view) : nullptr;
    if (!node) {
        const QList<OssSnBaseNode *> selected = view->network()->selectedNodes();
        node = selected.size() == 1 ? selected.first() : nullptr;
    }
    if (!node)
        tell(tr("Select the one node to look at, or point at it"));
    else if (!look(node))
        tell(tr("%1 has nothing to look at").arg(node->name()));
    else
        follow(view);
}

void SoloLook::follow(OssShaderNetworkView *view)
{
    m_view = view;
    if (m_isByKey && nodeUnderPointer(view))
        view->setFocus(); // to whom one points, one also speaks
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
    // Elsewhere nobody sees the key let go.
    m_isHeld = m_isByKey && view->window()->focusWidget() == view;
    m_hasMoved = false;
    m_sincePress.start();
}

void SoloLook::release()
{
    m_letGo.stop();
    m_isHeld = false;
    // A tap leaves the node in view.
    if (m_hasMoved || m_heldFor > QGuiApplication::styleHints()->keyboardInputInterval())
        OssSolo::instance()->end();
}

bool SoloLook::look(const OssSnBaseNode *node)
{
    return OssSolo::instance()->look(node);
}

void SoloLook::onSoloChanged()
{
    const OssSnBaseNode *node = OssSolo::instance()->node();
    m_action->setChecked(node);
    if (node) {
        tell(tr("Solo: %1. The same key or Esc ends it.").arg(node->name()));
        return;
    }
    tell({});
    m_letGo.stop();
    m_isHeld = false;
    if (!m_view)
        return;
    m_view->removeEventFilter(this);
    m_view->viewport()->removeEventFilter(this);
    m_view.clear();
}

bool SoloLook::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_action) {
        if (event->type() != QEvent::Shortcut)
            return false;
        if (m_isHeld) { // it repeats by itself
            m_letGo.stop();
            return true;
        }
        m_isByKey = true;
        watched->event(event);
        m_isByKey = false;
        return true;
    }
    if (!m_view)
        return false;
    if (event->type() == QEvent::KeyRelease && m_isHeld) {
        if (isLetGo(m_action, static_cast<QKeyEvent *>(event))) {
            m_heldFor = m_sincePress.elapsed();
            m_letGo.start();
        }
    } else if (event->type() == QEvent::FocusOut && m_isHeld && watched == m_view) {
        m_heldFor = m_sincePress.elapsed();
        release(); // where the key is let go is not told here
    } else if (event->type() == QEvent::MouseMove && m_isHeld) {
        const OssSnBaseNode *node = nodeUnderPointer(m_view);
        if (node && node != OssSolo::instance()->node())
            m_hasMoved = look(node) || m_hasMoved;
    } else if (event->type() == QEvent::KeyPress && watched == m_view && !m_view->hasGesture()
               && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        OssSolo::instance()->end();
        return true;
    }
    return false;
}
