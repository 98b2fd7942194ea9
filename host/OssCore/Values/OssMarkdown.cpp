#include "OssCore/Values/OssMarkdown.h"

#include <QByteArray>

#include <md4c-html.h>
#include <md4c.h>

namespace {

void append(const MD_CHAR *text, MD_SIZE size, void *html)
{
    static_cast<QByteArray *>(html)->append(text, int(size));
}

} // namespace

QString OssMarkdown::toHtml(const QString &markdown)
{
    const QByteArray text = markdown.toUtf8();
    QByteArray html;
    md_html(text.constData(), MD_SIZE(text.size()), append, &html, MD_FLAG_TABLES, 0);
    return QString::fromUtf8(html);
}
