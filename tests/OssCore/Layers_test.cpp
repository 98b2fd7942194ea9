#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QLibraryInfo>
#include <QRegularExpression>
#include <QVector>

#include <algorithm>

namespace {

struct Layer
{
    QString folder;
    QStringList uses;    ///< layers that its sources may include, besides their own
    QStringList rooms{}; ///< its sub-folders from the ground up: none includes one that follows it

    QString name() const { return folder.section(QLatin1Char('/'), -1); }
};

const QVector<Layer> &layers()
{
    const auto list = [](const char *names) {
        return QString::fromLatin1(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    };
    static const QVector<Layer> table{
        {QStringLiteral("host/ZelGL"), {}},
        {QStringLiteral("host/OssCore"), {}, list("Values Program Undo Documents")},
        {QStringLiteral("host/OssEvaluation"),
         {},
         list("Values Geometry Graph Kernels Schedule Files Paint")},
        {QStringLiteral("host/OssNodeGraph"), list("OssCore"),
         list("Drawing Index Items Gestures View")},
        {QStringLiteral("host/OssModel"), list("OssCore OssEvaluation"),
         list("Types Images Objects Graph Nodes Layers Evaluation Project")},
        {QStringLiteral("host/OssInterface"), list("OssCore OssEvaluation OssModel"),
         list("Actions Palettes Popups Widgets Properties Dialogs DragAndDrop")},
        {QStringLiteral("host/OssScriptObjects"), list("OssCore OssModel OssInterface")},
        {QStringLiteral("host/OssScripting"), list("OssCore OssInterface OssScriptObjects")},
        {QStringLiteral("OssShaderNetworkNodeGraphViewContext"),
         list("OssCore OssModel OssInterface OssScriptObjects OssNodeGraph ZelGL"),
         list("Layout Panels Contexts Manager View OssAPI")},
        {QStringLiteral("host/Ossa"),
         list("OssCore OssEvaluation OssModel OssInterface OssScriptObjects OssScripting "
              "OssNodeGraph ZelGL"),
         list("Common Plugins Headless Pictures Dialogs Commands Viewer Scripting Palettes Window "
              "Start")},
    };
    return table;
}

/// Of "A/B/c.h" in includes of ours: the layer and, where there is one, the room. Rooms of the
/// plug-in are included by their own names, "B/c.h", and what stands at its root as "c.h".
struct Include
{
    QString layer;
    QString room;
    QString file;
};

QVector<Include> includesOf(const QString &path, const Layer &from)
{
    static const QRegularExpression line(
        QStringLiteral("^\\s*#include [<\"](Oss[^\">]+\\.h|[^\">]+\\.h(?=\"))"),
        QRegularExpression::MultilineOption);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    QVector<Include> found;
    auto matches = line.globalMatch(QString::fromUtf8(file.readAll()));
    while (matches.hasNext()) {
        const QString named = matches.next().captured(1);
        const QStringList parts = named.split(QLatin1Char('/'));
        EXPECT_FALSE(parts.contains(QStringLiteral("..")))
            << qPrintable(path) << " includes " << qPrintable(named);
        if (parts.size() == 1 || from.rooms.contains(parts.first()))
            found.append({from.name(), parts.size() == 1 ? QString() : parts.first(), named});
        else
            found.append({parts.first(), parts.size() == 2 ? QString() : parts.at(1), named});
    }
    return found;
}

QString rootFolder()
{
    return qEnvironmentVariable("OSSA_ROOT") + QLatin1Char('/');
}

TEST(Layers, everyIncludeStaysWithinWhatTheLayerAndTheRoomMayUse)
{
    ASSERT_FALSE(qEnvironmentVariableIsEmpty("OSSA_ROOT")) << "OSSA_ROOT names the source tree";
    int files = 0;
    for (const Layer &layer : layers()) {
        const QString own = layer.name();
        const QString folder = rootFolder() + layer.folder + QLatin1Char('/');
        QDirIterator sources(folder, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                             QDirIterator::Subdirectories);
        while (sources.hasNext()) {
            const QString path = sources.next();
            ++files;
            const QString inside = path.mid(folder.size());
            const QString room = inside.contains(QLatin1Char('/'))
                                     ? inside.section(QLatin1Char('/'), 0, 0)
                                     : QString();
            const int floor = layer.rooms.indexOf(room);
            EXPECT_TRUE(layer.rooms.isEmpty() || room.isEmpty() || floor >= 0)
                << qPrintable(path) << " stands in a room that is not in the table";
            for (const Include &used : includesOf(path, layer)) {
                EXPECT_TRUE(used.layer == own || layer.uses.contains(used.layer))
                    << qPrintable(path) << " includes " << qPrintable(used.layer);
                if (used.layer != own || floor < 0)
                    continue;
                EXPECT_LE(layer.rooms.indexOf(used.room), floor)
                    << qPrintable(path) << " includes " << qPrintable(used.file);
                // What a library's root has stands on all its rooms; the plug-in's is its classes.
                EXPECT_TRUE(!used.room.isEmpty() || used.file.endsWith(QLatin1String("_export.h"))
                            || layer.rooms.contains(QStringLiteral("Layout")))
                    << qPrintable(path) << " includes " << qPrintable(used.file);
            }
        }
    }
    EXPECT_GT(files, 100);
}

// Where nodes come to stand is worked out from rectangles, whatever they stand for.
TEST(Layers, placementInTheGraphKnowsOnlyPlainValues)
{
    const auto plugin = std::find_if(layers().begin(), layers().end(), [](const Layer &layer) {
        return layer.rooms.contains(QStringLiteral("Layout"));
    });
    ASSERT_TRUE(plugin != layers().end());
    QDirIterator sources(rootFolder() + plugin->folder + QStringLiteral("/Layout"),
                         {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files);
    EXPECT_TRUE(sources.hasNext());
    while (sources.hasNext()) {
        const QString path = sources.next();
        for (const Include &used : includesOf(path, *plugin))
            EXPECT_TRUE(used.room == QLatin1String("Layout"))
                << qPrintable(path) << " includes " << qPrintable(used.file);
    }
}

// Commands without a window, and their tests, link no widgets.
TEST(Layers, theModelKnowsNoWidgets)
{
    const QStringList widgets = QDir(QLibraryInfo::location(QLibraryInfo::HeadersPath)
                                     + QStringLiteral("/QtWidgets"))
                                    .entryList(QDir::Files);
    ASSERT_TRUE(widgets.contains(QStringLiteral("QPushButton")));
    static const QRegularExpression include(QStringLiteral("^\\s*#include <(?:Qt\\w+/)?([\\w.]+)>"),
                                            QRegularExpression::MultilineOption);
    for (const char *layer : {"host/OssCore", "host/OssModel", "host/OssEvaluation"}) {
        QDirIterator sources(rootFolder() + QString::fromLatin1(layer),
                             {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                             QDirIterator::Subdirectories);
        EXPECT_TRUE(sources.hasNext()) << layer;
        while (sources.hasNext()) {
            QFile file(sources.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            auto matches = include.globalMatch(QString::fromUtf8(file.readAll()));
            while (matches.hasNext()) {
                const QString name = matches.next().captured(1);
                EXPECT_FALSE(widgets.contains(name))
                    << qPrintable(file.fileName()) << " includes " << qPrintable(name);
            }
        }
    }
}

// The thread sanitizer can see standard locks, not Qt's.
TEST(Layers, pixelsAreComputedWithoutQt)
{
    const QString folder = rootFolder() + QStringLiteral("host/OssEvaluation");
    const QRegularExpression include(QStringLiteral("^\\s*#include [<\"]Q"),
                                     QRegularExpression::MultilineOption);
    QDirIterator sources(folder, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                         QDirIterator::Subdirectories);
    EXPECT_TRUE(sources.hasNext()) << qPrintable(folder);
    while (sources.hasNext()) {
        QFile file(sources.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(include.match(QString::fromUtf8(file.readAll())).hasMatch())
            << qPrintable(file.fileName());
    }
}

} // namespace
