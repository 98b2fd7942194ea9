#include "Ossa/Export/WorkProgress.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

namespace {

constexpr int barWidth = 140;
constexpr int whole = 1000;

} // namespace

WorkProgress::WorkProgress(const QString &accessibleName, const QString &pauseTip,
                           const QString &stopTip, QWidget *parent)
    : QWidget(parent)
    , m_text(new QLabel(this))
    , m_bar(new QProgressBar(this))
    , m_pause(new QToolButton(this))
{
    auto *stop = new QToolButton(this);
    m_text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_bar->setRange(0, whole);
    m_bar->setTextVisible(false);
    m_bar->setFixedWidth(barWidth);
    m_bar->setAccessibleName(accessibleName);
    m_pause->setText(tr("Pause"));
    m_pause->setCheckable(true);
    m_pause->setToolTip(pauseTip);
    stop->setText(tr("Stop"));
    stop->setToolTip(stopTip);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *widget : {static_cast<QWidget *>(m_text), static_cast<QWidget *>(m_bar),
                            static_cast<QWidget *>(m_pause), static_cast<QWidget *>(stop)})
        layout->addWidget(widget);
    connect(m_pause, &QToolButton::clicked, this, &WorkProgress::pauseAsked);
    connect(stop, &QToolButton::clicked, this, &WorkProgress::stopAsked);
    hide();
}

void WorkProgress::showWork(const QString &text, int thousandths, bool isPaused)
{
    m_text->setText(text);
    m_bar->setValue(thousandths);
    m_pause->setChecked(isPaused);
}

QString WorkProgress::withTimeLeft(const QString &name, int seconds)
{
    return seconds < 0 ? name
                       : tr("%1, %2:%3 left")
                             .arg(name)
                             .arg(seconds / 60)
                             .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}
