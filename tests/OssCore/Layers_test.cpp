#include "support/Text.h"

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
    QStringList rooms{}; ///< its folders from the ground up: none includes one that follows it

    QString name() const { return folder.section(QLatin1Char('/'), -1); }
};

const QVector<Layer> &layers()
{
    const auto list = [](const char *names) {
        return text(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    };
    static const QVector<Layer> table{
        {text("host/ZelGL"), {}},
        {text("host/OssCore"), {}, list("Values Program Undo Documents")},
        {text("host/OssEvaluation"),
         {},
         list(
             "Values Geometry Graph Kernels Kernels/Adjust Kernels/Space Kernels/Filter Kernels/Height "
             "Kernels/Noise Kernels/Pattern Kernels/Mesh Kernels/Logic Schedule Files Paint")},
        {text("host/OssGraphLayout"), {}},
        {text("host/OssNodeGraph"), list("OssCore"), list("Drawing Index Items Gestures View")},
        {text("host/OssRender"), list("OssEvaluation"), list("Values Surface Light Draw")},
        {text("host/OssModel"), list("OssCore OssEvaluation"),
         list("Types Images Objects Graph Nodes Layers Evaluation Project Export")},
        {text("host/OssInterface"), list("OssCore OssEvaluation OssModel"),
         list("Actions Palettes Popups Widgets Properties Dialogs DragAndDrop")},
        {text("host/OssScriptObjects"), list("OssCore OssModel OssInterface")},
        {text("host/OssScripting"), list("OssCore OssInterface OssScriptObjects")},
        {text("OssShaderNetworkNodeGraphViewContext"),
         list("OssCore OssModel OssInterface OssScriptObjects OssGraphLayout OssNodeGraph ZelGL"),
         list("Layout Panels Contexts Manager View OssAPI")},
        {text("host/Ossa"),
         list("OssCore OssEvaluation OssRender OssModel OssInterface OssScriptObjects OssScripting "
              "OssNodeGraph ZelGL"),
         list(
             "Common Plugins Surfaces Headless Pictures Dialogs Export Commands Painting Viewer Scripting "
             "Palettes Help Window Start")},
    };
    return table;
}

QStringList sourcesBelow(const QString &folder)
{
    const QString root = qEnvironmentVariable("OSSA_ROOT") + QLatin1Char('/');
    QDirIterator files(root + folder, {text("*.h"), text("*.cpp")}, QDir::Files,
                       QDirIterator::Subdirectories);
    QStringList found;
    while (files.hasNext())
        found.append(files.next());
    EXPECT_FALSE(found.isEmpty()) << qPrintable(root + folder);
    return found;
}

/// What an expression captures in a file, line by line.
QStringList captured(const QString &path, const QRegularExpression &expression)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    QStringList found;
    auto matches = expression.globalMatch(QString::fromUtf8(file.readAll()));
    while (matches.hasNext())
        found.append(matches.next().captured(1));
    return found;
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
        text("^\\s*#include [<\"](Oss[^\">]+\\.h|[^\">]+\\.h(?=\"))"),
        QRegularExpression::MultilineOption);
    QVector<Include> found;
    for (const QString &named : captured(path, line)) {
        const QStringList parts = named.split(QLatin1Char('/'));
        EXPECT_FALSE(parts.contains(text("..")))
            << qPrintable(path) << " includes " << qPrintable(named);
        if (parts.size() == 1 || from.rooms.contains(parts.first()))
            found.append({from.name(), parts.size() == 1 ? QString() : parts.first(), named});
        else
            found.append(
                {parts.first(), parts.mid(1, parts.size() - 2).join(QLatin1Char('/')), named});
    }
    return found;
}

TEST(Layers, everyIncludeStaysWithinWhatTheLayerAndTheRoomMayUse)
{
    ASSERT_FALSE(qEnvironmentVariableIsEmpty("OSSA_ROOT")) << "OSSA_ROOT names the source tree";
    int files = 0;
    for (const Layer &layer : layers()) {
        const QString own = layer.name();
        for (const QString &path : sourcesBelow(layer.folder)) {
            ++files;
            const QString folder = QLatin1Char('/') + layer.folder + QLatin1Char('/');
            const QString inside = path.mid(path.indexOf(folder) + folder.size());
            const QString room = inside.section(QLatin1Char('/'), 0, -2);
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
                            || layer.rooms.contains(text("Layout")))
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
        return layer.rooms.contains(text("Layout"));
    });
    ASSERT_TRUE(plugin != layers().end());
    for (const QString &path : sourcesBelow(plugin->folder + text("/Layout"))) {
        for (const Include &used : includesOf(path, *plugin))
            EXPECT_TRUE(used.room == QLatin1String("Layout"))
                << qPrintable(path) << " includes " << qPrintable(used.file);
    }
}

// Commands without a window, and their tests, link no widgets.
TEST(Layers, theModelKnowsNoWidgets)
{
    const QStringList widgets = QDir(QLibraryInfo::location(QLibraryInfo::HeadersPath)
                                     + text("/QtWidgets"))
                                    .entryList(QDir::Files);
    ASSERT_TRUE(widgets.contains(text("QPushButton")));
    static const QRegularExpression include(text("^\\s*#include <(?:Qt\\w+/)?([\\w.]+)>"),
                                            QRegularExpression::MultilineOption);
    for (const char *layer : {"host/OssCore", "host/OssModel", "host/OssEvaluation"}) {
        for (const QString &path : sourcesBelow(text(layer))) {
            for (const QString &name : captured(path, include))
                EXPECT_FALSE(widgets.contains(name))
                    << qPrintable(path) << " includes " << qPrintable(name);
        }
    }
}

// The thread sanitizer can see standard locks, not Qt's.
TEST(Layers, pixelsAreComputedWithoutQt)
{
    static const QRegularExpression include(text("^\\s*#include [<\"](Q.*)$"),
                                            QRegularExpression::MultilineOption);
    for (const QString &path : sourcesBelow(text("host/OssEvaluation")))
        EXPECT_EQ(captured(path, include), QStringList()) << qPrintable(path);
}

} // namespace
