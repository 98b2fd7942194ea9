#include "Ossa/Help/ManualWriter.h"

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Help/Manual.h"
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssModel/Types/OssSnTypeHelp.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

QString link(const Manual::Page &page, const QString &current)
{
    return QStringLiteral("<a href=\"%1\"%2>%3</a>\n")
        .arg(page.address,
             page.address == current ? QStringLiteral(" class=\"current\"") : QString(),
             page.title.toHtmlEscaped());
}

/// All pages; node types by their folders, of which that of the current page is open.
QString contents(const Manual &manual, const Manual::Page &current)
{
    QString html;
    QString group;
    for (const Manual::Page &page : manual.pages()) {
        if (group != page.group) {
            html += group.isEmpty() ? QString() : QStringLiteral("</details>\n");
            group = page.group;
            html += QStringLiteral("<details%1><summary>%2</summary>\n")
                        .arg(group == current.group ? QStringLiteral(" open") : QString(),
                             group.toHtmlEscaped());
        }
        html += link(page, current.address);
    }
    return group.isEmpty() ? html : html + QStringLiteral("</details>\n");
}

QString framed(const Manual &manual, const Manual::Page &page)
{
    const QString frame = QStringLiteral(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>%1 \u2013 Ossa</title>\n<link rel=\"stylesheet\" href=\"manual.css\">\n"
        "</head>\n<body>\n<nav>\n<input id=\"search\" type=\"search\" placeholder=\"Search\" "
        "aria-label=\"Search\">\n<div id=\"found\"></div>\n<div id=\"contents\">\n%2</div>\n</nav>\n"
        "<main>\n%3</main>\n<script src=\"search-index.js\"></script>\n"
        "<script src=\"manual.js\"></script>\n</body>\n</html>\n");
    return frame.arg(page.title.toHtmlEscaped(), contents(manual, page), manual.body(page.address));
}

/// What the search looks through, as a script: a browser reads no other file beside a page.
QByteArray searchIndex(const Manual &manual)
{
    QJsonArray rows;
    for (const Manual::Page &page : manual.pages()) {
        QJsonObject row;
        row.insert(QStringLiteral("address"), page.address);
        row.insert(QStringLiteral("title"), page.title);
        row.insert(QStringLiteral("text"), manual.plainText(page.address));
        rows.append(row);
    }
    return "var manualPages = " + QJsonDocument(rows).toJson(QJsonDocument::Compact) + ";\n";
}

/// What texts speak of and is not there, a line for each.
QStringList troublesOf(const Manual &manual)
{
    QStringList troubles;
    for (const Manual::Page &page : manual.pages()) {
        for (const QString &name : manual.unknownNames(page.address))
            troubles.append(page.file + QStringLiteral(": there is no ") + name);
    }
    for (const QString &key : OssSnTypeHelp::writtenKeys()) {
        if (!manual.find(OssSnTypeHelp::pageName(key)))
            troubles.append(QStringLiteral("Help.md: there is no node type ") + key);
    }
    return troubles;
}

} // namespace

OssResult ManualWriter::write(const QString &folder)
{
    if (!QDir().mkpath(folder))
        return OssResult::failure(
            QCoreApplication::translate("ManualWriter", "%1: the folder cannot be made")
                .arg(folder));
    const QDir target(folder);
    const Manual manual(Manual::InBrowser, target.absolutePath());
    for (const Manual::Page &page : manual.pages()) {
        const OssResult written = OssAtomicFile::write(target.filePath(page.address),
                                                       framed(manual, page).toUtf8());
        if (!written)
            return written;
    }
    const QDir sources(OssResourceInfo::instance()->manualSourcePath());
    for (const char *name : {"manual.css", "manual.js"}) {
        QFile file(sources.filePath(QLatin1String(name)));
        if (!file.open(QIODevice::ReadOnly))
            return OssResult::failure(file.fileName() + QStringLiteral(": ") + file.errorString());
        const OssResult written = OssAtomicFile::write(target.filePath(QLatin1String(name)),
                                                       file.readAll());
        if (!written)
            return written;
    }
    return OssAtomicFile::write(target.filePath(QStringLiteral("search-index.js")),
                                searchIndex(manual));
}

int runManualCommand(const QString &folder)
{
    const OssResult written = ManualWriter::write(folder);
    if (!written)
        return failCommand(written.error());
    const QStringList troubles = troublesOf(Manual(Manual::InBrowser, folder));
    if (!troubles.isEmpty())
        return failCommand(troubles.join(QLatin1Char('\n')));
    std::printf("%s\n", qPrintable(QDir(folder).filePath(Manual::firstAddress())));
    return ExitCode::Success;
}
