#include "OssScriptObjects/OssaProgress.h"

#include "OssScriptObjects/OssScriptManager.h"

namespace Ossa {

Progress::Progress(QObject *status)
{
    initAs<OssStatusManager>(status);
    // What a script began and did not end is over with the script.
    connect(OssScriptManager::instance(), &OssScriptManager::scriptEnded, this, &Progress::endAll);
}

Progress::~Progress()
{
    endAll();
}

void Progress::endAll()
{
    while (!m_works.empty())
        m_works.pop_back();
}

bool Progress::isCancelled() const
{
    return wrapped<OssStatusManager>() && !m_works.empty() && m_works.back()->isCancelled();
}

void Progress::begin(const QString &title)
{
    if (wrapped<OssStatusManager>())
        m_works.push_back(std::make_unique<OssStatusManager::Work>(title));
}

void Progress::set(int done, int total)
{
    if (m_works.empty())
        fail(OssScriptException::WrongState, QStringLiteral("No work has begun"));
    else
        m_works.back()->setProgress(done, total);
}

void Progress::end()
{
    if (m_works.empty())
        fail(OssScriptException::WrongState, QStringLiteral("No work has begun"));
    else
        m_works.pop_back();
}

void Progress::message(const QString &text)
{
    if (auto *status = wrapped<OssStatusManager>())
        status->showMessage(text);
}

} // namespace Ossa
