#include "OssCore/Program/OssDebug.h"

#include "OssCore/Values/OssGroupParameterObject.h"
#include "OssCore/Values/OssIsAlphanumericUnderscore.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

namespace {

TEST(DebugLog, linesAreWholeAndSorted)
{
    const ExpectedLog expected("[ !! ] xxx");
    OssDebugLog::instance()->clear();
    const QByteArray longText(100000, 'x');
    OssDebug("folder/Source.cpp", 7, "[ !! ] %s %d", longText.constData(), 5);
    OssDebug("Source", 8, "[ -- ] 100%% of %p", static_cast<void *>(nullptr));
    OssDebugTitle("Source", 9, "Dump", "%s", "plain %s");
    const auto lines = OssDebugLog::instance()->lines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines.at(0).category, OssDebugLog::Warning);
    EXPECT_EQ(lines.at(0).source, QStringLiteral("Source"));
    EXPECT_EQ(lines.at(0).text.size(), 100000 + 9);
    EXPECT_EQ(lines.at(1).category, OssDebugLog::Information);
    EXPECT_EQ(lines.at(1).text, QStringLiteral("[ -- ] 100% of (nil)"));
    EXPECT_EQ(lines.at(2).title, QStringLiteral("Dump"));
    EXPECT_EQ(lines.at(2).text, QStringLiteral("plain %s"));
}

TEST(Names, labelsAreMadeFromIdentifiers)
{
    const OssGroupParameterObject object;
    EXPECT_EQ(object.prettyPropertyName(QStringLiteral("shakeTime")), QStringLiteral("Shake Time"));
    EXPECT_EQ(object.prettyPropertyName(QStringLiteral("in_low")), QStringLiteral("In Low"));
    EXPECT_EQ(object.prettyPropertyName(QStringLiteral("UVScale")), QStringLiteral("UVScale"));
}

TEST(Names, knobNamesAreAsciiAndNotEmpty)
{
    EXPECT_TRUE(OssIsAlphanumericUnderscore(QStringLiteral("Knob_2")));
    for (const char *bad : {"", "a b", "a-b", "\xc3\xa4"})
        EXPECT_FALSE(OssIsAlphanumericUnderscore(QString::fromUtf8(bad))) << bad;
}

} // namespace
