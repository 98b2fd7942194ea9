#include "Ossa/Viewer/PaintBar.h"

#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/PaintMask.h"
#include "Ossa/Painting/PaintNodes.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/ViewerSource.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssColor.h"
#include "OssInterface/Widgets/OssFlowLayout.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMenu>
#include <QSignalBlocker>
#include <QToolButton>

#include <algorithm>

// Which nodes are painted on, and which one masks strokes.

namespace {

constexpr double largestAlong = 1000.0;

OssShaderNetwork *currentNetwork()
{
    return OssShaderNetworkManager::instance()->currentShaderNetwork();
}

bool givesMaterial(const OssSnBaseNode &node, const QString &output)
{
    const auto &points = node.outputPoints();
    return std::any_of(points.cbegin(), points.cend(), [&](const auto &point) {
        return point.name == output && point.kind == OssSnDataKind::Material;
    });
}

} // namespace

void PaintBar::makeMaskMenu()
{
    m_mask->setPopupMode(QToolButton::InstantPopup);
    m_mask->setAccessibleName(tr("Mask"));
    m_mask->setToolTip(
        tr("Strokes paint where a node is bright: select one in the graph and choose it here"));
    auto *menu = new QMenu(m_mask);
    menu->addAction(tr("Mask by Selected Node"), this, &PaintBar::maskBySelection);
    QAction *inverted = menu->addAction(tr("Inverted"));
    inverted->setCheckable(true);
    connect(inverted, &QAction::toggled, m_session->mask(), &PaintMask::setInverted);
    QAction *none = menu->addAction(tr("No Mask"), this,
                                    [this] { m_session->mask()->setSource(nullptr); });
    connect(menu, &QMenu::aboutToShow, this, [this, inverted, none] {
        inverted->setChecked(m_session->mask()->isInverted());
        none->setEnabled(m_session->mask()->source() != nullptr);
    });
    m_mask->setMenu(menu);
    connect(m_session->mask(), &PaintMask::changed, this, &PaintBar::showMask);
    showMask();
}

void PaintBar::maskBySelection()
{
    const OssShaderNetwork *network = currentNetwork();
    const QList<OssSnBaseNode *> nodes = network ? network->getAllNodes()
                                                 : QList<OssSnBaseNode *>();
    QList<OssSnBaseNode *> chosen;
    for (OssSnBaseNode *node : nodes) {
        if (node->selected() && !OssSolo::pictureOutput(node).isEmpty())
            chosen.append(node);
    }
    if (chosen.size() == 1)
        m_session->mask()->setSource(chosen.first());
    else
        OssStatusManager::instance()->showMessage(
            tr("Select the one node whose picture is to mask strokes"));
}

void PaintBar::showMask()
{
    const OssSnBaseNode *source = m_session->mask()->source();
    const QString name = source ? source->name() : tr("None");
    m_mask->setText(
        tr("Mask: %1").arg(QString(name).replace(QLatin1Char('&'), QStringLiteral("&&"))));
    if (source)
        OssStatusManager::instance()->showMessage(m_session->mask()->problem());
}

void PaintBar::refresh()
{
    if (!isVisible())
        return;
    const OssShaderNetwork *network = currentNetwork();
    followSelection(network);
    const PaintNodes::Nodes selected = PaintNodes::selected(network);
    PaintNodes::Nodes nodes = PaintNodes::all(network);
    for (OssSnImageSetNodeBase *node : selected) {
        if (!nodes.contains(node)) // it is in a group
            nodes.append(node);
    }
    const QSignalBlocker blocker(m_nodes);
    m_nodes->clear();
    m_choices.clear();
    for (OssSnImageSetNodeBase *node : nodes) {
        m_nodes->addItem(node->name());
        m_choices.append(node);
    }
    // A choice made here stands until others are selected.
    const QVector<QPointer<OssSnImageSetNodeBase>> now(selected.cbegin(), selected.cend());
    const bool follows = !selected.isEmpty() && now != m_selected;
    m_selected = now;
    OssSnImageSetNodeBase *wanted = m_session->node();
    if (follows)
        wanted = selected.first();
    else if (!nodes.isEmpty() && !nodes.contains(wanted))
        wanted = nodes.first();
    // Never while something is being undone or made: leaving other paint may be an edit itself.
    const OssUndoManager *history = OssUndoManager::instance();
    if (history->isRecording() && !history->isMacroOpen()) {
        if (!follows || m_session->setAlong({}))
            m_session->setNode(wanted);
        if (follows && m_session->node() == wanted)
            m_session->setAlong(selected.mid(1));
    }
    showState();
}

void PaintBar::followSelection(const OssShaderNetwork *network)
{
    if (network == m_followed)
        return;
    if (m_followed)
        disconnect(m_followed, nullptr, &m_selectionSeen, nullptr);
    m_followed = network;
    if (network)
        connect(network, &OssShaderNetwork::selectionChanged, &m_selectionSeen,
                qOverload<>(&QTimer::start));
}

void PaintBar::chooseNode(int index)
{
    // The list is made anew when something changes: what it names may have gone just now.
    OssSnImageSetNodeBase *node = m_choices.value(index);
    if (node && m_session->setAlong({}))
        m_session->setNode(node);
    refresh();
}

void PaintBar::makeLayer()
{
    OssSolo::instance()->end();
    OssSnBaseNode *shader = PaintNodes::shownShader(currentNetwork());
    if (!shader) {
        OssStatusManager::instance()->showMessage(
            tr("A layer lies over a material: connect one to the viewer"));
        return;
    }
    const PaintNodes::Nodes made = PaintNodes::makeLayer(shader);
    if (made.isEmpty())
        OssStatusManager::instance()->showMessage(
            tr("\"%1\" takes none of color, roughness, metal and displacement")
                .arg(shader->name()));
    if (made.isEmpty() || !m_session->setAlong({}) || !m_session->setNode(made.first()))
        return;
    m_session->setAlong(made.mid(1));
    refresh();
}

/// The other nodes, each with what strokes leave on it.
void PaintBar::showAlong()
{
    decltype(m_shownAlong) now;
    const QVector<OssSnImageSetNodeBase *> nodes = m_session->along();
    for (OssSnImageSetNodeBase *node : nodes)
        now.append({node, node->name(), node->imageSet() && node->imageSet()->isScalar()});
    const bool hasSecond = Brushes::instance()->brush().hasSecondColor();
    if (now != m_shownAlong || hasSecond != m_showsSecond) {
        m_shownAlong = now;
        m_showsSecond = hasSecond;
        m_showColors.clear();
        fillAlong(m_along, tr("Along with it"), PaintSession::ColorOf::Strokes);
        fillAlong(m_alongEnd, tr("ends with"), PaintSession::ColorOf::GradientsEnd);
    }
    for (const auto &show : qAsConst(m_showColors))
        show();
}

void PaintBar::fillAlong(OssFlowLayout *row, const QString &title, PaintSession::ColorOf of)
{
    while (QLayoutItem *item = row->takeAt(0)) {
        if (item->widget()) {
            item->widget()->hide();
            item->widget()->deleteLater();
        }
        delete item;
    }
    const QVector<OssSnImageSetNodeBase *> nodes = m_session->along();
    if (nodes.isEmpty() || (of == PaintSession::ColorOf::GradientsEnd && !m_showsSecond))
        return;
    row->addWidget(new QLabel(title, this));
    for (OssSnImageSetNodeBase *node : nodes) {
        const bool isScalar = node->imageSet() && node->imageSet()->isScalar();
        row->addWidget(isScalar ? makeNumberAlong(node, of) : makeColorAlong(node, of));
    }
}

QWidget *PaintBar::makeColorAlong(OssSnImageSetNodeBase *node, PaintSession::ColorOf of)
{
    auto *button = new QToolButton(this);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setText(QString(node->name()).replace(QLatin1Char('&'), QStringLiteral("&&")));
    button->setToolTip(tr("What each stroke leaves on \"%1\"").arg(node->name()));
    const QPointer<OssSnImageSetNodeBase> painted = node;
    connect(button, &QToolButton::clicked, this, [this, painted, of] {
        if (painted)
            pickColorAlong(painted, of);
    });
    m_showColors.append([this, button, painted, of] {
        button->setIcon(swatch(OssDisplayColor::ofLinear(m_session->colorAlong(painted, of))));
    });
    return button;
}

QWidget *PaintBar::makeNumberAlong(OssSnImageSetNodeBase *node, PaintSession::ColorOf of)
{
    auto *field = new QDoubleSpinBox(this);
    field->setRange(-largestAlong, largestAlong);
    field->setDecimals(3);
    field->setSingleStep(0.05);
    field->setPrefix(node->name() + QLatin1Char(' '));
    field->setAccessibleName(node->name());
    field->setToolTip(tr("What each stroke leaves on \"%1\"").arg(node->name()));
    const QPointer<OssSnImageSetNodeBase> painted = node;
    connect(field, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
            [this, painted, of](double value) {
                if (painted)
                    m_session->setColorAlong(painted, OssColor(value, value, value), of);
            });
    m_showColors.append([this, field, painted, of] {
        const double value = m_session->colorAlong(painted, of).red();
        const QSignalBlocker blocker(field);
        if (!isShown(*field, value))
            field->setValue(value);
    });
    return field;
}

void PaintBar::pickColorAlong(OssSnImageSetNodeBase *node, PaintSession::ColorOf of)
{
    const QPointer<OssSnImageSetNodeBase> painted = node;
    const QColor picked = QColorDialog::getColor(
        OssDisplayColor::ofLinear(m_session->colorAlong(node, of)), this,
        tr("Color on \"%1\"").arg(node->name()));
    if (picked.isValid() && painted)
        m_session->setColorAlong(painted, OssDisplayColor::toLinear(picked), of);
}

void PaintBar::makeNode()
{
    OssShaderNetwork *network = currentNetwork();
    OssSnBaseNode *viewer = network ? network->viewerNode() : nullptr;
    if (!viewer)
        return;
    OssSolo::instance()->end(); // the paint lies over what the viewer shows
    const QString input = QString::number(network->rootNetwork()->viewerNodeCurrentEdge());
    const OssSnBaseNode *shown = viewer->inputNode(input);
    // No paint lies over a whole material: over its color it does.
    const bool isMaterial = shown && givesMaterial(*shown, viewer->inputOutputPoint(input));
    OssSnBaseNode *fed = isMaterial ? PaintNodes::shownShader(network) : viewer;
    OssSnImageSetNodeBase *paint = nullptr;
    if (fed)
        paint = PaintNodes::putOver(fed, isMaterial ? QStringLiteral("Base Color") : input);
    if (!paint)
        OssStatusManager::instance()->showMessage(
            tr("\"%1\" has no color that paint could lie over")
                .arg(shown ? shown->name() : QString()));
    if (paint && m_session->setAlong({}))
        m_session->setNode(paint);
}

/// Why the picture does not show what is painted; empty when it does.
QString PaintBar::whyUnseen() const
{
    const OssSnImageSetNodeBase *node = m_session->node();
    const QVector<OssSnImageSetNodeBase *> along = m_session->along();
    const auto isShown = [this](const auto *painted) {
        return m_source->shows(painted);
    };
    if (isShown(node) || std::any_of(along.cbegin(), along.cend(), isShown))
        return {};
    if (m_source->dependsOn(node))
        return tr("\"%1\" is not the color of the material: its paint is seen in light, or when it is looked "
                  "at by itself.")
            .arg(node->name());
    return tr("\"%1\" is no part of what is shown; its paint will not be seen once it is baked.")
        .arg(node->name());
}
