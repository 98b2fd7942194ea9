#include "OssCore/Program/OssDebug.h"
#include "OssCore/Values/OssColor.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssCore/Values/OssValueText.h"

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
                               QStringLiteral("a, \"b\" <c>"),
                               QString::fromUtf8("\xf0\x9f\x8e\xa8 \xc3\xa4"),
                               QPointF(1.5, -2.25),
                               QPoint(3, -4),
                               QSizeF(0.1, 1e9),
                               QSize(640, 480),
                               QRectF(0.1, 0.2, 0.3, 0.4),
                               QRect(-5, 6, 70, 80),
                               QStringList{QStringLiteral("a,b"), QString(), QStringLiteral("\\")},
                               QStringList{QString()},
                               QStringList{QString(), QString()},
                               QStringList{QStringLiteral("\\")},
                               QStringList{QStringLiteral("a\\,b\\\\"), QStringLiteral(",")},
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
    EXPECT_EQ(OssValueText::toText(1234567.25), QStringLiteral("1234567.25"));
    EXPECT_EQ(OssValueText::toText(QPointF(0.5, -1234.5)), QStringLiteral("0.5,-1234.5"));
    EXPECT_EQ(OssValueText::fromText(QStringLiteral("0.5,-1234.5"), QMetaType::QPointF),
              QVariant(QPointF(0.5, -1234.5)));
    EXPECT_EQ(OssValueText::fromText(QStringLiteral("1.5"), QMetaType::Double), QVariant(1.5));
    EXPECT_EQ(OssColor(0.5, 0.25, 1.0).toString(), QStringLiteral("0.5,0.25,1,1"));
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
        {"a\\", QMetaType::QStringList, QStringList{QStringLiteral("a\\")}},
        {"a,", QMetaType::QStringList, QStringList({QStringLiteral("a"), QString()})},
        {"a\\bc", QMetaType::QStringList, QStringList{QStringLiteral("abc")}},
    };
    for (const Case &read : cases) {
        EXPECT_EQ(OssValueText::fromText(QString::fromLatin1(read.text), read.type), read.value)
            << read.text;
    }
}

TEST_F(ValueText, whatIsNoneOfTheTypeIsRefused)
{
    struct Case
    {
        const char *text;
        int type;
    };

    const Case cases[] = {
        {"x", QMetaType::Double},
        {"", QMetaType::Double},
        {"1,5", QMetaType::Double},
        {"nan", QMetaType::Double},
        {"inf", QMetaType::Double},
        {"-inf", QMetaType::Double},
        {"1e999", QMetaType::Double},
        {"nan", QMetaType::Float},
        {"inf", QMetaType::Float},
        {"x", QMetaType::Float},
        {"x", QMetaType::Int},
        {"", QMetaType::Int},
        {"1.5", QMetaType::Int},
        {"99999999999", QMetaType::Int},
        {"0x10", QMetaType::Int},
        {"maybe", QMetaType::Bool},
        {"", QMetaType::Bool},
        {"TRUE", QMetaType::Bool},
        {"1", QMetaType::QPointF},
        {"1,2,3", QMetaType::QPointF},
        {"1,x", QMetaType::QPointF},
        {"1,", QMetaType::QPointF},
        {"nan,0", QMetaType::QPointF},
        {"0,inf", QMetaType::QPoint},
        {"1e300,0", QMetaType::QPoint},
        {"1,2,3,nan", QMetaType::QRectF},
        {"1,2,3", QMetaType::QRectF},
        {"1,2,3,4,5", QMetaType::QRect},
        {"1", QMetaType::QSize},
        {"inf,1", QMetaType::QSizeF},
        {"-3000000000,1", QMetaType::QSize},
        {"#12", QMetaType::QColor},
        {"1", QMetaType::QObjectStar},
    };
    for (const Case &bad : cases) {
        EXPECT_FALSE(OssValueText::fromText(QString::fromLatin1(bad.text), bad.type).isValid())
            << QMetaType::typeName(bad.type) << " " << bad.text;
    }
    for (const int type : {qMetaTypeId<OssColor>(), qMetaTypeId<OssUserEnum>(),
                           qMetaTypeId<OssDebugLog::Category>(), 0, -1}) {
        for (const char *text : {"", "x", "1.5.5"})
            EXPECT_FALSE(OssValueText::fromText(QString::fromLatin1(text), type).isValid())
                << QMetaType::typeName(type) << " " << text;
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
        EXPECT_EQ(OssColor::fromString(QString::fromLatin1(read.text), &ok), read.color)
            << read.text;
        EXPECT_TRUE(ok) << read.text;
    }
}

TEST_F(Color, whatIsNoColorIsOpaqueBlackAndSaysSo)
{
    for (const char *text : {"", "1", "1,2", "1,2,3,4,5", "1,2,x", "1,2,", ",,", "nan,0,0",
                             "0,inf,0", "0,0,0,nan", "red", "#", "#12", "#gggggg", "1;2;3"}) {
        bool ok = true;
        EXPECT_EQ(OssColor::fromString(QString::fromLatin1(text), &ok), OssColor(0, 0, 0, 1))
            << text;
        EXPECT_FALSE(ok) << text;
        EXPECT_EQ(OssColor::fromString(QString::fromLatin1(text)), OssColor()) << "nobody asks";
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
    EXPECT_EQ(color.toString(), QStringLiteral("1,0.5,0,1"));
    EXPECT_EQ(color.value<QColor>().red(), 255);
    EXPECT_EQ(QVariant(QStringLiteral("0.5,0,0")).value<OssColor>(), OssColor(0.5, 0, 0));
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
    OssUserEnum mode({QStringLiteral("Normal"), QStringLiteral("Add")}, 1);
    EXPECT_EQ(mode.currentName(), QStringLiteral("Add"));
    for (const int beyond : {7, -1}) {
        mode.setCurrentValue(beyond);
        EXPECT_EQ(mode.currentValue(), beyond);
        EXPECT_EQ(mode.currentName(), QString());
    }
    EXPECT_EQ(OssUserEnum().currentName(), QString());
}

TEST_F(UserEnum, onlyTheChosenValueCounts)
{
    const OssUserEnum a({QStringLiteral("A"), QStringLiteral("B")}, 1);
    EXPECT_TRUE(a == OssUserEnum({QStringLiteral("C")}, 1));
    EXPECT_FALSE(a == OssUserEnum(a.names(), 0));
    EXPECT_TRUE(OssUserEnum({}, 0) < a);
    EXPECT_EQ(QVariant::fromValue(a), QVariant::fromValue(OssUserEnum({}, 1)));
    EXPECT_NE(QVariant::fromValue(a), QVariant::fromValue(OssUserEnum(a.names(), 0)));
    EXPECT_EQ(QVariant::fromValue(a).toInt(), 1);
    EXPECT_EQ(QVariant::fromValue(a).toString(), QStringLiteral("B"));
}

TEST(CustomAttribute, copiesAreIndependent)
{
    OssCustomAttribute size(QStringLiteral("brickSize"), 1.0);
    OssCustomAttribute copy = size;
    copy.setValue(2.0);
    copy.setPrettyName(QStringLiteral("Bricks"));
    copy.editDefinition().group = QStringLiteral("Pattern");
    copy.setVisible(false);
    copy.editDefinition().maximum = 5.0;
    EXPECT_EQ(size.value(), QVariant(1.0));
    EXPECT_EQ(size.prettyName(), QStringLiteral("Brick Size")) << "made from the name";
    EXPECT_EQ(size.group(), QString());
    EXPECT_TRUE(size.isVisible());
    EXPECT_FALSE(size.definition().maximum.isValid());
    EXPECT_EQ(copy.prettyName(), QStringLiteral("Bricks"));
    EXPECT_FALSE(copy.isVisible());
    EXPECT_TRUE(size.isDefault());
    EXPECT_FALSE(copy.isDefault());
    OssCustomAttribute moved = std::move(copy);
    EXPECT_EQ(moved.group(), QStringLiteral("Pattern"));
    size = moved;
    EXPECT_TRUE(size == moved);
}

TEST(CustomAttribute, anyDifferenceThatAUserSeesMakesThemUnequal)
{
    using Change = std::function<void(OssCustomAttribute *)>;
    const Change changes[] = {
        [](OssCustomAttribute *a) { a->setValue(2.0); },
        [](OssCustomAttribute *a) { a->setPrettyName(QStringLiteral("Other")); },
        [](OssCustomAttribute *a) { a->editDefinition().group = QStringLiteral("Other"); },
        [](OssCustomAttribute *a) { a->setVisible(false); },
        [](OssCustomAttribute *a) { a->editDefinition().name = QStringLiteral("Other"); },
    };
    const OssCustomAttribute size(QStringLiteral("Size"), 1.0);
    EXPECT_TRUE(size == OssCustomAttribute(QStringLiteral("Size"), 1.0));
    for (const Change &change : changes) {
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
    none.editDefinition().group = QStringLiteral("G");
    EXPECT_EQ(none.group(), QStringLiteral("G"));
    EXPECT_EQ(OssCustomAttribute().group(), QString()) << "what all of them share stays empty";
}

} // namespace
