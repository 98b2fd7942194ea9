#include "Ossa/Window/NotificationBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

NotificationBar::NotificationBar(QWidget *parent)
    : QFrame(parent)
    , m_label(new QLabel(this))
{
    setObjectName(QStringLiteral("NotificationBar"));
    m_label->setTextFormat(Qt::PlainText);
    m_label->setWordWrap(true);
    m_label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto *dismissButton = new QPushButton(tr("Dismiss"), this);
    connect(dismissButton, &QPushButton::clicked, this, &NotificationBar::dismiss);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 6, 8, 6);
    layout->addWidget(m_label, 1);
    layout->addWidget(dismissButton, 0, Qt::AlignTop);
    hide();
}

void NotificationBar::tell(const QString &message)
{
    const QString before = m_label->text();
    m_label->setText(before.isEmpty() ? message : before + QLatin1Char('\n') + message);
    show();
}

QString NotificationBar::text() const
{
    return m_label->text();
}

void NotificationBar::dismiss()
{
    m_label->clear();
    hide();
}
