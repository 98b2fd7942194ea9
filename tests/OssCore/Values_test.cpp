#include "OssCore/Program/OssDebug.h"
#include "OssCore/Values/OssColor.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssCore/Values/OssGroupParameterObject.h"
#include "OssCore/Values/OssIsAlphanumericUnderscore.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssCore/Values/OssValueText.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QColor>
#include <QLine>
#include <QLocale>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <functional>
#include <limits>
#include <utility>
#include <vector>

namespace {

/// Types that Ossa registers are known as when the program runs.
class ValueText : public testing::Test
{
protected:
    ValueText()
    {
        OssColor::registerMetaType();
        OssUserEnum::registerMetaType();
    }
};

TEST_F(ValueText, valuesReadBackEqual)
{
    const QVariant values[] = {0.1 + 0.2,
                               -1e-300,
                               std::numeric_limits<double>::max(),
                               std::numeric_limits<double>::denorm_min(),
                               0.1F,
                               true,
                               false,
                               -7,
                               std::numeric_limits<int>::min(),
                               std::numeric_limits<uint>::max(),
                               std::numeric_limits<qlonglong>::min(),
                               QString(),
                               text("a, \"b\" <c>"),
                               text("\xf0\x9f\x8e\xa8 \xc3\xa4"),
                               QPointF(1.5, -2.25),
                               QPoint(3, -4),
                               QSizeF(0.1, 1e9),
                               QSize(640, 480),
                               QRectF(0.1, 0.2, 0.3, 0.4),
                               QRect(-5, 6, 70, 80),
                               QStringList{text("a,b"), QString(), text("\\")},
                               QStringList{QString()},
                               QStringList{QString(), QString()},
                               texts({"\\"}),
                               texts({"a\\,b\\\\", ","}),
                               QStringList{},
                               QColor(10, 20, 30),
                               QColor(10, 20, 30, 40),
                               QVariant::fromValue(OssUserEnum({}, 3)),
                               QVariant::fromValue(OssUserEnum({}, -1)),
                               QVariant::fromValue(OssDebugLog::Warning),
                               QVariant::fromValue(OssColor(0.1, 2.5, 0.3, 0.4))};
    for (const QVariant &value : values) {
        const QString text = OssValueText::toText(value);
        const QVariant back = OssValueText::fromText(text, value.userType());
        ASSERT_TRUE(back.isValid()) << value.typeName() << " " << qPrintable(text);
        if (value.userType() == qMetaTypeId<OssDebugLog::Category>())
            EXPECT_EQ(back.toInt(), value.toInt());
        else
            EXPECT_EQ(back, value) << value.typeName() << " " << qPrintable(text);
    }
}

TEST_F(ValueText, textsAreTheSameInEveryLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(OssValueText::toText(1234567.25), text("1234567.25"));
    EXPECT_EQ(OssValueText::toText(QPointF(0.5, -1234.5)), text("0.5,-1234.5"));
    EXPECT_EQ(OssValueText::fromText(text("0.5,-1234.5"), QMetaType::QPointF),
              QVariant(QPointF(0.5, -1234.5)));
    EXPECT_EQ(OssValueText::fromText(text("1.5"), QMetaType::Double), QVariant(1.5));
    EXPECT_EQ(OssColor(0.5, 0.25, 1.0).toString(), text("0.5,0.25,1,1"));
    QLocale::setDefault(before);
}

TEST_F(ValueText, whatPeopleWriteIsReadToo)
{
    struct Case
    {
        const char *text;
        int type;
        QVariant value;
    };

    const Case cases[] = {
        {"1", QMetaType::Bool, true},
        {"0", QMetaType::Bool, false},
        {"true", QMetaType::Bool, true},
        {"false", QMetaType::Bool, false},
        {" 1.5 , -2 ", QMetaType::QPointF, QPointF(1.5, -2)},
        {"1.6,2.4", QMetaType::QPoint, QPoint(2, 2)},
        {"1e3", QMetaType::Double, 1000.0},
        {"-0", QMetaType::Int, 0},
        {"a\\", QMetaType::QStringList, texts({"a\\"})},
        {"a,", QMetaType::QStringList, QStringList({text("a"), QString()})},
        {"a\\bc", QMetaType::QStringList, texts({"abc"})},
    };
    for (const Case &read : cases) {
        EXPECT_EQ(OssValueText::fromText(text(read.text), read.type), read.value) << read.text;
    }
}

TEST_F(ValueText, whatIsNoneOfTheTypeIsRefused)
{
    const std::pair<int, std::vector<const char *>> none[] = {
        {QMetaType::Double, {"x", "", "1,5", "nan", "inf", "-inf", "1e999"}},
        {QMetaType::Float, {"nan", "inf", "x"}},
        {QMetaType::Int, {"x", "", "1.5", "99999999999", "0x10"}},
        {QMetaType::Bool, {"maybe", "", "TRUE"}},
        {QMetaType::QPointF, {"1", "1,2,3", "1,x", "1,", "nan,0"}},
        {QMetaType::QPoint, {"0,inf", "1e300,0"}},
        {QMetaType::QRectF, {"1,2,3,nan", "1,2,3"}},
        {QMetaType::QRect, {"1,2,3,4,5"}},
        {QMetaType::QSize, {"1", "-3000000000,1"}},
        {QMetaType::QSizeF, {"inf,1"}},
        {QMetaType::QColor, {"#12"}},
        {QMetaType::QObjectStar, {"1"}},
        {qMetaTypeId<OssColor>(), {"", "x", "1.5.5"}},
        {qMetaTypeId<OssUserEnum>(), {"", "x", "1.5.5"}},
        {qMetaTypeId<OssDebugLog::Category>(), {"", "x", "1.5.5"}},
        {0, {"", "x", "1.5.5"}},
        {-1, {"", "x", "1.5.5"}},
    };
    for (const auto &[type, words] : none) {
        for (const char *one : words)
            EXPECT_FALSE(OssValueText::fromText(text(one), type).isValid())
                << QMetaType::typeName(type) << " " << one;
    }
}

TEST_F(ValueText, aValueWithoutATypeIsNoText)
{
    EXPECT_EQ(OssValueText::toText(QVariant()), QString());
    EXPECT_EQ(OssValueText::toText(QVariant(QLine(1, 2, 3, 4))), QString());
}

class Color : public ValueText
{};

TEST_F(Color, textsOfBothKindsAreRead)
{
    struct Case
    {
        const char *text;
        OssColor color;
    };

    const Case cases[] = {
        {"0.1,0.2,0.3", OssColor(0.1, 0.2, 0.3, 1.0)},
        {"0.1,0.2,0.3,0.4", OssColor(0.1, 0.2, 0.3, 0.4)},
        {" 1e2 , -1 ,0, 0.5 ", OssColor(100, -1, 0, 0.5)},
        {"1,2,3,7", OssColor(1, 2, 3, 1)},
        {"1,2,3,-1", OssColor(1, 2, 3, 0)},
        {"#ff0000", OssColor(1, 0, 0, 1)},
        {"#00ff0000", OssColor(1, 0, 0, 0)},
        {"#fff", OssColor(1, 1, 1, 1)},
    };
    for (const Case &read : cases) {
        bool ok = false;
        EXPECT_EQ(OssColor::fromString(text(read.text), &ok), read.color) << read.text;
        EXPECT_TRUE(ok) << read.text;
    }
}

TEST_F(Color, whatIsNoColorIsOpaqueBlackAndSaysSo)
{
    for (const char *bad : {"", "1", "1,2", "1,2,3,4,5", "1,2,x", "1,2,", ",,", "nan,0,0",
                            "0,inf,0", "0,0,0,nan", "red", "#", "#12", "#gggggg", "1;2;3"}) {
        bool ok = true;
        EXPECT_EQ(OssColor::fromString(text(bad), &ok), OssColor(0, 0, 0, 1)) << bad;
        EXPECT_FALSE(ok) << bad;
        EXPECT_EQ(OssColor::fromString(text(bad)), OssColor()) << "nobody asks";
    }
}

TEST_F(Color, alphaStaysWithinItsRangeAndChannelsDoNot)
{
    EXPECT_EQ(OssColor(0, 0, 0, 3.5).alpha(), 1.0);
    EXPECT_EQ(OssColor(0, 0, 0, -0.5).alpha(), 0.0);
    const OssColor bright(12.5, -3.0, 0.0);
    EXPECT_EQ(bright.red(), 12.5);
    EXPECT_EQ(bright.green(), -3.0);
    EXPECT_EQ(OssColor::fromString(bright.toString()), bright);
}

TEST_F(Color, screensShowTheNearestThatTheyCan)
{
    const QColor shown = OssColor(12.5, -3.0, 0.5, 0.25).toQColor();
    ASSERT_TRUE(shown.isValid());
    EXPECT_EQ(shown.spec(), QColor::Rgb) << "of a kind that everything can show";
    EXPECT_EQ(shown.red(), 255);
    EXPECT_EQ(shown.green(), 0);
    EXPECT_NEAR(shown.blueF(), 0.5, 1e-4);
    EXPECT_NEAR(shown.alphaF(), 0.25, 1e-4);
    for (const QRgb rgb : {0xff102030U, 0x80fefefeU, 0x00ffffffU}) {
        const QColor plain = QColor::fromRgba(rgb);
        EXPECT_EQ(OssColor(plain).toQColor().rgba(), rgb);
    }
}

TEST_F(Color, convertsInVariantsToAndFromTextAndScreenColors)
{
    const QVariant color = QVariant::fromValue(OssColor(1, 0.5, 0));
    EXPECT_EQ(color.toString(), text("1,0.5,0,1"));
    EXPECT_EQ(color.value<QColor>().red(), 255);
    EXPECT_EQ(QVariant(text("0.5,0,0")).value<OssColor>(), OssColor(0.5, 0, 0));
    EXPECT_EQ(QVariant(QColor(255, 0, 0)).value<OssColor>(), OssColor(1, 0, 0));
    EXPECT_EQ(color, QVariant::fromValue(OssColor(1, 0.5, 0)));
    EXPECT_NE(color, QVariant::fromValue(OssColor(1, 0.5, 0, 0.5)));
    EXPECT_TRUE(OssColor(1, 0, 0) < OssColor(2, 0, 0));
    EXPECT_FALSE(OssColor(1, 0, 0) < OssColor(1, 0, 0));
}

class UserEnum : public ValueText
{};

TEST_F(UserEnum, aChoiceBeyondTheListIsKeptWithoutAName)
{
    OssUserEnum mode({text("Normal"), text("Add")}, 1);
    EXPECT_EQ(mode.currentName(), text("Add"));
    for (const int beyond : {7, -1}) {
        mode.setCurrentValue(beyond);
        EXPECT_EQ(mode.currentValue(), beyond);
        EXPECT_EQ(mode.currentName(), QString());
    }
    EXPECT_EQ(OssUserEnum().currentName(), QString());
}

TEST_F(UserEnum, onlyTheChosenValueCounts)
{
    const OssUserEnum a({text("A"), text("B")}, 1);
    EXPECT_TRUE(a == OssUserEnum({text("C")}, 1));
    EXPECT_FALSE(a == OssUserEnum(a.names(), 0));
    EXPECT_TRUE(OssUserEnum({}, 0) < a);
    EXPECT_EQ(QVariant::fromValue(a), QVariant::fromValue(OssUserEnum({}, 1)));
    EXPECT_NE(QVariant::fromValue(a), QVariant::fromValue(OssUserEnum(a.names(), 0)));
    EXPECT_EQ(QVariant::fromValue(a).toInt(), 1);
    EXPECT_EQ(QVariant::fromValue(a).toString(), text("B"));
}

TEST(CustomAttribute, copiesAreIndependent)
{
    OssCustomAttribute size(text("brickSize"), 1.0);
    OssCustomAttribute copy = size;
    copy.setValue(2.0);
    copy.setPrettyName(text("Bricks"));
    copy.editDefinition().visible = false;
    copy.editDefinition().group = text("Pattern");
    copy.editDefinition().maximum = 5.0;
    EXPECT_FALSE(size.definition().maximum.isValid());
    EXPECT_TRUE(size == OssCustomAttribute(text("brickSize"), 1.0));
    EXPECT_EQ(size.prettyName(), text("Brick Size")) << "made from the name";
    EXPECT_TRUE(size.isDefault());
    EXPECT_FALSE(copy.isDefault());
    const OssCustomAttribute moved = std::move(copy);
    EXPECT_EQ(moved.prettyName(), text("Bricks"));
    EXPECT_EQ(moved.group(), text("Pattern"));
    EXPECT_FALSE(moved.isVisible());
    size = moved;
    EXPECT_TRUE(size == moved);
}

TEST(CustomAttribute, anyDifferenceThatAUserSeesMakesThemUnequal)
{
    const std::function<void(OssCustomAttribute *)> changes[] = {
        [](auto *a) { a->setValue(2.0); },
        [](auto *a) { a->setPrettyName(text("Other")); },
        [](auto *a) { a->editDefinition().group = text("Other"); },
        [](auto *a) { a->editDefinition().visible = false; },
        [](auto *a) { a->editDefinition().name = text("Other"); },
    };
    const OssCustomAttribute size(text("Size"), 1.0);
    EXPECT_TRUE(size == OssCustomAttribute(text("Size"), 1.0));
    for (const auto &change : changes) {
        OssCustomAttribute other = size;
        change(&other);
        EXPECT_FALSE(size == other) << "change " << &change - changes;
    }
}

TEST(CustomAttribute, oneThatDoesNotExistIsInvalidAndHarmless)
{
    OssCustomAttribute none;
    EXPECT_FALSE(none.isValid());
    EXPECT_EQ(none.name(), QString());
    EXPECT_EQ(none.prettyName(), QString());
    EXPECT_TRUE(none.isVisible());
    EXPECT_FALSE(none.value().isValid());
    EXPECT_TRUE(none == OssCustomAttribute());
    EXPECT_FALSE(OssCustomAttribute(QString(), 1.0).isValid()) << "without a name";
    none.editDefinition().group = text("G");
    EXPECT_EQ(none.group(), text("G"));
    EXPECT_EQ(OssCustomAttribute().group(), QString()) << "what all of them share stays empty";
}

// --- names

TEST(Names, labelsAreMadeFromIdentifiers)
{
    const OssGroupParameterObject object;
    EXPECT_EQ(object.prettyPropertyName(text("shakeTime")), text("Shake Time"));
    EXPECT_EQ(object.prettyPropertyName(text("in_low")), text("In Low"));
    EXPECT_EQ(object.prettyPropertyName(text("UVScale")), text("UVScale"));
}

TEST(Names, knobNamesAreAsciiAndNotEmpty)
{
    EXPECT_TRUE(OssIsAlphanumericUnderscore(text("Knob_2")));
    for (const char *bad : {"", "a b", "a-b", "\xc3\xa4"})
        EXPECT_FALSE(OssIsAlphanumericUnderscore(text(bad))) << bad;
}

} // namespace
