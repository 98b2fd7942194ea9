#include "OssInterface/Dialogs/OssNodeInfoDialog.h"

#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssMarkdown.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssInterface/Widgets/OssHelpBrowser.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssModel/Types/OssSnTypeHelp.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTextDocumentFragment>
#include <QVBoxLayout>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssNodeInfoDialog", text);
}

void addLine(QStringList *lines, const QString &name, const QString &value)
{
    if (!value.isEmpty())
        lines->append(name + QStringLiteral(": ") + value);
}

QString state(const OssSnBaseNode *node)
{
    QStringList words;
    words.append(node->enabledAsBool() ? tr("enabled") : tr("disabled"));
    if (node->isBypassed())
        words.append(tr("bypassed"));
    if (node->isLocked())
        words.append(tr("locked"));
    if (node->cacheActive() == CacheActive)
        words.append(tr("result kept"));
    return words.join(QStringLiteral(", "));
}

QString countOf(int nodes)
{
    return nodes == 1 ? tr("1 node") : tr("%1 nodes").arg(nodes);
}

/// Name, size and extent of what a node keeps or reads.
QString imagesOf(const OssSnBaseNode *node)
{
    const OssImageSet *images = OssShaderNetworkUtils::imageSetOf(node);
    if (!images)
        return {};
    const int patches = images->pixels().size();
    return tr("%1, %2 \u00d7 %2, %3")
        .arg(images->name())
        .arg(images->resolution())
        .arg(patches == 0   ? tr("empty")
             : patches == 1 ? tr("1 patch")
                            : tr("%1 patches").arg(patches));
}

QString whenOf(const OssSnBaseNode *node)
{
    const QString html = OssMarkdown::toHtml(OssSnTypeHelp::whenOf(node->pathKey()));
    return QTextDocumentFragment::fromHtml(html).toPlainText().simplified();
}

/// What the manual tells of the types of the nodes, each once.
QString helpOf(const QList<OssSnBaseNode *> &nodes)
{
    QStringList keys;
    QString html;
    for (const OssSnBaseNode *node : nodes) {
        const OssSnNodeType *type = node ? node->nodeType() : nullptr;
        if (!type || keys.contains(type->pathKey))
            continue;
        keys.append(type->pathKey);
        html += OssSnTypeHelp::page(*type, OssResourceInfo::instance()->manualPath());
    }
    return html;
}

/// What computing it cost in this session: for each texel, and so for a usual patch. A group costs
/// what is inside it.
QString costOf(const OssSnBaseNode *node, const OssEvStatistics &statistics)
{
    constexpr double UsualPatch = 2048.0 * 2048.0;
    const std::string path = node->path().toStdString();
    const std::string inside = path + '/';
    double perTexel = 0.0;
    for (const auto &[name, cost] : statistics.costs) {
        if (cost.texels > 0 && (name == path || name.compare(0, inside.size(), inside) == 0))
            perTexel += cost.seconds / double(cost.texels);
    }
    if (perTexel <= 0.0)
        return {};
    return tr("%1 ns for a texel, %2 ms for a patch of 2048 \u00d7 2048")
        .arg(perTexel * 1e9, 0, 'g', 2)
        .arg(perTexel * UsualPatch * 1e3, 0, 'f', 0);
}

QString blockOf(OssSnBaseNode *node, const OssEvStatistics &statistics)
{
    QStringList lines;
    addLine(&lines, tr("Node"), node->path());
    addLine(&lines, tr("Type"), node->pathKey());
    addLine(&lines, tr("What it does"),
            node->nodeType() ? node->nodeType()->description : QString());
    addLine(&lines, tr("When to use it"), whenOf(node));
    addLine(&lines, tr("Description"), node->description());
    addLine(&lines, tr("Version"), node->versionUUID());
    addLine(&lines, tr("Version date"), node->versionDate());
    addLine(&lines, tr("State"), state(node));
    addLine(&lines, tr("Error"), node->errorText());
    const int upstream = OssShaderNetworkUtils::getUpstreamNodes(node, true, true, false).size();
    const int downstream = OssShaderNetworkUtils::getDownstreamNodes(node, true, true).size();
    addLine(&lines, tr("Takes from"), countOf(upstream));
    addLine(&lines, tr("Feeds"), countOf(downstream));
    if (const auto *group = qobject_cast<OssSnGroupNode *>(node))
        addLine(&lines, tr("Inside"), countOf(group->groupNetwork()->getAllNodes().size()));
    addLine(&lines, tr("Images"), imagesOf(node));
    addLine(&lines, tr("Cost"), costOf(node, statistics));
    addLine(&lines, tr("Size in a file"),
            QLocale().formattedDataSize(OssShaderNetworkIO::nodesToText({node}).size()));
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        const QString from = port.source
                                 ? port.source->path() + QStringLiteral(" . ") + port.sourceOutput
                                 : tr("not connected");
        addLine(&lines, tr("Input %1").arg(port.name), from);
    }
    const QVector<OssCustomAttribute> attributes = node->userAttributes();
    for (const OssCustomAttribute &attribute : attributes)
        addLine(&lines, attribute.name(), OssAttributeKind::toWords(attribute.value()));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

QString OssNodeInfoDialog::text(const QList<OssSnBaseNode *> &nodes)
{
    QStringList blocks;
    const OssEvStatistics statistics = OssEvaluationService::instance()->engine()->statistics();
    for (OssSnBaseNode *node : nodes) {
        if (node)
            blocks.append(blockOf(node, statistics));
    }
    return blocks.isEmpty() ? QDialog::tr("No node is selected.")
                            : blocks.join(QStringLiteral("\n\n"));
}

OssNodeInfoDialog::OssNodeInfoDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("OssNodeInfoDialog"));
    setWindowTitle(::tr("Node Info"));
    auto *tabs = new QTabWidget(this); // made before the buttons: Tab reaches it first
    auto *view = new QPlainTextEdit(text(nodes));
    view->setReadOnly(true);
    view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    view->setAccessibleName(windowTitle());
    auto *help = new OssHelpBrowser;
    help->showPage(helpOf(nodes), OssResourceInfo::instance()->manualPath());
    help->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    help->setAccessibleName(::tr("Help"));
    tabs->addTab(view, ::tr("Node"));
    tabs->addTab(help, ::tr("Help"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    const QPushButton *copy = buttons->addButton(::tr("Copy"), QDialogButtonBox::ActionRole);
    connect(copy, &QPushButton::clicked, view,
            [view] { QGuiApplication::clipboard()->setText(view->toPlainText()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(buttons);
    resize(620, 480);
}
