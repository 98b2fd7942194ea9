#include "Ossa/Headless/ProgressBar.h"

#include <cstdio>

#include <unistd.h>

namespace {

constexpr int barWidth = 30;

} // namespace

ProgressBar::ProgressBar()
    : m_shown(isatty(STDERR_FILENO) == 1)
{
}

ProgressBar::~ProgressBar()
{
    if (m_shown)
        std::fprintf(stderr, "\r%*s\r", barWidth + 60, "");
}

void ProgressBar::show(const QString &name, int done, int total) const
{
    if (!m_shown || total <= 0)
        return;
    const int filled = int(qint64(barWidth) * done / total);
    std::fprintf(stderr, "\r[%s%s] %3d%% %.40s", qPrintable(QString(filled, QLatin1Char('#'))),
                 qPrintable(QString(barWidth - filled, QLatin1Char('.'))),
                 int(qint64(100) * done / total), qPrintable(name));
    std::fflush(stderr);
}
