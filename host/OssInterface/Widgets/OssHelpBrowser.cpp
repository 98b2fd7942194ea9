#include "OssInterface/Widgets/OssHelpBrowser.h"

#include <QPalette>

namespace {

QString styleFor(const QPalette &palette)
{
    const QString style = QStringLiteral(
        "h1 { font-size: 20pt; font-weight: 600; margin-top: 4px; margin-bottom: 4px; }"
        "h2 { font-size: 13pt; font-weight: 600; margin-top: 18px; margin-bottom: 4px; }"
        "h3 { font-weight: 600; margin-top: 12px; margin-bottom: 2px; }"
        "p, li { line-height: 140%; }"
        "th { color: %1; font-weight: 600; }"
        "code, pre, kbd { background-color: %2; }"
        ".path { color: %1; }"
        "a { color: %3; text-decoration: none; }");
    return style.arg(palette.color(QPalette::Disabled, QPalette::Text).lighter(130).name(),
                     palette.color(QPalette::Button).name(), palette.color(QPalette::Link).name());
}

} // namespace

OssHelpBrowser::OssHelpBrowser(QWidget *parent)
    : QTextBrowser(parent)
{
    setOpenLinks(false);
    document()->setDocumentMargin(18);
    document()->setDefaultStyleSheet(styleFor(palette()));
}

void OssHelpBrowser::showPage(const QString &body, const QString &folder)
{
    setSearchPaths({folder});
    setHtml(body);
}
