#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QPointer>
#include <QSignalSpy>

namespace {

OssPaletteManager *palettes()
{
    return OssPaletteManager::instance();
}

class Palettes : public testing::Test
{
protected:
    ~Palettes() override { palettes()->deletePalettes(); }

    static OssPalette *make(const char *name, const char *helpKey)
    {
        auto *palette = new OssPalette;
        palette->setObjectName(QString::fromLatin1(name));
        palette->setContextHelpKey(QString::fromLatin1(helpKey));
        return palette;
    }
};

} // namespace

TEST_F(Palettes, foundByObjectNameAndByHelpKeyUnderATranslation)
{
    OssPalette *graph = make("Knotengraph", "node_graph_palette");
    ASSERT_TRUE(palettes()->registerPalette(graph, true, QStringLiteral("/icon.png")));
    EXPECT_EQ(palettes()->find(QStringLiteral("Knotengraph")), graph);
    EXPECT_EQ(palettes()->find(QStringLiteral("Node Graph")), graph);
    EXPECT_EQ(palettes()->find(QStringLiteral("node_graph_palette")), graph);
    EXPECT_EQ(palettes()->find(QStringLiteral("Node Properties")), nullptr);
    EXPECT_EQ(palettes()->iconPath(graph), QStringLiteral("/icon.png"));
}

TEST_F(Palettes, secondOfANameIsRefusedAndStaysTheCallers)
{
    const ExpectedLog expected("There is a palette \"Log\" already");
    palettes()->registerPalette(make("Log", ""), false, QString());
    const std::unique_ptr<OssPalette> second(make("Log", ""));
    EXPECT_FALSE(palettes()->registerPalette(second.get(), false, QString()));
    EXPECT_EQ(palettes()->palettes().size(), 1);
}

TEST_F(Palettes, shutdownDeletesPalettesWithTheirBodies)
{
    QPointer<OssPalette> palette = make("Graph", "");
    const QPointer<QWidget> body = new QWidget(palette);
    palette->setBodyWidget(body);
    palettes()->registerPalette(palette, true, QString());
    palettes()->deletePalettes();
    EXPECT_TRUE(palette.isNull());
    EXPECT_TRUE(body.isNull());
}

TEST_F(Palettes, oneThatDiesEarlyDropsOut)
{
    OssPalette *palette = make("Graph", "");
    palettes()->registerPalette(palette, true, QString());
    delete palette;
    EXPECT_TRUE(palettes()->palettes().isEmpty());
    EXPECT_EQ(palettes()->find(QStringLiteral("Graph")), nullptr);
}

TEST_F(Palettes, bodyIsReplacedWithoutBeingDeleted)
{
    OssPalette palette;
    auto *first = new QWidget(&palette);
    palette.setBodyWidget(first);
    auto *second = new QWidget(&palette);
    palette.setBodyWidget(second);
    EXPECT_EQ(palette.originalWidget(), second);
    EXPECT_EQ(first->parent(), nullptr);
    delete first;
}

TEST_F(Palettes, showingADockedPaletteAsksForItsDock)
{
    QWidget dock;
    auto *palette = new OssPalette(&dock);
    const QSignalSpy requested(palette, &OssPalette::showRequested);
    palette->showBySidebar();
    palette->raise();
    palette->show();
    EXPECT_EQ(requested.count(), 3);
    palette->hide();
    EXPECT_EQ(requested.count(), 3);
}
