#include "OssInterface/Widgets/OssExpandableListHeading.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QToolButton>

OssExpandableListHeading::OssExpandableListHeading(const QString &text, QWidget *parent)
    : QWidget(parent)
    , m_arrow(new QToolButton(this))
    , m_label(new QLabel(this))
    , m_leading(new QHBoxLayout)
    , m_widgets(new QHBoxLayout)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->setSpacing(4);
    layout->addWidget(m_arrow);
    layout->addLayout(m_leading);
    layout->addWidget(m_label, 1);
    layout->addLayout(m_widgets);
    m_leading->setSpacing(2);
    m_widgets->setSpacing(2);

    m_arrow->setAutoRaise(true);
    m_arrow->setFocusPolicy(Qt::TabFocus);
    connect(m_arrow, &QToolButton::clicked, this, &OssExpandableListHeading::toggled);

    QFont bold = m_label->font();
    bold.setWeight(QFont::DemiBold);
    m_label->setFont(bold);
    m_label->setTextFormat(Qt::PlainText);
    // A long title must not keep the panel from getting narrow.
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    setText(text);
    setCollapsed(false);
}

QString OssExpandableListHeading::text() const
{
    return m_label->text();
}

void OssExpandableListHeading::setText(const QString &text)
{
    m_label->setText(text);
    showToolTip();
    m_arrow->setAccessibleName(text);
}

void OssExpandableListHeading::setDescription(const QString &description)
{
    m_description = description;
    showToolTip();
}

void OssExpandableListHeading::showToolTip()
{
    const QString text = m_description.isEmpty() ? this->text()
                                                 : this->text() + QLatin1Char('\n') + m_description;
    setToolTip(text);
    m_label->setToolTip(text);
}

void OssExpandableListHeading::insertWidget(int index, QWidget *widget)
{
    if (!widget)
        return;
    if (index < 0)
        m_widgets->addWidget(widget);
    else
        m_leading->insertWidget(index, widget); // beyond the last: at the end
}

void OssExpandableListHeading::setCollapsed(bool collapsed)
{
    m_arrow->setArrowType(collapsed ? Qt::RightArrow : Qt::DownArrow);
    m_arrow->setAccessibleDescription(collapsed ? tr("collapsed") : tr("expanded"));
}

void OssExpandableListHeading::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
        Q_EMIT toggled();
    else
        QWidget::mouseReleaseEvent(event);
}
