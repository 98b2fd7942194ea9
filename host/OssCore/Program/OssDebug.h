#pragma once

#include "OssCore/OssCore_export.h"

#include <QObject>
#include <QString>
#include <QVector>

/// Writes one line to the debug log. `file` names the source the line belongs to (not
/// necessarily the file it stands in), `message` is a printf format; user text goes in as an
/// argument, never as the format. Length is not limited. GUI thread or any other.
OSSCORE_EXPORT void OssDebug(const char *file, int line, const char *message, ...)
    __attribute__((format(printf, 3, 4)));

/// The same, under a heading of its own: for dumps that run over many lines.
OSSCORE_EXPORT void OssDebugTitle(const char *file, int line, const char *title,
                                  const char *message, ...) __attribute__((format(printf, 4, 5)));

/// In the next line of this thread the object, which "%p" writes as an address, is shown to people by
/// its name.
OSSCORE_EXPORT void OssDebugName(const void *object, const QString &name);

/// People are shown the next line of this thread with the object's name behind it, in quotes: for lines
/// whose text does not say what they are about.
OSSCORE_EXPORT void OssDebugAbout(const QString &name);

/// What was logged in this process, newest last. Keeps the last `Capacity` lines; whoever wants
/// more listens.
class OSSCORE_EXPORT OssDebugLog : public QObject
{
    Q_OBJECT

public:
    enum Category { Plain, Information, Warning };
    Q_ENUM(Category)

    struct Line
    {
        Category category = Plain;
        QString source; ///< without folder and suffix
        int number = 0;
        QString title; ///< empty for ordinary lines
        QString text;  ///< as written, "[ -- ] " and "[ !! ] " included
        QString shown; ///< the same with what OssDebugName() and OssDebugAbout() said
    };

    static constexpr int Capacity = 20000;

    static OssDebugLog *instance();

    QVector<Line> lines() const;
    void clear();

    void append(const char *file, int line, const char *title, const QString &text);

Q_SIGNALS:
    /// In the thread that logged.
    void lineAdded(const OssDebugLog::Line &line);

private:
    OssDebugLog() = default;

    QVector<Line> m_lines;
};

Q_DECLARE_METATYPE(OssDebugLog::Line)
