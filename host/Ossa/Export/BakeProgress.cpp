#include "Ossa/Export/BakeProgress.h"

#include "OssModel/Evaluation/OssBakeManager.h"

BakeProgress::BakeProgress(QWidget *parent)
    : WorkProgress(tr("Progress of baking"), tr("Let baking rest"),
                   tr("Stop baking; what is baked stays"), parent)
{
    OssBakeManager *bakes = OssBakeManager::instance();
    connect(this, &WorkProgress::pauseAsked, bakes, &OssBakeManager::setPaused);
    connect(this, &WorkProgress::stopAsked, bakes, &OssBakeManager::cancel);
    connect(bakes, &OssBakeManager::progressed, this, &BakeProgress::refresh);
    refresh();
}

void BakeProgress::refresh()
{
    const OssBakeManager *bakes = OssBakeManager::instance();
    setVisible(bakes->isRunning());
    if (!bakes->isRunning())
        return;
    QString text = bakes->waitsFor();
    if (bakes->isPaused())
        text = tr("Baking rests at %1 %").arg(bakes->thousandths() / 10);
    else if (text.isEmpty())
        text = tr("Baking %1").arg(withTimeLeft(bakes->currentNode(), bakes->secondsLeft()));
    showWork(text, bakes->thousandths(), bakes->isPaused());
}
