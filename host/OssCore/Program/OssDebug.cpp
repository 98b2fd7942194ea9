#include "OssCore/Program/OssDebug.h"

#include <QMutex>

#include <cstdarg>
#include <cstdio>
#include <utility>

namespace {

QMutex &logMutex()
{
    static QMutex mutex;
    return mutex;
}

__attribute__((format(printf, 1, 0))) QString formatted(const char *message, va_list arguments)
{
    va_list copy;
    va_copy(copy, arguments);
    const int length = std::vsnprintf(nullptr, 0, message, copy);
    va_end(copy);
    if (length <= 0)
        return {};
    QByteArray buffer(length, Qt::Uninitialized);
    std::vsnprintf(buffer.data(), std::size_t(length) + 1, message, arguments);
    return QString::fromLocal8Bit(buffer);
}

struct Named
{
    QString address;
    QString name;
};

// Of the thread's next line.
thread_local QVector<Named> names;
thread_local QString about;

OssDebugLog::Category categoryOf(const QString &text)
{
    if (text.startsWith(QLatin1String("[ !! ] ")))
        return OssDebugLog::Warning;
    if (text.startsWith(QLatin1String("[ -- ] ")))
        return OssDebugLog::Information;
    return OssDebugLog::Plain;
}

QString sourceName(const char *file)
{
    QString name = QString::fromLocal8Bit(file ? file : "");
    name = name.mid(name.lastIndexOf(QLatin1Char('/')) + 1);
    const int dot = name.indexOf(QLatin1Char('.'));
    return dot < 0 ? name : name.left(dot);
}

} // namespace

void OssDebug(const char *file, int line, const char *message, ...)
{
    va_list arguments;
    va_start(arguments, message);
    const QString text = formatted(message, arguments);
    va_end(arguments);
    OssDebugLog::instance()->append(file, line, "", text);
}

void OssDebugTitle(const char *file, int line, const char *title, const char *message, ...)
{
    va_list arguments;
    va_start(arguments, message);
    const QString text = formatted(message, arguments);
    va_end(arguments);
    OssDebugLog::instance()->append(file, line, title, text);
}

void OssDebugName(const void *object, const QString &name)
{
    char address[32] = {};
    std::snprintf(address, sizeof(address), "%p", object);
    names.append({QString::fromLatin1(address), name});
}

void OssDebugAbout(const QString &name)
{
    about = name;
}

OssDebugLog *OssDebugLog::instance()
{
    static OssDebugLog log;
    return &log;
}

QVector<OssDebugLog::Line> OssDebugLog::lines() const
{
    const QMutexLocker lock(&logMutex());
    return m_lines;
}

void OssDebugLog::clear()
{
    const QMutexLocker lock(&logMutex());
    m_lines.clear();
}

void OssDebugLog::append(const char *file, int line, const char *title, const QString &text)
{
    QString shown = text;
    const QVector<Named> named = std::exchange(names, {});
    for (const Named &object : named)
        shown.replace(object.address, object.name);
    const QString subject = std::exchange(about, {});
    if (!subject.isEmpty())
        shown += QStringLiteral(": \"%1\"").arg(subject);
    const Line entry{
        categoryOf(text), sourceName(file), line, QString::fromUtf8(title), text, shown};
    {
        const QMutexLocker lock(&logMutex());
        if (m_lines.size() >= Capacity)
            m_lines.remove(0, Capacity / 10);
        m_lines.append(entry);
    }
    Q_EMIT lineAdded(entry);
}
