#include "OssModel/Types/OssSnTypeHelp.h"

#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssMarkdown.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace {

struct Text
{
    QString when;
    QStringList see;
};

using Texts = QHash<QString, Text>;

QString tr(const char *text)
{
    return QCoreApplication::translate("OssSnTypeHelp", text);
}

void readInto(Texts *texts, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    Text *text = nullptr;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    const QString heading = QStringLiteral("## ");
    const QString see = QStringLiteral("See: ");
    for (const QString &line : lines) {
        if (line.startsWith(heading)) {
            text = &(*texts)[line.mid(heading.size()).trimmed()];
        } else if (text && line.startsWith(see)) {
            const QStringList keys = line.mid(see.size()).split(QLatin1Char(','));
            for (const QString &key : keys)
                text->see.append(key.trimmed());
        } else if (text) {
            text->when += line + QLatin1Char('\n');
        }
    }
}

const Texts &texts()
{
    static const Texts read = [] {
        Texts found;
        QDirIterator files(OssResourceInfo::instance()->nodeTypePath(), {QStringLiteral("Help.md")},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext())
            readInto(&found, files.next());
        for (Text &text : found)
            text.when = text.when.trimmed();
        return found;
    }();
    return read;
}

QString words(const QVariant &value)
{
    if (value.type() == QVariant::Bool)
        return value.toBool() ? tr("on") : tr("off");
    return OssAttributeKind::toWords(value);
}

/// Bounds and choices of an attribute, in words.
QString rangeOf(const OssCustomAttribute::Definition &attribute)
{
    if (attribute.defaultValue.type() == QVariant::Bool)
        return tr("on, off");
    const QStringList choices = OssAttributeKind::choices(attribute.defaultValue);
    if (!choices.isEmpty())
        return choices.join(QStringLiteral(", "));
    if (attribute.minimum.isValid() && attribute.maximum.isValid())
        return tr("%1 to %2").arg(words(attribute.minimum), words(attribute.maximum));
    if (attribute.minimum.isValid())
        return tr("from %1 on").arg(words(attribute.minimum));
    if (attribute.maximum.isValid())
        return tr("up to %1").arg(words(attribute.maximum));
    return {};
}

QString cell(const QString &text)
{
    return QStringLiteral("<td>%1</td>").arg(text.toHtmlEscaped());
}

QString headed(const QString &heading, const QStringList &columns, const QString &rows)
{
    if (rows.isEmpty())
        return {};
    QString html = QStringLiteral("<h2>%1</h2>\n<table cellpadding=\"5\">\n<tr>")
                       .arg(heading.toHtmlEscaped());
    for (const QString &column : columns)
        html += QStringLiteral("<th align=\"left\">%1</th>").arg(column.toHtmlEscaped());
    return html + QStringLiteral("</tr>\n") + rows + QStringLiteral("</table>\n");
}

QString portsOf(const QString &heading, const QVector<OssSnNodeType::Port> &ports)
{
    QString rows;
    bool isDescribed = false;
    for (const OssSnNodeType::Port &port : ports)
        isDescribed = isDescribed || !port.description.isEmpty();
    for (const OssSnNodeType::Port &port : ports) {
        rows += QStringLiteral("<tr>") + cell(port.label.isEmpty() ? port.name : port.label)
                + cell(OssSnTypeHelp::wordsOf(port.kind))
                + (isDescribed ? cell(port.description) : QString()) + QStringLiteral("</tr>\n");
    }
    QStringList columns{tr("Name"), tr("Kind")};
    if (isDescribed)
        columns.append(tr("What for"));
    return headed(heading, columns, rows);
}

QString attributesOf(const OssSnNodeType &type)
{
    QString rows;
    for (const OssCustomAttribute &attribute : type.attributes) {
        if (!attribute.isVisible() || attribute.name().startsWith(QLatin1Char('_')))
            continue;
        const OssCustomAttribute::Definition &definition = attribute.definition();
        rows += QStringLiteral("<tr>") + cell(attribute.prettyName()) + cell(rangeOf(definition))
                + cell(words(definition.defaultValue)) + cell(definition.toolTip)
                + QStringLiteral("</tr>\n");
    }
    return headed(tr("Attributes"), {tr("Name"), tr("Range"), tr("Default"), tr("What for")}, rows);
}

QString picturesOf(const OssSnNodeType &type, const QString &manual)
{
    QString cells;
    for (const OssSnTypeHelp::Picture &picture : OssSnTypeHelp::pictures(type, manual)) {
        const QString caption = picture.caption.isEmpty() ? tr("Defaults") : picture.caption;
        cells += QStringLiteral(
                     "<td valign=\"top\"><img src=\"%1/%2\" width=\"160\" alt=\"%3\"><br>"
                     "<small>%3</small></td>")
                     .arg(OssSnTypeHelp::pictureFolder(), picture.file.toHtmlEscaped(),
                          caption.toHtmlEscaped());
    }
    return cells.isEmpty() ? QString()
                           : QStringLiteral("<table class=\"pictures\" cellpadding=\"5\"><tr>%1"
                                            "</tr></table>\n")
                                 .arg(cells);
}

QString linksTo(const QStringList &keys)
{
    QStringList links;
    for (const QString &key : keys)
        links.append(QStringLiteral("<a href=\"%1\">%2</a>")
                         .arg(OssSnTypeHelp::pageName(key),
                              key.section(QLatin1Char('/'), -1).toHtmlEscaped()));
    return links.join(QStringLiteral(", "));
}

} // namespace

QStringList OssSnTypeHelp::writtenKeys()
{
    QStringList keys = texts().keys();
    std::sort(keys.begin(), keys.end());
    return keys;
}

QString OssSnTypeHelp::whenOf(const QString &pathKey)
{
    return texts().value(pathKey).when;
}

QStringList OssSnTypeHelp::seeAlso(const QString &pathKey)
{
    return texts().value(pathKey).see;
}

QString OssSnTypeHelp::wordsOf(OssSnDataKind kind)
{
    switch (kind) {
    case OssSnDataKind::Color:
        return tr("color");
    case OssSnDataKind::Scalar:
        return tr("single value");
    case OssSnDataKind::Vector:
        return tr("vector");
    case OssSnDataKind::Material:
        return tr("material");
    case OssSnDataKind::Data:
        break;
    }
    return tr("data");
}

QString OssSnTypeHelp::pageName(const QString &pathKey)
{
    static const QRegularExpression others(QStringLiteral("[^a-z0-9]+"));
    QString name = QStringLiteral("node/") + pathKey.toLower();
    return name.replace(others, QStringLiteral("-")) + QStringLiteral(".html");
}

QString OssSnTypeHelp::pictureFolder()
{
    return QStringLiteral("pictures/nodes");
}

QVector<OssSnTypeHelp::Picture> OssSnTypeHelp::pictures(const OssSnNodeType &type,
                                                        const QString &manual)
{
    const QString folder = manual + QLatin1Char('/') + pictureFolder() + QLatin1Char('/');
    QFile captions(folder + QStringLiteral("captions.json"));
    QJsonObject texts;
    if (captions.open(QIODevice::ReadOnly))
        texts = QJsonDocument::fromJson(captions.readAll()).object();
    QVector<Picture> found;
    constexpr int Most = 4;
    for (int number = 0; number < Most; ++number) {
        const QString name = type.baseName()
                             + (number == 0 ? QString() : QStringLiteral(" %1").arg(number))
                             + QStringLiteral(".png");
        if (QFileInfo::exists(folder + name))
            found.append({name, texts.value(name).toString()});
    }
    return found;
}

QString OssSnTypeHelp::brief(const OssSnNodeType &type)
{
    const QString manual = OssResourceInfo::instance()->manualPath();
    QString html = QStringLiteral("<html><p><b>%1</b></p><p>%2</p>%3")
                       .arg(type.baseName().toHtmlEscaped(), type.description.toHtmlEscaped(),
                            OssMarkdown::toHtml(whenOf(type.pathKey)));
    const QVector<Picture> drawn = pictures(type, manual);
    if (!drawn.isEmpty())
        html += QStringLiteral("<p><img src=\"%1/%2/%3\" width=\"128\"></p>")
                    .arg(manual, pictureFolder(), drawn.first().file);
    return html + QStringLiteral("</html>");
}

QString OssSnTypeHelp::page(const OssSnNodeType &type, const QString &manual)
{
    QStringList folders = type.pathKey.split(QLatin1Char('/'));
    folders.removeLast();
    QString html = QStringLiteral("<h1>%1</h1>\n<p class=\"path\">%2</p>\n<p>%3</p>\n")
                       .arg(type.baseName().toHtmlEscaped(),
                            folders.join(QStringLiteral(" \u203a ")).toHtmlEscaped(),
                            type.description.toHtmlEscaped());
    html += picturesOf(type, manual);
    const QString when = whenOf(type.pathKey);
    if (!when.isEmpty())
        html += QStringLiteral("<h2>%1</h2>\n").arg(tr("When to use it"))
                + OssMarkdown::toHtml(when);
    html += portsOf(tr("Inputs"), type.inputs) + portsOf(tr("Outputs"), type.outputs)
            + attributesOf(type);
    const QString example = QStringLiteral("examples/%1.ossa").arg(type.baseName());
    if (QFileInfo::exists(manual + QLatin1Char('/') + example))
        html += QStringLiteral("<h2>%1</h2>\n<p><a href=\"%2\">%2</a></p>\n")
                    .arg(tr("An example to open"), example.toHtmlEscaped());
    const QStringList see = seeAlso(type.pathKey);
    if (!see.isEmpty())
        html += QStringLiteral("<h2>%1</h2>\n<p>%2</p>\n").arg(tr("See also"), linksTo(see));
    if (!type.aliases.isEmpty())
        html += QStringLiteral("<p class=\"path\">%1</p>\n")
                    .arg(tr("Also found as: %1")
                             .arg(type.aliases.join(QStringLiteral(", ")))
                             .toHtmlEscaped());
    return html;
}
