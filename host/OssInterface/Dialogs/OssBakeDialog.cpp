#include "OssInterface/Dialogs/OssBakeDialog.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QStringList>

#include <algorithm>

namespace {

const QString Resolution = QStringLiteral("resolution");
const QString Depth = QStringLiteral("depth");

QString tr(const char *text)
{
    return QCoreApplication::translate("OssBakeDialog", text);
}

QComboBox *choiceOf(const OssSnBakePointNode *node, const QString &attribute, QWidget *parent)
{
    const auto values = node->attribute(attribute).value<OssUserEnum>();
    auto *box = new QComboBox(parent);
    box->setObjectName(attribute);
    box->addItems(values.names());
    box->setCurrentText(values.currentName());
    return box;
}

} // namespace

bool OssBakeDialog::ask(const QList<OssSnBakePointNode *> &nodes, QWidget *parent)
{
    QList<OssSnBakePointNode *> open;
    QStringList names;
    for (OssSnBakePointNode *node : nodes) {
        if (!node->asksForSize() || !node->choosesDepth())
            continue;
        open.append(node);
        names.append(node->name());
    }
    if (open.isEmpty() || !OssApplication::popupsAllowed())
        return true;
    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("BakeDialog"));
    dialog.setWindowTitle(tr("Bake"));
    auto *layout = new QFormLayout(&dialog);
    auto *text = new QLabel(tr("Images are made for: %1").arg(names.join(QStringLiteral(", "))));
    text->setWordWrap(true);
    layout->addRow(text);
    QComboBox *resolution = choiceOf(open.first(), Resolution, &dialog);
    resolution->setCurrentText(QString::number(OssImageManager::instance()->newResolution()));
    layout->addRow(tr("Width and height of a patch:"), resolution);
    QComboBox *depth = choiceOf(open.first(), Depth, &dialog);
    layout->addRow(tr("Depth:"), depth);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Bake"));
    layout->addRow(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    const OssUndoManager::AutoMacro macro(tr("Bake Settings"));
    for (OssSnBakePointNode *node : qAsConst(open)) {
        node->needImageSet(); // which from now on says it, also where nothing else is chosen
        node->setAttribute(Resolution, resolution->currentText());
        node->setAttribute(Depth, depth->currentText());
    }
    return true;
}
