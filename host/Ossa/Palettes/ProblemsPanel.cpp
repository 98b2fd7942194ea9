#include "Ossa/Palettes/ProblemsPanel.h"

#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Project/OssProjectMeshes.h"

#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int nodeRole = Qt::UserRole;
constexpr int networkRole = Qt::UserRole + 1; ///< of an object
constexpr int nodeWidth = 180;

OssSnBaseNode *nodeOf(const QTreeWidgetItem *row)
{
    return row ? row->data(0, nodeRole).value<QPointer<OssSnBaseNode>>().data() : nullptr;
}

} // namespace

Q_DECLARE_METATYPE(QPointer<OssSnBaseNode>)
Q_DECLARE_METATYPE(QPointer<OssShaderNetwork>)

ProblemsPanel::ProblemsPanel(QWidget *parent)
    : QWidget(parent)
    , m_list(new QTreeWidget(this))
    , m_none(new QLabel(tr("Nothing is wrong with any node or object."), this))
{
    m_list->setHeaderLabels({tr("Where"), tr("What is wrong")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setAccessibleName(tr("Problems"));
    m_list->header()->resizeSection(0, nodeWidth);
    connect(m_list, &QTreeWidget::itemActivated, this, &ProblemsPanel::show);
    m_none->setObjectName(QStringLiteral("Muted"));
    m_none->setAlignment(Qt::AlignCenter);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(m_list);
    layout->addWidget(m_none, 1);
    setFocusProxy(m_list);
    connect(OssProblems::instance(), &OssProblems::changed, this, &ProblemsPanel::refresh);
    connect(OssMeshes::instance(), &OssMeshes::changed, this, &ProblemsPanel::refresh);
    connect(OssColorManagement::instance(), &OssColorManagement::changed, this,
            &ProblemsPanel::refresh);
    connect(OssProjectManager::instance(), &OssProjectManager::projectOpenCompleted, this,
            &ProblemsPanel::refresh);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosed, this,
            &ProblemsPanel::refresh);
    refresh();
}

void ProblemsPanel::refresh()
{
    const OssSnBaseNode *current = nodeOf(m_list->currentItem());
    m_list->clear();
    const QVector<OssProblems::Problem> problems = OssProblems::instance()->problems();
    const auto troubles = OssProjectMeshes::troubles(
        OssProjectManager::instance()->currentProject());
    for (const OssProjectMeshes::Trouble &trouble : troubles) {
        auto *row = new QTreeWidgetItem(m_list); // the list's
        row->setText(0, trouble.entity->name());
        row->setToolTip(0, tr("An object of the project"));
        row->setText(1, QString(trouble.text).replace(QLatin1Char('\n'), QLatin1String("; ")));
        row->setToolTip(1, trouble.text);
        row->setData(0, networkRole,
                     QVariant::fromValue(QPointer<OssShaderNetwork>(
                         trouble.entity->shadingGroups().first()->network())));
    }
    const QString colors = OssColorManagement::instance()->problem();
    if (!colors.isEmpty()) {
        auto *row = new QTreeWidgetItem(m_list, {tr("Colors"), colors}); // the list's
        row->setToolTip(0, tr("Edit > Project Settings"));
        row->setToolTip(1, colors);
    }
    for (const OssProblems::Problem &problem : problems) {
        auto *row = new QTreeWidgetItem(m_list); // the list's
        row->setText(0, problem.path.mid(1));    // all begin with "/"
        row->setToolTip(0, problem.path);
        row->setText(1, QString(problem.reason).replace(QLatin1Char('\n'), QLatin1String("; ")));
        row->setToolTip(1, problem.reason);
        row->setData(0, nodeRole, QVariant::fromValue(QPointer<OssSnBaseNode>(problem.node)));
        if (problem.node == current)
            m_list->setCurrentItem(row);
    }
    const bool isAny = m_list->topLevelItemCount() > 0;
    m_list->setVisible(isAny);
    m_none->setVisible(!isAny);
}

void ProblemsPanel::show(const QTreeWidgetItem *row)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    if (!row)
        return;
    if (OssShaderNetwork *ofObject = row->data(0, networkRole).value<QPointer<OssShaderNetwork>>())
        networks->setCurrentShaderNetwork(ofObject);
    networks->goToNode(nodeOf(row));
}
