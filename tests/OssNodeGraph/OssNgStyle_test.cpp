#include "OssNodeGraph/Drawing/OssNgStyle.h"

#include <gtest/gtest.h>

TEST(OssNgStyle, unknownCategoriesShareOneColourAndAreNotInvalid)
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QColor unknown = style->categoryColor(QStringLiteral("Never heard of"));
    EXPECT_TRUE(unknown.isValid());
    EXPECT_EQ(unknown, style->categoryColor(QString()));
    EXPECT_NE(unknown, style->categoryColor(QStringLiteral("Paint")));
}

TEST(OssNgStyle, colorsUpdatedOnlyWhenAColourChanges)
{
    OssNgStyle *style = OssNgStyle::instance();
    int told = 0;
    QObject listener;
    QObject::connect(style, &OssNgStyle::colorsUpdated, &listener, [&told] { ++told; });
    const QColor old = style->color(OssNgStyle::Role::Accent);
    style->setColor(OssNgStyle::Role::Accent, old);
    EXPECT_EQ(told, 0);
    style->setColor(OssNgStyle::Role::Accent, Qt::red);
    style->setColor(OssNgStyle::Role::Accent, old);
    EXPECT_EQ(told, 2);
}
