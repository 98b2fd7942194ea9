#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "support/ExpectedLog.h"
#include "support/Text.h"

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

    static OssPalette *make(const char *name, const char *helpKey = "")
    {
        auto *palette = new OssPalette;
        palette->setObjectName(text(name));
        palette->setContextHelpKey(text(helpKey));
        return palette;
    }
};

} // namespace

TEST_F(Palettes, foundByObjectNameAndByHelpKeyUnderATranslation)
{
    OssPalette *graph = make("Knotengraph", "node_graph_palette");
    ASSERT_TRUE(palettes()->registerPalette(graph, true, text("/icon.png")));
    for (const char *name : {"Knotengraph", "Node Graph", "node_graph_palette"})
        EXPECT_EQ(palettes()->find(text(name)), graph) << name;
    EXPECT_EQ(graph->identity(), text("Node Graph"));
    const std::unique_ptr<OssPalette> plain(make("Plain"));
    EXPECT_EQ(plain->identity(), text("Plain"));
    EXPECT_EQ(palettes()->find(text("Node Properties")), nullptr);
    EXPECT_EQ(palettes()->iconPath(graph), text("/icon.png"));
}

TEST_F(Palettes, secondOfANameIsRefusedAndStaysTheCallers)
{
    const ExpectedLog expected("There is a palette \"Log\" already");
    palettes()->registerPalette(make("Log"), false, QString());
    const std::unique_ptr<OssPalette> second(make("Log"));
    EXPECT_FALSE(palettes()->registerPalette(second.get(), false, QString()));
    EXPECT_EQ(palettes()->palettes().size(), 1);
}

TEST_F(Palettes, goWithTheirBodiesAtShutdownOrEarlierByThemselves)
{
    for (const bool early : {false, true}) {
        const QPointer<OssPalette> palette = make("Graph");
        const QPointer<QWidget> body = new QWidget(palette);
        palette->setBodyWidget(body);
        palettes()->registerPalette(palette, true, QString());
        if (early)
            delete palette;
        else
            palettes()->deletePalettes();
        EXPECT_TRUE(palette.isNull() && body.isNull());
        EXPECT_TRUE(palettes()->palettes().isEmpty());
        EXPECT_EQ(palettes()->find(text("Graph")), nullptr);
    }
}

TEST_F(Palettes, bodyIsReplacedWithoutBeingDeleted)
{
    OssPalette palette;
    const auto first = std::make_unique<QWidget>(&palette);
    palette.setBodyWidget(first.get());
    auto *second = new QWidget(&palette);
    palette.setBodyWidget(second);
    EXPECT_EQ(palette.originalWidget(), second);
    EXPECT_EQ(first->parent(), nullptr);
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
