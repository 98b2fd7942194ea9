#include "Ossa/Dialogs/PublishDialog.h"

#include "Ossa/Common/Theme.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "OssModel/Types/OssMaterialTypes.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QSize firstSize(520, 320);

/// Those that menus have already.
QStringList categories()
{
    QStringList found;
    const auto *networks = OssShaderNetworkManager::instance();
    const QStringList keys = networks->nodeGraphPathKeys();
    for (const QString &key : keys) {
        const QString path = networks->nodeMenuPath(key);
        const QString category = path.left(path.lastIndexOf(QLatin1Char('/')));
        if (path.contains(QLatin1Char('/')) && !found.contains(category))
            found.append(category);
    }
    found.sort();
    return found;
}

/// Of a group that was not published before: what makes a material stands among those.
QString firstCategory(const OssSnGroupNode &group)
{
    const auto &outputs = group.outputPoints();
    const bool isMaterial = std::any_of(outputs.begin(), outputs.end(), [](const auto &output) {
        return output.kind == OssSnDataKind::Material;
    });
    const QString own = PublishDialog::tr("Own");
    return isMaterial ? OssMaterialTypes::categoryOf(own) : own;
}

} // namespace

PublishDialog::PublishDialog(const OssSnGroupNode *group, QWidget *parent)
    : QDialog(parent)
    , m_group(group)
    , m_name(new QLineEdit(group->name(), this))
    , m_category(new QComboBox(this))
    , m_toolTip(new QPlainTextEdit(group->description(), this))
    , m_aliases(new QLineEdit(this))
    , m_told(new QLabel(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setWindowTitle(tr("Publish as Node Type"));
    m_category->setEditable(true);
    m_category->addItems(categories());
    const OssSnNodeType *type = group->nodeType();
    const bool again = type && type->isPublishedGroup();
    m_category->setEditText(again ? type->pathKey.left(type->pathKey.lastIndexOf(QLatin1Char('/')))
                                  : firstCategory(*group));
    if (again) {
        m_name->setText(type->baseName());
        m_toolTip->setPlainText(type->description);
        m_aliases->setText(type->aliases.join(QStringLiteral(", ")));
    }
    m_aliases->setPlaceholderText(tr("Other words by which one looks for it, such as worn, metal"));
    m_toolTip->setTabChangesFocus(true);
    m_told->setWordWrap(true);
    m_buttons->button(QDialogButtonBox::Ok)->setText(tr("Publish"));
    auto *form = new QFormLayout;
    form->addRow(tr("Name:"), m_name);
    form->addRow(tr("Category:"), m_category);
    form->addRow(tr("Tool tip:"), m_toolTip);
    form->addRow(tr("Found as:"), m_aliases);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_told);
    layout->addWidget(m_buttons);
    connect(m_name, &QLineEdit::textChanged, this, &PublishDialog::refresh);
    connect(m_category, &QComboBox::editTextChanged, this, &PublishDialog::refresh);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_name->selectAll();
    resize(Theme::fitting(firstSize));
    refresh();
}

OssPublishedGroup::Form PublishDialog::form() const
{
    QStringList aliases;
    const QStringList words = m_aliases->text().split(QLatin1Char(','));
    for (const QString &word : words) {
        if (!word.trimmed().isEmpty())
            aliases.append(word.simplified());
    }
    return {m_category->currentText(), m_name->text(), m_toolTip->toPlainText().simplified(),
            aliases};
}

void PublishDialog::refresh()
{
    const OssResult can = OssNodeTypeWatch::canPublish(m_group, form());
    const QString key = form().pathKey();
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(bool(can));
    if (!can)
        m_told->setText(can.error());
    else if (OssNodeTypeWatch::isPublished(key))
        m_told->setText(
            tr("Gives \"%1\" a new version. Nodes that there are stay what they are until "
               "they are upgraded.")
                .arg(key));
    else
        m_told->setText(
            tr("Written to %1").arg(QDir::toNativeSeparators(OssNodeTypeWatch::filePath(key))));
}
