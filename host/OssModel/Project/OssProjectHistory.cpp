#include "OssModel/Project/OssProjectHistory.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Documents/OssDeserializer.h"
#include "OssCore/Program/OssDebug.h"

#include <QFile>
#include <QFileInfo>

namespace {

OssResult logged(const OssResult &result)
{
    if (!result)
        OssDebug("OssProjectHistory", __LINE__, "[ !! ] %s", qPrintable(result.error()));
    return result;
}

} // namespace

OssProjectHistory::OssProjectHistory(const QString &projectFolder)
    : m_document(QDir(projectFolder).filePath(QStringLiteral("project.xml")))
    , m_folder(QDir(projectFolder).filePath(QStringLiteral("history")))
    , m_replaced(m_folder.filePath(QStringLiteral("replaced.xml")))
{
}

QString OssProjectHistory::generation(int number) const
{
    return m_folder.filePath(QStringLiteral("project.%1.xml").arg(number));
}

OssResult OssProjectHistory::keepDocument()
{
    if (!QFileInfo::exists(m_document))
        return {};
    const OssResult made = logged(OssAtomicFile::makeFolder(m_folder.path()));
    return made ? logged(OssAtomicFile::keepAs(m_document, m_replaced)) : made;
}

void OssProjectHistory::settle()
{
    if (!QFileInfo::exists(m_replaced))
        return;
    QByteArray document;
    QByteArray replaced;
    if (QFileInfo(m_document).size() == QFileInfo(m_replaced).size()) {
        // What cannot be read may be either; it is looked at again at the next save.
        if (!logged(OssAtomicFile::read(m_document, OssDeserializer::MaximumSize, &document))
            || !logged(OssAtomicFile::read(m_replaced, OssDeserializer::MaximumSize, &replaced)))
            return;
        if (document == replaced) {
            if (!QFile::remove(m_replaced))
                OssDebug("OssProjectHistory", __LINE__, "[ !! ] Cannot remove \"%s\"",
                         qPrintable(m_replaced));
            return;
        }
    }
    moveOn();
}

void OssProjectHistory::moveOn()
{
    // Up to the first gap only, which an interrupted move leaves; the oldest goes when there is none.
    int last = 1;
    while (last < Generations && QFileInfo::exists(generation(last)))
        ++last;
    for (int number = last; number > 1; --number) {
        if (!logged(OssAtomicFile::move(generation(number - 1), generation(number))))
            return;
    }
    static_cast<void>(logged(OssAtomicFile::move(m_replaced, generation(1))));
}
