#include "OssCore/Values/OssAttributeKind.h"

#include "OssCore/Values/OssColor.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssCore/Values/OssValueText.h"
#include "support/OtherValue.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QPointF>

#include <cmath>
#include <limits>

namespace {

const QStringList Modes = texts({"Add", "2", "Mix"});

OssCustomAttribute attributeOf(const OssAttributeKind &kind)
{
    const QVariant read = OssValueText::fromText(kind.defaultText, kind.form.type);
    OssCustomAttribute attribute(
        text("Value"),
        OssAttributeKind::like(OssAttributeKind::empty(kind.form.type, Modes), read));
    if (!kind.isPlain())
        attribute.editDefinition().editor = kind.name;
    return attribute;
}

QVariant mode(const QStringList &names, int number)
{
    return QVariant::fromValue(OssUserEnum(names, number));
}

TEST(AttributeKinds, eachIsToldFromTheOthersAndHasADefault)
{
    for (const OssAttributeKind &kind : OssAttributeKind::all()) {
        const std::string name = kind.name.data();
        const OssCustomAttribute attribute = attributeOf(kind);
        EXPECT_TRUE(attribute.value().isValid()) << name;
        EXPECT_EQ(attribute.value().userType(), kind.form.type) << name;
        EXPECT_EQ(OssAttributeKind::of(attribute), &kind) << name;
        EXPECT_EQ(OssAttributeKind::named(kind.name), &kind) << name;
        EXPECT_FALSE(QString(kind.form.words).isEmpty()) << name;
    }
}

TEST(AttributeKinds, valuesSurviveTheTextThePlainFormAndWords)
{
    for (const OssAttributeKind &kind : OssAttributeKind::all()) {
        const QVariant first = attributeOf(kind).value();
        for (int number = 0; number < 3; ++number) {
            const QVariant value = otherValue(first, number);
            const std::string shown = kind.name.data()
                                      + (" " + OssValueText::toText(value).toStdString());
            ASSERT_TRUE(value.isValid()) << shown;
            EXPECT_NE(value, first) << shown;
            const QVariant read = OssValueText::fromText(OssValueText::toText(value),
                                                         kind.form.type);
            const QVariant inWords = OssAttributeKind::fromWords(first,
                                                                 OssAttributeKind::toWords(value));
            for (const QVariant &back :
                 {OssAttributeKind::like(first, read), inWords,
                  OssAttributeKind::like(first, OssAttributeKind::plain(value))}) {
                EXPECT_EQ(back, value) << shown;
                EXPECT_EQ(OssAttributeKind::choices(back), OssAttributeKind::choices(first));
            }
        }
    }
}

TEST(AttributeKinds, whatIsNoValueOfAKindIsRefused)
{
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    const QVariant color = QVariant::fromValue(OssColor(1, 1, 1));

    const struct
    {
        QVariant example;
        QVariant value;
    } cases[] = {{1.5, text("seven")},
                 {1, 1e10},
                 {1, nothing},
                 {1, qlonglong(1) << 40},
                 {true, text("maybe")},
                 {color, text("red")},
                 {color, QVariantList{1.0, 2.0}},
                 {color, QVariantList{1.0, text("x"), 2.0}},
                 {color, QVariantList{nothing, 0.0, 0.0}},
                 {color, QVariant::fromValue(OssColor(nothing, 0, 0))},
                 {QPointF(), QVariantList{1.0, 2.0, 3.0}},
                 {QPointF(), QPointF(0.0, nothing)},
                 {mode(Modes, 0), text("Screen")},
                 {mode(Modes, 0), -1},
                 {mode(Modes, 0), 3},
                 {mode(Modes, 0), 1.5},
                 {mode(Modes, 0), 1e308},
                 {mode(Modes, 0), qlonglong(1) << 40},
                 {mode(Modes, 0), nothing},
                 {mode(Modes, 0), mode({text("Screen")}, 0)},
                 {QString(), QVariant()}};

    for (const auto &one : cases)
        EXPECT_FALSE(OssAttributeKind::like(one.example, one.value).isValid())
            << one.value.typeName() << " for " << one.example.typeName();
}

TEST(AttributeKinds, aChoiceGoesByNameWhereListsDifferAndByNumberWhereItHasNone)
{
    const QVariant example = mode(Modes, 0);
    const auto number = [&example](const QVariant &value) {
        return OssAttributeKind::like(example, value).value<OssUserEnum>().currentValue();
    };
    EXPECT_EQ(number(text("Mix")), 2);
    EXPECT_EQ(number(text("2")), 1) << "a name that looks like a number is a name";
    EXPECT_EQ(number(text("0")), 0);
    EXPECT_EQ(number(mode({text("Mix"), text("Add")}, 0)), 2);
    EXPECT_EQ(number(mode({}, 7)), 7) << "of a newer type";
    EXPECT_EQ(number(mode(Modes, 7)), 7);
    EXPECT_EQ(number(1), 1);
}

} // namespace
