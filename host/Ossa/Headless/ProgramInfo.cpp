#include "Ossa/Headless/ProgramInfo.h"

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Headless/ProgramVersion.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Program/OssSettings.h"
#include "OssModel/Project/OssNodeTypeWatch.h"

#include <QDir>
#include <QDirIterator>

#include <cstdio>

namespace {

void printTypes(const QString &folder)
{
    int count = 0;
    for (QDirIterator files(folder, {QStringLiteral("*.xml")}, QDir::Files,
                            QDirIterator::Subdirectories);
         files.hasNext(); files.next())
        ++count;
    std::printf("  %s: %d files\n", qPrintable(QDir::toNativeSeparators(folder)), count);
}

} // namespace

int runProgramInfo(const QVector<ProgramInfoPlugin> &plugins)
{
    std::printf("Ossa %s\nsettings: %s\nplug-ins:\n", ProgramVersion::text().c_str(),
                qPrintable(QDir::toNativeSeparators(OssSettings::folderPath())));
    for (const ProgramInfoPlugin &plugin : plugins)
        std::printf("  %s: %s\n", qPrintable(QDir::toNativeSeparators(plugin.file)),
                    qPrintable(plugin.text));
    if (plugins.isEmpty())
        std::printf("  none\n");
    std::printf("node types:\n");
    const QStringList folders = OssResourceInfo::instance()->nodeTypePaths();
    for (const QString &folder : folders)
        printTypes(folder);
    printTypes(OssNodeTypeWatch::folderPath());
    return ExitCode::Success;
}
