#pragma once

#include "OssCore/OssCore_export.h"

#include <QString>

/// Texts that people write, for those who read them.
namespace OssMarkdown {

/// Markdown as HTML, without a frame around it: CommonMark with tables. What is HTML in it stays. Never
/// fails: all text is Markdown.
OSSCORE_EXPORT QString toHtml(const QString &markdown);

} // namespace OssMarkdown
