#include "Ossa/Palettes/ProblemsPanel.h"

#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Nodes/OssProblems.h"

#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int NodeRole = Qt::UserRole;
constexpr int NodeWidth = 180;

OssSnBaseNode *nodeOf(const QTreeWidgetItem *row)
{
    return row ? row->data(0, NodeRole).value<QPointer<OssSnBaseNode>>().data() : nullptr;
}

} // namespace

Q_DECLARE_METATYPE(QPointer<OssSnBaseNode>)

ProblemsPanel::ProblemsPanel(QWidget *parent)
    : QWidget(parent)
    , m_list(new QTreeWidget(this))
    , m_none(new QLabel(tr("Nothing is wrong with any node."), this))
{
    m_list->setHeaderLabels({tr("Node"), tr("What is wrong")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setAccessibleName(tr("Problems"));
    m_list->header()->resizeSection(0, NodeWidth);
    connect(m_list, &QTreeWidget::itemActivated, this, &ProblemsPanel::show);
    m_none->setObjectName(QStringLiteral("Muted"));
    m_none->setAlignment(Qt::AlignCenter);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(m_list);
    layout->addWidget(m_none, 1);
    setFocusProxy(m_list);
    connect(OssProblems::instance(), &OssProblems::changed, this, &ProblemsPanel::refresh);
    refresh();
}

void ProblemsPanel::refresh()
{
    const OssSnBaseNode *current = nodeOf(m_list->currentItem());
    m_list->clear();
    const QVector<OssProblems::Problem> problems = OssProblems::instance()->problems();
    for (const OssProblems::Problem &problem : problems) {
        auto *row = new QTreeWidgetItem(m_list); // the list's
        row->setText(0, problem.node->name());
        row->setToolTip(0, problem.path);
        row->setText(1, QString(problem.reason).replace(QLatin1Char('\n'), QLatin1String("; ")));
        row->setToolTip(1, problem.reason);
        row->setData(0, NodeRole, QVariant::fromValue(QPointer<OssSnBaseNode>(problem.node)));
        if (problem.node == current)
            m_list->setCurrentItem(row);
    }
    m_list->setVisible(!problems.isEmpty());
    m_none->setVisible(problems.isEmpty());
}

void ProblemsPanel::show(const QTreeWidgetItem *row)
{
    OssShaderNetworkManager::instance()->goToNode(nodeOf(row));
}
