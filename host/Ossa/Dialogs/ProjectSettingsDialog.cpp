#include "Ossa/Dialogs/ProjectSettingsDialog.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Dialogs/ColorChoice.h"
#include "OssInterface/Actions/OssTabOrder.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectColors.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QSize firstSize(560, 560);

enum Column { PatternColumn, SpaceColumn };

/// Offers the spaces of the configuration, and data.
class SpaceDelegate final : public QStyledItemDelegate
{
public:
    SpaceDelegate(const ColorChoice *colors, QObject *parent)
        : QStyledItemDelegate(parent)
        , m_colors(colors)
    {
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &,
                          const QModelIndex &) const override
    {
        auto *list = new QComboBox(parent);
        list->setEditable(true);
        list->addItem(QString::fromLatin1(OssEvFileColors::Data));
        for (const std::string &name : m_colors->spaces().names())
            list->addItem(QString::fromStdString(name));
        return list;
    }

    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        static_cast<QComboBox *>(editor)->setCurrentText(index.data(Qt::EditRole).toString());
    }

    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override
    {
        model->setData(index, static_cast<QComboBox *>(editor)->currentText().trimmed());
    }

private:
    const ColorChoice *m_colors;
};

} // namespace

ProjectSettingsDialog::ProjectSettingsDialog(const OssProject *project, QWidget *parent)
    : QDialog(parent)
    , m_project(project)
    , m_converts(new QCheckBox(this))
    , m_rules(new QTreeWidget(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setWindowTitle(tr("Project Settings"));
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    m_colors = new ColorChoice(form, this);
    layout->addLayout(form);
    m_converts->setChecked(true);
    m_converts->setToolTip(tr("Otherwise nodes keep the numbers of their colors, which then look "
                              "different"));
    layout->addWidget(m_converts);
    makeRules(layout);
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_colors, &ColorChoice::changed, this, &ProjectSettingsDialog::refresh);
    m_colors->setSettings(project->colors());
    showRules(project->fileRules());
    OssTabOrder::followLayout(this);
    resize(Theme::fitting(firstSize));
}

void ProjectSettingsDialog::makeRules(QVBoxLayout *layout)
{
    auto *text = new QLabel(tr("Color spaces of image files by their names. The first that fits "
                               "counts; others go by the kind of file."),
                            this);
    text->setWordWrap(true);
    layout->addWidget(text);
    m_rules->setHeaderLabels({tr("File Name"), tr("Color Space")});
    m_rules->setRootIsDecorated(false);
    m_rules->setUniformRowHeights(true);
    m_rules->setAllColumnsShowFocus(true);
    m_rules->setAccessibleName(tr("Color spaces by file name"));
    m_rules->header()->resizeSection(PatternColumn, firstSize.width() / 2);
    m_rules->setItemDelegateForColumn(SpaceColumn, new SpaceDelegate(m_colors, this));
    layout->addWidget(m_rules, 1);
    auto *row = new QHBoxLayout;
    auto *add = new QPushButton(tr("Add"), this);
    auto *remove = new QPushButton(tr("Remove"), this);
    auto *usual = new QPushButton(tr("Usual Ones"), this);
    for (QPushButton *button : {add, remove, usual}) {
        button->setAutoDefault(false);
        row->addWidget(button);
    }
    row->addStretch(1);
    layout->addLayout(row);
    connect(add, &QPushButton::clicked, this, [this] {
        addRule(QStringLiteral("*_name*"), QString::fromLatin1(OssEvFileColors::Data));
        // Before all others, which would hide it.
        m_rules->insertTopLevelItem(0, m_rules->takeTopLevelItem(m_rules->topLevelItemCount() - 1));
        m_rules->setCurrentItem(m_rules->topLevelItem(0));
        m_rules->editItem(m_rules->topLevelItem(0), PatternColumn);
    });
    connect(remove, &QPushButton::clicked, this, [this] { delete m_rules->currentItem(); });
    connect(usual, &QPushButton::clicked, this,
            [this] { showRules(OssColorSettings::usualFileRules()); });
}

void ProjectSettingsDialog::addRule(const QString &pattern, const QString &space)
{
    auto *row = new QTreeWidgetItem(m_rules, {pattern, space}); // the list's
    row->setFlags(row->flags() | Qt::ItemIsEditable);
}

void ProjectSettingsDialog::showRules(const QStringList &rules)
{
    m_rules->clear();
    OssColorSettings settings;
    settings.fileRules = rules;
    for (const OssEvFileColors::Rule &rule : settings.rules())
        addRule(QString::fromStdString(rule.pattern), QString::fromStdString(rule.space));
}

QStringList ProjectSettingsDialog::rules() const
{
    QStringList texts;
    for (int i = 0; i < m_rules->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *row = m_rules->topLevelItem(i);
        const QString pattern = row->text(PatternColumn).trimmed();
        const QString space = row->text(SpaceColumn).trimmed();
        if (!pattern.isEmpty() && !space.isEmpty())
            texts.append(pattern + QLatin1Char('=') + space);
    }
    return texts;
}

OssColorSettings ProjectSettingsDialog::settings() const
{
    OssColorSettings settings = m_colors->settings();
    settings.fileRules = rules();
    return settings;
}

bool ProjectSettingsDialog::converts() const
{
    return m_converts->isVisibleTo(this) && m_converts->isChecked();
}

void ProjectSettingsDialog::refresh()
{
    const int count = OssProjectColors::countColors(m_project, m_colors->settings());
    m_converts->setText(
        count == 1 ? tr("Convert 1 color of a node, so that it looks the same")
                   : tr("Convert %1 colors of nodes, so that they look the same").arg(count));
    m_converts->setVisible(count > 0);
    const bool isAsBefore = m_colors->settings().config == m_project->colorConfig()
                            && m_colors->settings().working == m_project->workingSpace();
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(m_colors->isUsable() || isAsBefore);
}
