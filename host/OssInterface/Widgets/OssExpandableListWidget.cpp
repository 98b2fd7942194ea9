#include "OssInterface/Widgets/OssExpandableListWidget.h"

#include "OssInterface/Widgets/OssExpandableListHeading.h"

#include <QVBoxLayout>

OssExpandableListWidget::OssExpandableListWidget(const QString &title, QWidget *parent)
    : QFrame(parent)
    , m_layout(new QVBoxLayout(this))
{
    m_layout->setContentsMargins(1, 1, 1, 1);
    m_layout->setSpacing(0);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    if (title.isEmpty())
        return;
    m_heading = new OssExpandableListHeading(title, this);
    m_layout->addWidget(m_heading);
    connect(m_heading, &OssExpandableListHeading::toggled, this, &OssExpandableListWidget::toggle);
}

void OssExpandableListWidget::setBody(QWidget *body)
{
    if (m_body == body)
        return;
    delete m_body;
    m_body = body;
    if (!body)
        return;
    m_layout->addWidget(body);
    body->setVisible(!m_collapsed);
}

void OssExpandableListWidget::collapse()
{
    setCollapsed(true);
}

void OssExpandableListWidget::expand()
{
    setCollapsed(false);
}

void OssExpandableListWidget::toggle()
{
    setCollapsed(!m_collapsed);
}

void OssExpandableListWidget::setCollapsed(bool collapsed)
{
    if (m_collapsed == collapsed)
        return;
    m_collapsed = collapsed;
    if (m_body)
        m_body->setVisible(!collapsed);
    if (m_heading)
        m_heading->setCollapsed(collapsed);
    Q_EMIT collapsedChanged(collapsed);
}
