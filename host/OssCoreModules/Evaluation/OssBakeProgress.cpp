#include "OssCoreModules/Evaluation/OssBakeProgress.h"

#include "OssCoreModules/Interface/OssApplication.h"

#include <QProgressBar>
#include <QProgressDialog>

namespace {

constexpr int Steps = 1000;

} // namespace

OssBakeProgress::OssBakeProgress(const QString &title, int parts)
    : m_work(title)
    , m_parts(std::max(1, parts))
{
    if (!OssApplication::popupsAllowed())
        return;
    m_dialog = std::make_unique<QProgressDialog>(title, QProgressDialog::tr("Stop"), 0, Steps,
                                                 OssApplication::mainWindow());
    m_dialog->setWindowTitle(title);
    m_dialog->setWindowModality(Qt::ApplicationModal);
    m_dialog->setMinimumWidth(360);
    auto *bar = new QProgressBar; // the dialog takes it
    bar->setTextVisible(false);
    m_dialog->setBar(bar);
    m_dialog->setRange(0, Steps);
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    m_dialog->setMinimumDuration(0);
    m_dialog->setValue(0);
}

OssBakeProgress::~OssBakeProgress() = default;

std::function<bool(int, int)> OssBakeProgress::forPart(int part, const QString &name)
{
    if (m_dialog)
        m_dialog->setLabelText(name);
    return [this, part](int done, int total) {
        const int within = total > 0 ? int(qint64(Steps) * done / total) : 0;
        return tell(Steps * part + within, Steps * m_parts);
    };
}

bool OssBakeProgress::isStopped() const
{
    return m_work.isCancelled() || (m_dialog && m_dialog->wasCanceled());
}

bool OssBakeProgress::tell(int done, int total)
{
    m_work.setProgress(done, total);
    if (m_dialog && !m_dialog->wasCanceled())
        m_dialog->setValue(int(qint64(Steps) * done / total));
    return !isStopped();
}
