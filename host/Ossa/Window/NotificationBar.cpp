#include "Ossa/Window/NotificationBar.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

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

void NotificationBar::tell(const QString &message, const QString &subject)
{
    const auto same = std::find_if(m_messages.begin(), m_messages.end(), [&](const Message &one) {
        return !subject.isEmpty() && one.subject == subject;
    });
    if (same != m_messages.end())
        same->text = message;
    else
        m_messages.append({subject, message});
    m_messages.erase(std::remove_if(m_messages.begin(), m_messages.end(),
                                    [](const Message &one) { return one.text.isEmpty(); }),
                     m_messages.end());
    refresh();
}

void NotificationBar::refresh()
{
    QStringList texts;
    for (const Message &message : qAsConst(m_messages))
        texts.append(message.text);
    m_label->setText(texts.join(QLatin1Char('\n')));
    for (const Remedy &remedy : qAsConst(m_remedies)) {
        const auto isIt = [&remedy](const Message &one) {
            return one.subject == remedy.subject;
        };
        remedy.button->setVisible(std::any_of(m_messages.cbegin(), m_messages.cend(), isIt));
    }
    setVisible(!texts.isEmpty());
}

void NotificationBar::addRemedy(const QString &subject, QAction *action)
{
    auto *button = new QPushButton(action->text(), this);
    button->setToolTip(action->toolTip());
    button->hide();
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    m_remedies.append({subject, button});
    auto *row = qobject_cast<QHBoxLayout *>(layout());
    row->insertWidget(row->count() - 1, button, 0, Qt::AlignTop);
}

QString NotificationBar::text() const
{
    return m_label->text();
}

void NotificationBar::dismiss()
{
    m_messages.clear();
    refresh();
}
