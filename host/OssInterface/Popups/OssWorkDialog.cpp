#include "OssInterface/Popups/OssWorkDialog.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssApplication.h"

#include <QCloseEvent>
#include <QProgressBar>
#include <QProgressDialog>

namespace {

constexpr int Steps = 1000;
constexpr int Width = 360;

/// Asks for the end of the work and stays until it has ended: what is worked on is in nobody else's
/// hands before.
class BlockingDialog final : public QProgressDialog
{
public:
    using QProgressDialog::QProgressDialog;

    void reject() override { Q_EMIT canceled(); }

protected:
    void closeEvent(QCloseEvent *event) override
    {
        event->ignore();
        Q_EMIT canceled();
    }
};

} // namespace

OssWorkDialog::OssWorkDialog()
{
    const OssStatusManager *status = OssStatusManager::instance();
    connect(status, &OssStatusManager::beginProcessing, this, &OssWorkDialog::begin);
    connect(status, &OssStatusManager::partChanged, this, &OssWorkDialog::showPart);
    connect(status, &OssStatusManager::progressChanged, this, &OssWorkDialog::showProgress);
    connect(status, &OssStatusManager::endProcessing, this, &OssWorkDialog::end);
}

OssWorkDialog::~OssWorkDialog() = default;

void OssWorkDialog::begin(const QString &title)
{
    if (!OssStatusManager::instance()->isBlocking() || !OssApplication::popupsAllowed())
        return;
    m_dialog = std::make_unique<BlockingDialog>(title, tr("Stop"), 0, Steps,
                                                OssApplication::mainWindow());
    m_dialog->setWindowTitle(title);
    m_dialog->setWindowModality(Qt::ApplicationModal);
    m_dialog->setMinimumWidth(Width);
    auto *bar = new QProgressBar; // the dialog takes it
    bar->setTextVisible(false);
    m_dialog->setBar(bar);
    m_dialog->setRange(0, Steps);
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    m_dialog->setMinimumDuration(0);
    m_dialog->setValue(0);
    m_dialog->show();
    // After Qt's own answer, which is to hide it.
    connect(m_dialog.get(), &QProgressDialog::canceled, this, [this] {
        OssStatusManager::instance()->cancel();
        if (!m_dialog || !OssApplication::popupsAllowed())
            return;
        m_dialog->setLabelText(tr("Stopping..."));
        m_dialog->show();
    });
}

void OssWorkDialog::showPart(const QString &part)
{
    if (m_dialog)
        m_dialog->setLabelText(part);
}

void OssWorkDialog::showProgress(int done, int total)
{
    if (m_dialog && total > 0 && !m_dialog->wasCanceled())
        m_dialog->setValue(int(qint64(Steps) * done / total));
}

void OssWorkDialog::end()
{
    m_dialog.reset();
}
