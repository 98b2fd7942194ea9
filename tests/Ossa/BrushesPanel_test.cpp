#include "Ossa/Painting/BrushesPanel.h"

#include "Ossa/Painting/BrushFields.h"
#include "Ossa/Painting/BrushPicture.h"
#include "Ossa/Painting/BrushPresets.h"
#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Popups/OssApplication.h"
#include "support/InterfaceUser.h"
#include "support/OssaFiles.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

/// The palette of brushes, with none of the user's own.
class BrushesPalette : public testing::Test
{
protected:
    void SetUp() override
    {
        QDir(BrushPresets::ownFolder()).removeRecursively();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
        Brushes::instance()->edit({});
        m_panel.resize(600, 500);
        m_panel.show();
    }

    void TearDown() override
    {
        QDir(BrushPresets::ownFolder()).removeRecursively();
        Brushes::instance()->edit({});
        OssApplication::setPopupsAllowed(m_popups);
    }

    QListWidget *shelf() const { return m_panel.findChild<QListWidget *>(); }

    QListWidgetItem *kept(const char *name) const
    {
        const auto found = shelf()->findItems(text(name), Qt::MatchExactly);
        return found.isEmpty() ? nullptr : found.last();
    }

    static const Brush &brush() { return Brushes::instance()->current(); }

    BrushesPanel m_panel;
    bool m_popups = true;
};

TEST_F(BrushesPalette, fieldsAreTheBrushAndTheBrushTheFields)
{
    for (const BrushFields::Number &number : BrushFields::numbers()) {
        auto *field = named<QDoubleSpinBox>(&m_panel, number.name);
        ASSERT_NE(field, nullptr) << number.name;
        EXPECT_EQ(field->minimum(), number.least) << number.key;
        field->setValue(std::round((number.least + number.most) / 3.0));
        Brush now = brush();
        EXPECT_NEAR(number.of(now) * number.shown, field->value(), 1e-9) << number.key;
        number.of(now) = number.least / number.shown + 0.01;
        Brushes::instance()->take(now);
        const double parts = std::pow(10.0, number.decimals);
        EXPECT_NEAR(field->value(), std::round(number.of(now) * number.shown * parts) / parts, 1e-9)
            << number.key;
    }
    for (const BrushFields::Switch &field : BrushFields::switches()) {
        Brush now = brush();
        const bool was = field.of(now);
        button(&m_panel, field.name)->click();
        now = brush();
        EXPECT_NE(field.of(now), was) << field.key;
    }
    for (const BrushFields::Choice &choice : BrushFields::choices()) {
        auto *box = named<QComboBox>(&m_panel, choice.name);
        ASSERT_NE(box, nullptr) << choice.name;
        Q_EMIT box->activated(1);
        EXPECT_EQ(choice.get(brush()), 1) << choice.key;
        Brush now = brush();
        choice.set(now, 0);
        Brushes::instance()->edit(now);
        EXPECT_EQ(box->currentIndex(), 0) << choice.key;
    }
}

TEST_F(BrushesPalette, aKeptBrushIsTakenUpAgainWithAllButItsColor)
{
    Brush mine;
    for (const BrushFields::Number &number : BrushFields::numbers())
        number.of(mine) = (0.25 * number.least + 0.75 * number.most) / number.shown;
    for (const BrushFields::Switch &field : BrushFields::switches())
        field.of(mine) = !field.of(mine);
    for (const BrushFields::Choice &choice : BrushFields::choices())
        choice.set(mine, choice.words.size() - 1);
    ASSERT_TRUE(BrushPresets::readStamp(text("Spatter"), &mine.paint.stencil).ok());
    mine.paint.radius = 11.5;
    mine.paint.worldRadius = 0.75;
    ASSERT_TRUE(BrushPresets::readStamp(text("Chalk"), &mine.paint.stamp).ok());
    Brushes::instance()->take(mine);
    named<QLineEdit>(&m_panel, "Name for the brush in hand")->setText(text("My Chalk"));
    button(&m_panel, "Keep")->click();
    ASSERT_NE(kept("My Chalk"), nullptr);

    OssEvBrush other;
    other.color = {0.1F, 0.2F, 0.3F};
    Brushes::instance()->take({});
    Brushes::instance()->setBrush(other);
    Q_EMIT shelf()->itemClicked(kept("My Chalk"));
    Brush again = brush();
    for (const BrushFields::Number &number : BrushFields::numbers())
        EXPECT_DOUBLE_EQ(number.of(again), number.of(mine)) << number.key;
    for (const BrushFields::Switch &field : BrushFields::switches())
        EXPECT_EQ(field.of(again), field.of(mine)) << field.key;
    for (const BrushFields::Choice &choice : BrushFields::choices())
        EXPECT_EQ(choice.get(again), choice.words.size() - 1) << choice.key;
    ASSERT_TRUE(again.paint.stencil);
    EXPECT_EQ(again.paint.stencil->name(), "Spatter");
    EXPECT_DOUBLE_EQ(again.paint.radius, 11.5);
    EXPECT_DOUBLE_EQ(again.paint.worldRadius, 0.75);
    ASSERT_TRUE(again.paint.stamp);
    EXPECT_EQ(again.paint.stamp->name(), "Chalk");
    EXPECT_EQ(again.paint.color, other.color);

    shelf()->setCurrentItem(kept("My Chalk"));
    button(&m_panel, "Remove")->click();
    EXPECT_EQ(kept("My Chalk"), nullptr);
    shelf()->setCurrentRow(0);
    EXPECT_FALSE(button(&m_panel, "Remove")->isEnabled()) << "the program's own";
}

TEST_F(BrushesPalette, theBrushInHandIsThatOfTheNextSessionUnlessWhatItReadsIsGone)
{
    const QString file = QDir(OssSettings::folderPath()).filePath(text("Brush.json"));
    EXPECT_FALSE(BrushPresets::keptInHand());
    Brush mine;
    mine.paint.radius = 11.5;
    mine.paint.color = {0.1F, 0.2F, 3.0F};
    mine.paint.secondColor = {0.4F, 0.5F, 0.6F};
    mine.steadiness = 30.0;
    ASSERT_TRUE(BrushPresets::readStamp(text("Chalk"), &mine.paint.stamp).ok());
    ASSERT_TRUE(BrushPresets::keepInHand(mine).ok());
    const std::optional<Brush> again = BrushPresets::keptInHand();
    ASSERT_TRUE(again);
    EXPECT_DOUBLE_EQ(again->paint.radius, 11.5);
    EXPECT_DOUBLE_EQ(again->steadiness, 30.0);
    EXPECT_EQ(again->paint.color, mine.paint.color);
    EXPECT_EQ(again->paint.secondColor, mine.paint.secondColor);
    ASSERT_TRUE(again->paint.stamp);
    QFile kept(file);
    EXPECT_TRUE(kept.open(QIODevice::WriteOnly));
    kept.write(R"({"radius": 7, "stamp": "/gone.png"})");
    kept.close();
    EXPECT_FALSE(BrushPresets::keptInHand());
    EXPECT_TRUE(kept.remove());
}

TEST_F(BrushesPalette, namesThatNoFileCanHaveAndFilesThatNoBrushIsAreRefused)
{
    EXPECT_FALSE(BrushPresets::save(text("a/b"), {}).ok());
    EXPECT_FALSE(BrushPresets::save(text("  "), {}).ok());
    EXPECT_FALSE(BrushPresets::save(text(".."), {}).ok());
    ASSERT_TRUE(QDir().mkpath(BrushPresets::ownFolder()));
    const QDir folder(BrushPresets::ownFolder());
    const auto write = [&](const char *name, const char *content) {
        QFile file(folder.filePath(text(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    write("Torn.json", "{\"radius\": ");
    write("Lost.json", "{\"stamp\": \"/no/such/stamp.png\"}");
    write("Wild.json", "{\"radius\": 1e300, \"flow\": -5, \"angle\": \"x\", \"sizeIn\": 7}");
    const QVector<BrushPresets::Entry> all = BrushPresets::all();
    const auto entry = [&](const char *name) {
        return *std::find_if(all.cbegin(), all.cend(),
                             [&](const auto &one) { return one.name == text(name); });
    };
    EXPECT_TRUE(entry("Torn").problem.contains(text("Torn.json")));
    EXPECT_TRUE(entry("Lost").problem.contains(text("/no/such/stamp.png")));
    const BrushPresets::Entry wild = entry("Wild");
    EXPECT_TRUE(wild.problem.isEmpty());
    EXPECT_DOUBLE_EQ(wild.brush.paint.radius, Brushes::largestRadius);
    EXPECT_DOUBLE_EQ(wild.brush.paint.flow, 0.01);
    EXPECT_DOUBLE_EQ(wild.brush.paint.angle, 0.0);
}

TEST_F(BrushesPalette, everyPictureShowsAStrokeOfItsOwn)
{
    QVector<QImage> seen;
    const QVector<BrushPresets::Entry> all = BrushPresets::all();
    for (const BrushPresets::Entry &entry : all) {
        const QImage picture = BrushPicture::make(entry.brush, {112, 40});
        EXPECT_EQ(picture.size(), QSize(112, 40));
        int covered = 0;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 112; ++x)
                covered += qAlpha(picture.pixel(x, y)) > 60 ? 1 : 0;
        }
        EXPECT_GT(covered, 60) << qPrintable(entry.name);
        EXPECT_LT(covered, 112 * 40 * 2 / 3) << qPrintable(entry.name);
        EXPECT_FALSE(entry.brush.paint.tool != OssEvBrush::Tool::Eraser && seen.contains(picture))
            << qPrintable(entry.name);
        seen.append(picture);
    }
}

TEST_F(BrushesPalette, whoTakesUpABrushLeavesClonesButStaysWithEraserAndMirrors)
{
    const QVector<BrushPresets::Entry> all = BrushPresets::all();
    const auto take = [&](const char *name) {
        for (const BrushPresets::Entry &entry : all) {
            if (entry.name == text(name))
                Brushes::instance()->take(entry.brush);
        }
        return brush().paint.tool;
    };
    EXPECT_EQ(take("Clone"), OssEvBrush::Tool::Clone);
    EXPECT_EQ(take("Hard Round"), OssEvBrush::Tool::Brush);
    Brushes::instance()->toggleTool(OssEvBrush::Tool::Eraser);
    EXPECT_EQ(take("Soft Round"), OssEvBrush::Tool::Eraser);
    Brushes::instance()->toggleTool(OssEvBrush::Tool::Eraser);
    EXPECT_EQ(brush().paint.tool, OssEvBrush::Tool::Brush);
    Brushes::instance()->toggleMirror(1);
    take("Chalk");
    EXPECT_TRUE(brush().paint.mirrors[1]) << "the object's, not the brush's";
    Brushes::instance()->toggleMirror(1);
}

TEST_F(BrushesPalette, aPictureToPaintWithIsReadOrRefused)
{
    const QString path = QDir::temp().filePath(text("BrushesPalette.png"));
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(path));
    OssEvPaintPicture::Pointer picture;
    ASSERT_TRUE(BrushPresets::readPicture(path, &picture).ok());
    EXPECT_NEAR(picture->at(0.5, 0.5, 8.0)[0], 1.0F, 0.01F);
    EXPECT_NEAR(picture->at(0.5, 0.5, 8.0)[1], 0.0F, 0.01F);
    QFile::remove(path);
    EXPECT_TRUE(BrushPresets::readPicture(path, &picture).error().contains(path));
    EXPECT_FALSE(picture);
}

TEST_F(BrushesPalette, aStampIsChosenAndGivenUpAndAFileThatIsNoneIsRefused)
{
    auto *stamps = named<QComboBox>(&m_panel, "Stamp");
    const int spatter = stamps->findText(text("Spatter"));
    Q_EMIT stamps->activated(spatter);
    ASSERT_TRUE(brush().paint.stamp);
    EXPECT_EQ(stamps->currentIndex(), spatter);
    Q_EMIT stamps->activated(stamps->count() - 1); // nobody answers: as if given up
    EXPECT_TRUE(brush().paint.stamp);
    Q_EMIT stamps->activated(0);
    EXPECT_FALSE(brush().paint.stamp);
    OssEvStamp::Pointer stamp;
    EXPECT_TRUE(BrushPresets::readStamp(text("/no.png"), &stamp).error().contains(text("/no.png")));
}

} // namespace
