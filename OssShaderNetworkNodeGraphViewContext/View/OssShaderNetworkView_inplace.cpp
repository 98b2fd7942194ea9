#include "OssShaderNetworkView.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgUINode.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QPlainTextEdit>

#include <algorithm>
#include <functional>
#include <utility>

// Texts that are edited where they stand, and the line that says where one is.

namespace {

/// Takes its text when the focus goes or Ctrl+Enter is pressed (Enter alone, where there is but one
/// line), and goes. Escape takes nothing.
class InPlaceEditor final : public QPlainTextEdit
{
public:
    InPlaceEditor(QWidget *viewport, bool oneLine, std::function<void(const QString &)> take)
        : QPlainTextEdit(viewport)
        , m_oneLine(oneLine)
        , m_take(std::move(take))
    {
        setAttribute(Qt::WA_DeleteOnClose);
        setFrameShape(QFrame::NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setLineWrapMode(oneLine ? NoWrap : WidgetWidth);
    }

protected:
    bool event(QEvent *event) override
    {
        // What is typed belongs to the text, not to the commands of the graph around it. Keys with
        // Control are the text's where it knows them.
        if (event->type() == QEvent::ShortcutOverride && isOwn(static_cast<QKeyEvent *>(event))) {
            event->accept();
            return true;
        }
        return QPlainTextEdit::event(event);
    }

    static bool isEnter(const QKeyEvent *event)
    {
        return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    }

    static bool isOwn(const QKeyEvent *event)
    {
        return isEnter(event) || !(event->modifiers() & Qt::ControlModifier);
    }

    void keyPressEvent(QKeyEvent *event) override
    {
        const bool enter = isEnter(event);
        if (event->key() == Qt::Key_Escape) {
            m_take = nullptr;
            close();
        } else if (enter && (m_oneLine || (event->modifiers() & Qt::ControlModifier))) {
            close();
        } else {
            QPlainTextEdit::keyPressEvent(event);
        }
    }

    void focusOutEvent(QFocusEvent *event) override
    {
        QPlainTextEdit::focusOutEvent(event);
        close();
    }

    void closeEvent(QCloseEvent *event) override
    {
        if (const auto take = std::exchange(m_take, nullptr))
            take(toPlainText());
        QPlainTextEdit::closeEvent(event);
    }

private:
    bool m_oneLine;
    std::function<void(const QString &)> m_take;
};

void give(const QPointer<OssSnBaseNode> &node, const QString &attribute, const QString &text,
          const QString &undoTitle)
{
    if (!node || !node->exists(attribute) || node->attribute(attribute).toString() == text)
        return;
    const OssUndoManager::AutoMacro macro(undoTitle);
    node->setAttribute(attribute, text);
}

} // namespace

void OssShaderNetworkView::editTextInPlace(OssNgNode *item, const QPointF &scenePos)
{
    auto *node = qobject_cast<OssSnBaseNode *>(item->businessNode());
    const auto *backdrop = qobject_cast<OssNgBackdropNode *>(item);
    const auto *note = qobject_cast<OssNgUINode *>(item);
    const QPointF local = scenePos - item->pos();
    if (!node || (!note && !(backdrop && local.y() <= backdrop->titleBarHeight())))
        return;
    const QString attribute = note ? QStringLiteral("Label") : QStringLiteral("TitleText");
    if (!node->exists(attribute))
        return;
    const QString lock = node->lockOf(attribute);
    if (!lock.isEmpty()) {
        tellUser(tr("Cannot be edited: %1").arg(lock));
        return;
    }
    QRectF area = item->boundingRect();
    if (backdrop)
        area.setHeight(backdrop->titleBarHeight());
    const QString title = note ? tr("Edit Note") : tr("Edit Title");
    auto *editor = new InPlaceEditor( // deletes itself when closed
        viewport(), !note,
        [attribute, title, node = QPointer<OssSnBaseNode>(node)](const QString &text) {
            give(node, attribute, text, title);
        });
    editor->setAccessibleName(title);
    editor->setPlainText(node->attribute(attribute).toString());
    editor->selectAll();
    QFont font = note ? OssNgStyle::instance()->noteFont() : OssNgStyle::instance()->backdropFont();
    font.setPixelSize(std::max(9, qRound(font.pixelSize() * zoom())));
    editor->setFont(font);
    const QRect place = mapFromScene(area.translated(item->pos())).boundingRect();
    editor->setGeometry(place.united(QRect(place.topLeft(), QSize(120, 26))));
    editor->show();
    editor->setFocus();
}

QString OssShaderNetworkView::placeText() const
{
    QStringList parts;
    for (const OssShaderNetwork *network = m_network; network;) {
        const OssSnGroupNode *group = network->parentGroupNode();
        if (!group) {
            const OssGeoEntity *entity = network->geoEntity();
            parts.prepend(entity ? entity->name() : tr("Root"));
            break;
        }
        parts.prepend(group->name());
        network = group->network();
    }
    // At the top the tab says it already.
    return parts.size() > 1 ? parts.join(QStringLiteral("  \u203a  ")) : QString();
}

void OssShaderNetworkView::paintEvent(QPaintEvent *event)
{
    PlacingView::paintEvent(event);
    const QString text = placeText();
    if (text.isEmpty())
        return;
    const QFont &font = OssNgStyle::instance()->titleFont();
    const QRect area(12, 8, QFontMetrics(font).horizontalAdvance(text) + 20, 24);
    if (!event->region().intersects(area))
        return;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = OssNgStyle::instance()->color(OssNgStyle::Role::MapCanvas);
    ground.setAlphaF(0.85);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(area, 6.0, 6.0);
    painter.setFont(font);
    painter.setPen(OssNgStyle::instance()->color(OssNgStyle::Role::Label));
    painter.drawText(area, Qt::AlignCenter, text);
}

void OssShaderNetworkView::scrollContentsBy(int dx, int dy)
{
    PlacingView::scrollContentsBy(dx, dy);
    // Scrolling moved the line's pixels along.
    if (m_network && m_network->parentGroupNode()) {
        const QRect line(0, 0, viewport()->width(), 36);
        viewport()->update(QRegion(line) | line.translated(dx, dy));
    }
}
