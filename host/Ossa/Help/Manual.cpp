#include "Ossa/Help/Manual.h"

#include "Ossa/Help/CommandNames.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Values/OssMarkdown.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Types/OssMaterialTypes.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssModel/Types/OssSnTypeHelp.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextDocumentFragment>
#include <QUrl>

#include <algorithm>

namespace {

const QString commandsAddress = QStringLiteral("commands.html");
const QString nodesAddress = QStringLiteral("nodes.html");

QString tr(const char *text)
{
    return QCoreApplication::translate("Manual", text);
}

QString textOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// "Noise" of "Procedural/Noise/Perlin Noise"; of materials all folders: "Materials: Metal".
QString folderOf(const QString &pathKey)
{
    const QString folder = pathKey.section(QLatin1Char('/'), -2, -2);
    if (OssMaterialTypes::isMaterial(pathKey))
        return tr("Materials: %1").arg(folder);
    return folder == QLatin1String("_System") ? tr("System") : folder;
}

} // namespace

Manual::Manual(Reader reader, const QString &folder)
    : m_reader(reader)
    , m_folder(folder)
{
    addChapters();
    m_pages.append({commandsAddress, tr("Every Command"), {}, {}, {}});
    m_pages.append({nodesAddress, tr("Every Node"), {}, {}, {}});
    addNodeTypes();
}

void Manual::addChapters()
{
    const QDir folder(OssResourceInfo::instance()->manualSourcePath());
    const QFileInfoList files = folder.entryInfoList({QStringLiteral("*.md")}, QDir::Files,
                                                     QDir::Name);
    for (const QFileInfo &file : files) {
        const QString first = textOf(file.filePath()).section(QLatin1Char('\n'), 0, 0);
        const QString name = file.completeBaseName().section(QLatin1Char('-'), 1);
        m_pages.append({name + QStringLiteral(".html"), first.mid(2), {}, file.filePath(), {}});
    }
}

void Manual::addNodeTypes()
{
    QStringList keys = OssShaderNetworkManager::instance()->nodePathKeys();
    // What stands in a folder itself comes before what stands in folders of it.
    std::stable_sort(keys.begin(), keys.end(), [](const QString &a, const QString &b) {
        return a.section(QLatin1Char('/'), 0, -2) < b.section(QLatin1Char('/'), 0, -2);
    });
    for (const QString &key : keys) {
        const auto type = OssShaderNetworkManager::instance()->nodeType(key);
        if (type)
            m_pages.append(
                {OssSnTypeHelp::pageName(key), type->baseName(), folderOf(key), {}, key});
    }
}

const Manual::Page *Manual::find(const QString &address) const
{
    const auto found = std::find_if(m_pages.cbegin(), m_pages.cend(),
                                    [&](const Page &page) { return page.address == address; });
    return found == m_pages.cend() ? nullptr : &*found;
}

QString Manual::body(const QString &address) const
{
    const Page *page = find(address);
    if (!page)
        return {};
    if (page->address == commandsAddress)
        return commands();
    if (page->address == nodesAddress)
        return nodeTypes();
    if (page->pathKey.isEmpty())
        return chapter(*page, nullptr);
    const auto type = OssShaderNetworkManager::instance()->nodeType(page->pathKey);
    return type ? OssSnTypeHelp::page(*type, m_folder) : QString();
}

QString Manual::plainText(const QString &address) const
{
    return QTextDocumentFragment::fromHtml(body(address)).toPlainText().simplified();
}

QStringList Manual::unknownNames(const QString &address) const
{
    QStringList unknown;
    const Page *page = find(address);
    if (page && !page->file.isEmpty())
        chapter(*page, &unknown);
    return unknown;
}

QString Manual::exampleScheme()
{
    return QStringLiteral("open:");
}

QString Manual::named(const QString &name) const
{
    const QString example = QStringLiteral("example:");
    if (name.startsWith(example)) {
        const QString project = name.mid(example.size());
        const QString words = QStringLiteral("**%1**").arg(project.section(QLatin1Char('/'), -1));
        const QDir folder(OssResourceInfo::instance()->examplePath());
        if (!folder.exists(project + QStringLiteral(".ossa")))
            return {};
        return m_reader == InProgram
                   ? QStringLiteral("[%1](<%2%3>)").arg(words, exampleScheme(), project)
                   : words;
    }
    if (const OssCommandTable::Row *row = OssCommandTable::find(name))
        return CommandNames::asMarkdown(*row);
    if (OssShaderNetworkManager::instance()->nodeType(name))
        return QStringLiteral("[%1](%2)")
            .arg(name.section(QLatin1Char('/'), -1), OssSnTypeHelp::pageName(name));
    return {};
}

QString Manual::chapter(const Page &page, QStringList *unknown) const
{
    static const QRegularExpression brackets(QStringLiteral("\\[\\[([^\\]]+)\\]\\]"));
    const QString text = textOf(page.file);
    QString markdown;
    int place = 0;
    auto matches = brackets.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString words = named(match.captured(1));
        if (words.isEmpty() && unknown)
            unknown->append(match.captured(1));
        markdown += text.mid(place, match.capturedStart() - place)
                    + (words.isEmpty() ? match.captured(1) : words);
        place = match.capturedEnd();
    }
    return withPictures(OssMarkdown::toHtml(markdown + text.mid(place)));
}

QString Manual::withPictures(const QString &html) const
{
    static const QRegularExpression picture(
        QStringLiteral("<p><img src=\"([^\"]+)\"( alt=\"[^\"]*\")></p>\n?"));
    QString shown;
    int place = 0;
    auto matches = picture.globalMatch(html);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString file = QUrl::fromPercentEncoding(match.captured(1).toUtf8());
        shown += html.mid(place, match.capturedStart() - place);
        if (QFileInfo::exists(m_folder + QLatin1Char('/') + file))
            shown += QStringLiteral("<p><img src=\"%1\" width=\"640\"%2></p>\n")
                         .arg(file, match.captured(2));
        place = match.capturedEnd();
    }
    return shown + html.mid(place);
}

QString Manual::commands() const
{
    QString html =
        QStringLiteral("<h1>%1</h1>\n<p>%2</p>\n")
            .arg(tr("Every Command").toHtmlEscaped(),
                 tr("What stands in menus, with its keys. Keys of the node graph act while "
                    "it has the focus, those of the Viewer in its pictures. All of them can "
                    "be changed, and every command can be found by a few letters of its "
                    "name.")
                     .toHtmlEscaped());
    QString folder;
    for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
        const QString name = QString::fromLatin1(row.name);
        if (name == QLatin1String("*"))
            continue;
        if (folder != QLatin1String(row.folder)) {
            html += folder.isEmpty() ? QString() : QStringLiteral("</table>\n");
            folder = QString::fromLatin1(row.folder);
            html += QStringLiteral("<h2>%1</h2>\n<table cellpadding=\"4\">\n"
                                   "<tr><th align=\"left\">%2</th><th align=\"left\">%3</th>"
                                   "<th align=\"left\">%4</th><th align=\"left\">%5</th></tr>\n")
                        .arg(CommandNames::folder(row).toHtmlEscaped(), tr("Command"), tr("Keys"),
                             tr("Menu"), tr("What it does"));
        }
        const auto cell = [](const QString &text) {
            return QStringLiteral("<td>%1</td>").arg(text.toHtmlEscaped());
        };
        html += QStringLiteral("<tr>") + cell(OssCommandTable::text(row))
                + cell(CommandNames::keys(row)) + cell(CommandNames::menu(row))
                + cell(OssCommandTable::tip(row)) + QStringLiteral("</tr>\n");
    }
    return html + QStringLiteral("</table>\n");
}

QString Manual::nodeTypes() const
{
    QString html =
        QStringLiteral("<h1>%1</h1>\n<p>%2</p>\n")
            .arg(tr("Every Node").toHtmlEscaped(),
                 tr("Tab in the node graph finds any of them by a few letters; F1 on a node "
                    "opens its page.")
                     .toHtmlEscaped());
    QString group;
    for (const Page &page : m_pages) {
        if (page.pathKey.isEmpty())
            continue;
        if (group != page.group) {
            html += group.isEmpty() ? QString() : QStringLiteral("</table>\n");
            group = page.group;
            html += QStringLiteral("<h2>%1</h2>\n<table cellpadding=\"4\">\n")
                        .arg(group.toHtmlEscaped());
        }
        const auto type = OssShaderNetworkManager::instance()->nodeType(page.pathKey);
        html += QStringLiteral("<tr><td><a href=\"%1\">%2</a></td><td>%3</td></tr>\n")
                    .arg(page.address, page.title.toHtmlEscaped(),
                         type ? type->description.toHtmlEscaped() : QString());
    }
    return html + QStringLiteral("</table>\n");
}
