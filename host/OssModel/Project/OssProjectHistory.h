#pragma once

#include "OssCore/Values/OssResult.h"

#include <QDir>

/// The last good documents of a project, history/project.1.xml (the newest) to project.3.xml.
///
/// Before a save gives up the document it is kept as history/replaced.xml; the generations move on
/// only when that document has really been replaced by another. So neither a save that fails nor a
/// process that dies in the midst of one costs a generation: the next save settles what was left.
class OssProjectHistory
{
public:
    static constexpr int Generations = 3;

    explicit OssProjectHistory(const QString &projectFolder);

    /// Keeps the project's document, if there is one. A failure is logged as well as returned.
    OssResult keepDocument();
    /// Makes what is kept the newest generation if the project's document is another by now, and
    /// forgets it if not. Failures are logged: the next call tries again.
    void settle();

private:
    QString generation(int number) const;
    void moveOn();

    QString m_document;
    QDir m_folder;
    QString m_replaced;
};
