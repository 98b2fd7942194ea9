#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

TEST(ColorSpaces, configurationsThatCannotBeUsedAreRefusedWithTheirName)
{
    const TestFolder folder;
    const std::string good = R"(ocio_profile_version: 2
roles:
  ROLE: Plain
file_rules:
  - !<Rule> {name: Default, colorspace: Plain}
displays:
  Screen:
    - !<View> {name: Direct, colorspace: Plain}
    - !<View> {name: Doubled, colorspace: Doubled}
colorspaces:
  - !<ColorSpace>
    name: Plain
  - !<ColorSpace>
    name: Doubled
    from_scene_reference: !<MatrixTransform> {matrix: [2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}
)";
    const auto with = [&good](const std::string &role) {
        std::string text = good;
        return text.replace(text.find("ROLE"), 4, role);
    };
    std::shared_ptr<const OssEvColorSpaces> spaces;
    const std::string useful = folder.write("good.ocio", with("scene_linear"));
    const OssEvResult read = OssEvColorSpaces::read(useful, &spaces);
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ(spaces->displays(), std::vector<std::string>{"Screen"});
    EXPECT_EQ(spaces->views("Screen"), (std::vector<std::string>{"Direct", "Doubled"}));
    EXPECT_TRUE(spaces->views("Nobody").empty());
    std::array<float, 8> texels{0.25F, 0.5F, 1.0F, 0.5F, 1.0F, 2.0F, 3.0F, 1.0F};
    ASSERT_TRUE(spaces->fromWorking("Doubled", texels.data(), 2));
    EXPECT_EQ(texels, (std::array<float, 8>{0.5F, 1.0F, 2.0F, 0.5F, 2.0F, 4.0F, 6.0F, 1.0F}));
    EXPECT_FALSE(spaces->toDisplay("Screen", "Nothing", 0.0, 1.0, texels.data(), 2));

    for (const auto &bad :
         {folder.path("missing.ocio"), folder.write("text.ocio", "hello"),
          folder.write("empty.ocio", ""), folder.write("role.ocio", with("data"))}) {
        const auto before = spaces;
        const OssEvResult refused = OssEvColorSpaces::read(bad, &spaces);
        EXPECT_EQ(refused.error().rfind("Cannot read \"" + bad + "\": ", 0), 0U) << refused.error();
        EXPECT_EQ(spaces, before);
    }
}

TEST(ColorSpaces, theBuiltInOnesNeedNoFile)
{
    const auto spaces = OssEvColorSpaces::builtIn();
    ASSERT_NE(spaces, nullptr);
    for (const char *name : {"Linear", "sRGB", "Raw"}) {
        std::array<float, 4> texel{};
        EXPECT_TRUE(spaces->toWorking(name, texel.data(), 1)) << name;
    }
    EXPECT_EQ(spaces->displays(), std::vector<std::string>{"sRGB"});
    std::array<float, 4> texel{0.5F, 0.001F, 2.0F, 0.3F};
    ASSERT_TRUE(spaces->fromWorking("sRGB", texel.data(), 1));
    EXPECT_NEAR(texel[0], 1.055 * std::pow(0.5, 1.0 / 2.4) - 0.055, 1e-4);
    EXPECT_NEAR(texel[1], 0.01292, 1e-4);
    EXPECT_FLOAT_EQ(texel[3], 0.3F);
    ASSERT_TRUE(spaces->toWorking("sRGB", texel.data(), 1));
    EXPECT_NEAR(texel[0], 0.5F, 1e-4);
    EXPECT_NEAR(texel[2], 2.0F, 1e-3);
    EXPECT_FALSE(spaces->toWorking("Unheard of", texel.data(), 1));
}

TEST(ColorSpaces, eachSettingOfTheScreenHasItsOwnTransform)
{
    const auto spaces = OssEvColorSpaces::builtIn();
    const auto shown = [&spaces](const char *view, double exposure, double gamma) {
        std::array<float, 4> texel{0.25F, 0.25F, 0.25F, 0.5F};
        EXPECT_TRUE(spaces->toDisplay("sRGB", view, exposure, gamma, texel.data(), 1));
        EXPECT_EQ(texel[3], 0.5F) << "alpha is no light";
        return texel[0];
    };
    for (int round = 0; round < 2; ++round) { // the second time they are known already
        EXPECT_NEAR(shown("Raw", 0.0, 1.0), 0.25, 1e-4);
        EXPECT_NEAR(shown("Raw", 1.0, 1.0), 0.5, 1e-4);
        EXPECT_NEAR(shown("Raw", -1.0, 1.0), 0.125, 1e-4);
        EXPECT_NEAR(shown("Raw", 0.0, 2.0), 0.5, 1e-3);
        EXPECT_NEAR(shown("Standard", 0.0, 1.0), 1.055 * std::pow(0.25, 1.0 / 2.4) - 0.055, 1e-3);
        EXPECT_NEAR(shown("Raw", 0.0, 0.0), 0.25, 1e-4) << "no gamma bends nothing";
        EXPECT_NEAR(shown("Raw", 0.0, -1.0), 0.25, 1e-4);
    }
    std::array<float, 4> texel{0.25F, 0.25F, 0.25F, 1.0F};
    EXPECT_FALSE(spaces->toDisplay("Wall", "Standard", 0.0, 1.0, texel.data(), 1));
    ASSERT_TRUE(spaces->toWorking("Gamma 2.2", texel.data(), 1));
    EXPECT_NEAR(texel[0], std::pow(0.25, 2.2), 1e-4);
    ASSERT_TRUE(spaces->fromWorking("Raw", texel.data(), 1));
    EXPECT_NEAR(texel[0], std::pow(0.25, 2.2), 1e-4) << "numbers stay as they are";
}

} // namespace
