#include "Ossa/Painting/BrushFields.h"

#include <QCoreApplication>

namespace {

// One function for each member: a pointer to a member of a member is nothing that C++ knows.
template <double OssEvBrush::*Member>
double &number(Brush &brush)
{
    return brush.paint.*Member;
}

template <bool OssEvBrush::*Member>
bool &flag(Brush &brush)
{
    return brush.paint.*Member;
}

template <std::size_t Axis>
bool &mirror(Brush &brush)
{
    return brush.paint.mirrors[Axis];
}

double &steadiness(Brush &brush)
{
    return brush.steadiness;
}

constexpr const char *percent = " %";
constexpr const char *degrees = "°";
constexpr const char *pixels = " px";
constexpr double hundred = 100.0;

} // namespace

// clang-format off
const QVector<BrushFields::Number> &BrushFields::numbers()
{
    static const QVector<Number> table{
        {"hardness", QT_TRANSLATE_NOOP("BrushFields", "Hardness"), QT_TRANSLATE_NOOP("BrushFields", "Part of the brush that covers fully"), percent, hundred, 0.0, 100.0, number<&OssEvBrush::hardness>},
        {"opacity", QT_TRANSLATE_NOOP("BrushFields", "Opacity"), QT_TRANSLATE_NOOP("BrushFields", "Of a whole stroke, however often it goes over a place"), percent, hundred, 1.0, 100.0, number<&OssEvBrush::opacity>},
        {"flow", QT_TRANSLATE_NOOP("BrushFields", "Flow"), QT_TRANSLATE_NOOP("BrushFields", "Of a dab: below 100 % dabs add up, to the stroke's opacity at most"), percent, hundred, 1.0, 100.0, number<&OssEvBrush::flow>},
        {"spacing", QT_TRANSLATE_NOOP("BrushFields", "Spacing"), QT_TRANSLATE_NOOP("BrushFields", "From dab to dab, in parts of the radius"), percent, hundred, 2.0, 1000.0, number<&OssEvBrush::spacing>},
        {"roundness", QT_TRANSLATE_NOOP("BrushFields", "Roundness"), QT_TRANSLATE_NOOP("BrushFields", "How high the brush is by its length"), percent, hundred, 2.0, 100.0, number<&OssEvBrush::roundness>},
        {"angle", QT_TRANSLATE_NOOP("BrushFields", "Angle"), QT_TRANSLATE_NOOP("BrushFields", "By which the brush is turned, against the clock"), degrees, 1.0, -180.0, 180.0, number<&OssEvBrush::angle>},
        {"sizeJitter", QT_TRANSLATE_NOOP("BrushFields", "Size Jitter"), QT_TRANSLATE_NOOP("BrushFields", "By how much dabs are smaller by chance"), percent, hundred, 0.0, 100.0, number<&OssEvBrush::sizeJitter>},
        {"angleJitter", QT_TRANSLATE_NOOP("BrushFields", "Angle Jitter"), QT_TRANSLATE_NOOP("BrushFields", "By how much dabs are turned by chance"), percent, hundred, 0.0, 100.0, number<&OssEvBrush::angleJitter>},
        {"placeJitter", QT_TRANSLATE_NOOP("BrushFields", "Scatter"), QT_TRANSLATE_NOOP("BrushFields", "By how many radii dabs lie aside by chance"), percent, hundred, 0.0, 500.0, number<&OssEvBrush::placeJitter>},
        {"flowJitter", QT_TRANSLATE_NOOP("BrushFields", "Flow Jitter"), QT_TRANSLATE_NOOP("BrushFields", "By how much less dabs cover by chance"), percent, hundred, 0.0, 100.0, number<&OssEvBrush::flowJitter>},
        {"steadiness", QT_TRANSLATE_NOOP("BrushFields", "Steady Stroke"), QT_TRANSLATE_NOOP("BrushFields", "Length of the string by which the pointer draws the brush behind it"), pixels, 1.0, 0.0, 200.0, steadiness},
    };
    return table;
}

const QVector<BrushFields::Switch> &BrushFields::switches()
{
    static const QVector<Switch> table{
        {"followsStroke", QT_TRANSLATE_NOOP("BrushFields", "Turn with the stroke"), QT_TRANSLATE_NOOP("BrushFields", "Count the angle from where the stroke goes"), flag<&OssEvBrush::followsStroke>},
        {"pressureSizes", QT_TRANSLATE_NOOP("BrushFields", "Pressure makes larger"), QT_TRANSLATE_NOOP("BrushFields", "Let a pen's pressure decide how large dabs are"), flag<&OssEvBrush::pressureSizes>},
        {"pressureCovers", QT_TRANSLATE_NOOP("BrushFields", "Pressure covers more"), QT_TRANSLATE_NOOP("BrushFields", "Let a pen's pressure decide how much dabs cover"), flag<&OssEvBrush::pressureCovers>},
        {"mirrorX", QT_TRANSLATE_NOOP("BrushFields", "Mirror X"), QT_TRANSLATE_NOOP("BrushFields", "Paint on the object's other side of x = 0 as well"), mirror<0>},
        {"mirrorY", QT_TRANSLATE_NOOP("BrushFields", "Mirror Y"), QT_TRANSLATE_NOOP("BrushFields", "Paint on the object's other side of y = 0 as well"), mirror<1>},
        {"mirrorZ", QT_TRANSLATE_NOOP("BrushFields", "Mirror Z"), QT_TRANSLATE_NOOP("BrushFields", "Paint on the object's other side of z = 0 as well"), mirror<2>},
        {"goesThrough", QT_TRANSLATE_NOOP("BrushFields", "Paint through"), QT_TRANSLATE_NOOP("BrushFields", "Paint on what is hidden behind the object's surface, too"), flag<&OssEvBrush::goesThrough>},
    };
    return table;
}

// clang-format on
