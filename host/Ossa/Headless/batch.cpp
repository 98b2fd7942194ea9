#include "Ossa/Headless/BakeCommand.h"
#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Headless/InfoCommand.h"
#include "Ossa/Headless/ProgramInfo.h"
#include "Ossa/Headless/ProjectTroubles.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/OssModelServices.h"
#include "OssModel/Project/OssNodeTypeWatch.h"

#include <QCoreApplication>

#include <cstdio>

/// The commands that need neither a screen nor widgets, as a program that links none: for machines
/// that only compute.
int main(int argc, char **argv)
{
    const CommandLine line = CommandLine::parse(argc, argv, CommandLine::Batch);
    if (line.command == CommandLine::Answered) {
        std::fprintf(line.exitCode == ExitCode::Success ? stdout : stderr, "%s\n",
                     qPrintable(line.message.trimmed()));
        return line.exitCode;
    }
    // Containers must not differ from run to run: keys are made from them.
    qSetGlobalQHashSeed(0);
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Ossa"));
    const OssModelServices services;
    const QStringList types = OssResourceInfo::instance()->nodeTypePaths();
    for (const QString &folder : types)
        OssShaderNetworkManager::instance()->loadNodeTypes(folder);
    OssNodeTypeWatch::instance()->start();
    switch (line.command) {
    case CommandLine::Info:
        if (line.tellsProgram)
            return runProgramInfo({});
        return withProjectTroubles(runInfoCommand(line.project, false));
    case CommandLine::Export:
        return withProjectTroubles(runExportCommand(line.textures));
    case CommandLine::Render:
        return withProjectTroubles(runRenderCommand(line.still));
    default:
        return withProjectTroubles(runBakeCommand(line.bake));
    }
}
