#include "builder/Examples.h"
#include "Ossa/Plugins/PluginLoader.h"
#include "Ossa/Start/HostServices.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QApplication>
#include <QDir>

#include <cstdio>

namespace {

struct Example
{
    const char *name;
    const char *object;
    const char *geometry;
    void (*write)(OssProject *);
};

bool build(const Example &example, const QDir &folder)
{
    OssProjectManager *projects = OssProjectManager::instance();
    OssProject *project = projects->newProject(QString::fromLatin1(example.name));
    OssGeoEntity *object = project->entities().first();
    object->setName(QString::fromLatin1(example.object));
    object->setGeometry(QString::fromLatin1(example.geometry));
    project->setFileRules({}); // there are no files whose names could tell
    example.write(project);
    const QString path = folder.filePath(QString::fromLatin1(example.name)
                                         + QLatin1String(".ossa"));
    // An example has no history.
    QDir(path).removeRecursively();
    const OssResult saved = projects->saveProjectAs(path);
    std::printf("%s\n", qPrintable(saved ? path : saved.error()));
    return saved.ok();
}

} // namespace

int main(int argc, char **argv)
{
    qSetGlobalQHashSeed(0);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "Usage: ossa_build_examples FOLDER\n");
        return 2;
    }
    OssApplication::setPopupsAllowed(false);
    PluginLoader plugins;
    HostServices services;
    services.start(&plugins);

    const Example examples[] = {
        {"Weathered Brick", "Wall", "plane", writeWeatheredBrick},
        {"Old Plaster", "Wall", "plane", writeOldPlaster},
    };
    bool good = true;
    for (const Example &example : examples)
        good = build(example, QDir(QString::fromLocal8Bit(argv[1]))) && good;
    return good ? 0 : 1;
}
