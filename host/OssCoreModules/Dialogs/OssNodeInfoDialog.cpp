#include "OssCoreModules/Dialogs/OssNodeInfoDialog.h"

#include "OssCore/OssValueText.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssShaderNetworkIO.h"
#include "OssCoreModules/Network/OssShaderNetworkUtils.h"
#include "OssCoreModules/Network/OssSnBaseNode.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
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
    if (node->cacheActive() == CacheActive)
        words.append(tr("result kept"));
    return words.join(QStringLiteral(", "));
}

QString blockOf(OssSnBaseNode *node)
{
    QStringList lines;
    addLine(&lines, tr("Node"), node->path());
    addLine(&lines, tr("Type"), node->pathKey());
    addLine(&lines, tr("Description"), node->description());
    addLine(&lines, tr("Version"), node->versionUUID());
    addLine(&lines, tr("Version date"), node->versionDate());
    addLine(&lines, tr("State"), state(node));
    addLine(&lines, tr("Error"), node->errorText());
    const int upstream = OssShaderNetworkUtils::getUpstreamNodes(node, true, true, false).size();
    const int downstream = OssShaderNetworkUtils::getDownstreamNodes(node, true, true).size();
    addLine(&lines, tr("Takes from"), tr("%1 nodes").arg(upstream));
    addLine(&lines, tr("Feeds"), tr("%1 nodes").arg(downstream));
    if (const auto *group = qobject_cast<OssSnGroupNode *>(node))
        addLine(&lines, tr("Inside"),
                tr("%1 nodes").arg(group->groupNetwork()->getAllNodes().size()));
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
        addLine(&lines, attribute.name(), OssValueText::toText(attribute.value()));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

QString OssNodeInfoDialog::text(const QList<OssSnBaseNode *> &nodes)
{
    QStringList blocks;
    for (OssSnBaseNode *node : nodes) {
        if (node)
            blocks.append(blockOf(node));
    }
    return blocks.isEmpty() ? QDialog::tr("No node is selected.")
                            : blocks.join(QStringLiteral("\n\n"));
}

OssNodeInfoDialog::OssNodeInfoDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("OssNodeInfoDialog"));
    setWindowTitle(::tr("Node Info"));
    auto *view = new QPlainTextEdit(text(nodes), this);
    view->setReadOnly(true);
    view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    view->setAccessibleName(windowTitle());
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    const QPushButton *copy = buttons->addButton(::tr("Copy"), QDialogButtonBox::ActionRole);
    connect(copy, &QPushButton::clicked, view,
            [view] { QGuiApplication::clipboard()->setText(view->toPlainText()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(view);
    layout->addWidget(buttons);
    resize(520, 420);
}
