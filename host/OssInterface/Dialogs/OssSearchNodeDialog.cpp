#include "OssInterface/Dialogs/OssSearchNodeDialog.h"

#include "OssInterface/Dialogs/OssNodeSearch.h"
#include "OssInterface/Dialogs/OssSearchRowDelegate.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QListView>
#include <QStandardItemModel>

#include <algorithm>

namespace {

constexpr int MostRows = 500; ///< more than anybody reads; typing on is faster

enum Role { NodeRole = Qt::UserRole, TypeRole, WhyRole, ColorRole };

} // namespace

OssSearchNodeDialog::OssSearchNodeDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent)
    : OssSearchPopup(tr("Name, type, attribute=value, disabled, error ..."), parent)
    , m_model(new QStandardItemModel(this))
{
    setObjectName(QStringLiteral("OssSearchNodeDialog"));
    for (OssSnBaseNode *node : nodes)
        m_nodes.append(node);
    setModel(m_model);
    OssSearchRowDelegate::Roles roles;
    roles.place = TypeRole;
    roles.explanation = WhyRole;
    roles.color = ColorRole;
    list()->setItemDelegate(new OssSearchRowDelegate(roles, list()));
    list()->setToolTip(tr("With Ctrl the node's properties open, too"));
    search({});
    list()->setCurrentIndex(m_model->index(0, 0));
}

void OssSearchNodeDialog::take()
{
    m_wantsProperties = QGuiApplication::keyboardModifiers() & Qt::ControlModifier;
    OssSearchPopup::take();
}

void OssSearchNodeDialog::setColors(std::function<QColor(const QString &)> colorOf)
{
    m_colorOf = std::move(colorOf);
    search({});
    list()->setCurrentIndex(m_model->index(0, 0));
}

OssSnBaseNode *OssSearchNodeDialog::chosenNode() const
{
    const QModelIndex index = list()->currentIndex();
    return index.isValid() ? m_nodes.value(index.data(NodeRole).toInt()).data() : nullptr;
}

void OssSearchNodeDialog::search(const QString &text)
{
    struct Row
    {
        int node;
        int score;
        QString why;
    };

    QVector<Row> rows;
    for (int i = 0; i < m_nodes.size(); ++i) {
        if (!m_nodes.at(i))
            continue;
        int score = 0;
        const QString why = OssNodeSearch::whyFound(m_nodes.at(i), text, &score);
        if (!why.isEmpty())
            rows.append({i, score, why});
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row &a, const Row &b) { return a.score > b.score; });
    m_model->clear();
    for (int i = 0; i < std::min(rows.size(), MostRows); ++i) {
        const Row &row = rows.at(i);
        const OssSnBaseNode *node = m_nodes.at(row.node);
        auto *item = new QStandardItem(node->name()); // the model takes it
        item->setEditable(false);
        item->setData(row.node, NodeRole);
        item->setData(node->pathKey(), TypeRole);
        item->setData(row.why, WhyRole);
        if (m_colorOf)
            item->setData(m_colorOf(node->pathKey()), ColorRole);
        item->setAccessibleText(node->name() + QStringLiteral(", ") + row.why);
        m_model->appendRow(item);
    }
}
