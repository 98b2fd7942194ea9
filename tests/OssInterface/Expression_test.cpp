#include "OssInterface/Properties/OssExpression.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(Expression, arithmeticFollowsTheUsualRules)
{
    const struct
    {
        const char *text;
        double value;
    } cases[] = {
        {"1", 1},         {" 2 + 3 * 4 ", 14}, {"(2+3)*4", 20},     {"2^3^2", 512},
        {"-2^2", -4},     {"2^-1", 0.5},       {"10-4-3", 3},       {"8/4/2", 1},
        {".5", 0.5},      {"1e3", 1000},       {"2.5e-1", 0.25},    {"50%", 0.5},
        {"--3", 3},       {"min(2, 1)", 1},    {"max(2,3*2)", 6},   {"clamp(7,0,5)", 5},
        {"sqrt(16)", 4},  {"x*2", 14},         {"*2", 14},          {"/ 2", 3.5},
        {"+=3", 10},      {"-=2*2", 3},        {"+3", 3},           {"-3", -3},
        {"deg(pi)", 180}, {"floor(-1.5)", -2}, {"pow(2,10)", 1024}, {"abs(-4)", 4},
        {"-=1-2", 8},
    };

    for (const auto &test : cases) {
        double value = NAN;
        const OssResult result = OssExpression::evaluate(QLatin1String(test.text), 7.0, &value);
        EXPECT_TRUE(result) << test.text << ": " << qPrintable(result.error());
        EXPECT_DOUBLE_EQ(value, test.value) << test.text;
    }
}

TEST(Expression, whatIsNoFiniteNumberIsRefusedWithAReason)
{
    const QString deep = QString(50000, QLatin1Char('('));
    for (const QString &text : {QStringLiteral(""),
                                QStringLiteral("1+"),
                                QStringLiteral("(1"),
                                QStringLiteral("1)"),
                                QStringLiteral("1 2"),
                                QStringLiteral("1,5"),
                                QStringLiteral("foo"),
                                QStringLiteral("sqrt"),
                                QStringLiteral("min(1)"),
                                QStringLiteral("1/0"),
                                QStringLiteral("log(0)"),
                                QStringLiteral("sqrt(-1)"),
                                QStringLiteral("1e999"),
                                QStringLiteral("0x10"),
                                QStringLiteral("nan"),
                                QStringLiteral("system(1)"),
                                deep,
                                QStringLiteral("."),
                                QStringLiteral("1e"),
                                QString(50000, QLatin1Char('1')).insert(1, QLatin1Char('.')),
                                QString(900, QLatin1Char('-')) + QLatin1Char('1')}) {
        double value = 42.0;
        EXPECT_FALSE(OssExpression::evaluate(text, 0.0, &value)) << qPrintable(text.left(40));
        EXPECT_EQ(value, 42.0);
    }
}

} // namespace
