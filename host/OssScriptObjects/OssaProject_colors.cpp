// In which colours a project is reckoned, for scripts.
#include "OssScriptObjects/OssaProject.h"

#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectColors.h"

namespace Ossa {

QString Project::colorConfig() const
{
    const auto *own = wrapped<OssProject>();
    return own ? own->colorConfig() : QString();
}

void Project::setColorConfig(const QString &config)
{
    const auto *own = wrapped<OssProject>();
    if (!own)
        return;
    OssColorSettings colors = own->colors();
    colors.config = config;
    colors.working.clear(); // it was a name of the other one
    changeColors(colors, false);
}

QString Project::workingSpace() const
{
    return wrapped<OssProject>() ? QString::fromStdString(OssColorManagement::spaces()->working())
                                 : QString();
}

void Project::setWorkingSpace(const QString &space)
{
    const auto *own = wrapped<OssProject>();
    if (!own)
        return;
    OssColorSettings colors = own->colors();
    colors.working = space;
    changeColors(colors, false);
}

int Project::changeWorkingSpace(const QString &space)
{
    const auto *own = wrapped<OssProject>();
    if (!own)
        return 0;
    OssColorSettings colors = own->colors();
    colors.working = space;
    return changeColors(colors, true);
}

int Project::changeColors(const OssColorSettings &colors, bool converts)
{
    OssEvColorSpaces::Pointer spaces;
    OssResult result = OssColorManagement::find(colors, &spaces);
    int converted = 0;
    if (result)
        result = OssProjectColors::change(wrapped<OssProject>(), colors,
                                          converts ? OssProjectColors::Values::Converted
                                                   : OssProjectColors::Values::Kept,
                                          &converted);
    if (!result)
        fail(OssScriptException::NotAllowed, result.error());
    return converted;
}

QStringList Project::fileRules() const
{
    const auto *own = wrapped<OssProject>();
    return own ? own->fileRules() : QStringList();
}

void Project::setFileRules(const QStringList &rules)
{
    auto *own = wrapped<OssProject>();
    for (const QString &rule : rules) {
        const int at = rule.lastIndexOf(QLatin1Char('='));
        if (own && (at < 1 || at + 1 == rule.size())) {
            fail(OssScriptException::OutOfRange,
                 QStringLiteral("\"%1\" is no rule: PATTERN=SPACE is one").arg(rule));
            return;
        }
    }
    if (own)
        own->setFileRules(rules);
}

QString Project::colorProblem() const
{
    return wrapped<OssProject>() ? OssColorManagement::instance()->problem() : QString();
}

QStringList Project::colorSpaces() const
{
    QStringList names;
    if (wrapped<OssProject>()) {
        for (const std::string &name : OssColorManagement::spaces()->names())
            names.append(QString::fromStdString(name));
    }
    return names;
}

} // namespace Ossa
