#include "Ossa/Painting/BrushFields.h"

#include "OssEvaluation/Kernels/MergeRows.h"

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

template <class Kind, Kind OssEvBrush::*Member>
int chosen(const Brush &brush)
{
    return int(brush.paint.*Member);
}

template <class Kind, Kind OssEvBrush::*Member>
void choose(Brush &brush, int choice)
{
    brush.paint.*Member = Kind(choice);
}

QStringList list(std::initializer_list<const char *> words)
{
    QStringList texts;
    for (const char *word : words)
        texts.append(QLatin1String(word));
    return texts;
}

QStringList blendModes()
{
    QStringList names;
    for (const std::string &name : OssEvMergeRows::modes())
        names.append(QString::fromStdString(name));
    return names;
}

constexpr const char *times = " x";
constexpr const char *percent = " %";
constexpr const char *degrees = "°";
constexpr const char *pixels = " px";
constexpr double hundred = 100.0;

} // namespace

// clang-format off
const QVector<BrushFields::Number> &BrushFields::numbers()
{
    static const QVector<Number> table{
        {"hardness", QT_TRANSLATE_NOOP("BrushFields", "Hardness"), QT_TRANSLATE_NOOP("BrushFields", "Part of the brush that covers fully"), percent, hundred, 0.0, 100.0, 0, number<&OssEvBrush::hardness>},
        {"opacity", QT_TRANSLATE_NOOP("BrushFields", "Opacity"), QT_TRANSLATE_NOOP("BrushFields", "Of a whole stroke, however often it goes over a place"), percent, hundred, 1.0, 100.0, 0, number<&OssEvBrush::opacity>},
        {"flow", QT_TRANSLATE_NOOP("BrushFields", "Flow"), QT_TRANSLATE_NOOP("BrushFields", "Of a dab: below 100 % dabs add up, to the stroke's opacity at most"), percent, hundred, 1.0, 100.0, 0, number<&OssEvBrush::flow>},
        {"spacing", QT_TRANSLATE_NOOP("BrushFields", "Spacing"), QT_TRANSLATE_NOOP("BrushFields", "From dab to dab, in parts of the radius"), percent, hundred, 2.0, 1000.0, 0, number<&OssEvBrush::spacing>},
        {"roundness", QT_TRANSLATE_NOOP("BrushFields", "Roundness"), QT_TRANSLATE_NOOP("BrushFields", "How high the brush is by its length"), percent, hundred, 2.0, 100.0, 0, number<&OssEvBrush::roundness>},
        {"angle", QT_TRANSLATE_NOOP("BrushFields", "Angle"), QT_TRANSLATE_NOOP("BrushFields", "By which the brush is turned, against the clock"), degrees, 1.0, -180.0, 180.0, 0, number<&OssEvBrush::angle>},
        {"sizeJitter", QT_TRANSLATE_NOOP("BrushFields", "Size Jitter"), QT_TRANSLATE_NOOP("BrushFields", "By how much dabs are smaller by chance"), percent, hundred, 0.0, 100.0, 0, number<&OssEvBrush::sizeJitter>},
        {"angleJitter", QT_TRANSLATE_NOOP("BrushFields", "Angle Jitter"), QT_TRANSLATE_NOOP("BrushFields", "By how much dabs are turned by chance"), percent, hundred, 0.0, 100.0, 0, number<&OssEvBrush::angleJitter>},
        {"placeJitter", QT_TRANSLATE_NOOP("BrushFields", "Scatter"), QT_TRANSLATE_NOOP("BrushFields", "By how many radii dabs lie aside by chance"), percent, hundred, 0.0, 500.0, 0, number<&OssEvBrush::placeJitter>},
        {"flowJitter", QT_TRANSLATE_NOOP("BrushFields", "Flow Jitter"), QT_TRANSLATE_NOOP("BrushFields", "By how much less dabs cover by chance"), percent, hundred, 0.0, 100.0, 0, number<&OssEvBrush::flowJitter>},
        {"pictureRepeats", QT_TRANSLATE_NOOP("BrushFields", "Picture Repeats"), QT_TRANSLATE_NOOP("BrushFields", "How often the picture lies beside itself across a patch"), times, 1.0, 0.05, 500.0, 2, number<&OssEvBrush::pictureRepeats>},
        {"steadiness", QT_TRANSLATE_NOOP("BrushFields", "Steady Stroke"), QT_TRANSLATE_NOOP("BrushFields", "Length of the string by which the pointer draws the brush behind it"), pixels, 1.0, 0.0, 200.0, 0, steadiness},
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

const QVector<BrushFields::Choice> &BrushFields::choices()
{
    using Paint = OssEvBrush;
    static const QVector<Choice> table{
        {"tool", QT_TRANSLATE_NOOP("BrushFields", "Tool"), QT_TRANSLATE_NOOP("BrushFields", "What a stroke does; a fill is one click, a gradient one line"), list({QT_TRANSLATE_NOOP("BrushFields", "Brush"), QT_TRANSLATE_NOOP("BrushFields", "Eraser"), QT_TRANSLATE_NOOP("BrushFields", "Clone"), QT_TRANSLATE_NOOP("BrushFields", "Smear"), QT_TRANSLATE_NOOP("BrushFields", "Blur"), QT_TRANSLATE_NOOP("BrushFields", "Fill"), QT_TRANSLATE_NOOP("BrushFields", "Gradient")}), chosen<Paint::Tool, &Paint::tool>, choose<Paint::Tool, &Paint::tool>},
        {"blend", QT_TRANSLATE_NOOP("BrushFields", "Blend"), QT_TRANSLATE_NOOP("BrushFields", "How the stroke is put over the paint that is there"), blendModes(), chosen<int, &Paint::blend>, choose<int, &Paint::blend>},
        {"within", QT_TRANSLATE_NOOP("BrushFields", "Paint on"), QT_TRANSLATE_NOOP("BrushFields", "Where strokes and fills may paint, as it is where they begin"), list({QT_TRANSLATE_NOOP("BrushFields", "Everywhere"), QT_TRANSLATE_NOOP("BrushFields", "UV Island"), QT_TRANSLATE_NOOP("BrushFields", "Face"), QT_TRANSLATE_NOOP("BrushFields", "Material"), QT_TRANSLATE_NOOP("BrushFields", "Painted Already"), QT_TRANSLATE_NOOP("BrushFields", "Bare")}), chosen<Paint::Within, &Paint::within>, choose<Paint::Within, &Paint::within>},
        {"sizeIn", QT_TRANSLATE_NOOP("BrushFields", "Size in"), QT_TRANSLATE_NOOP("BrushFields", "What the brush's size is counted in"), list({QT_TRANSLATE_NOOP("BrushFields", "Texels"), QT_TRANSLATE_NOOP("BrushFields", "Pixels"), QT_TRANSLATE_NOOP("BrushFields", "World")}), chosen<Paint::SizeIn, &Paint::sizeIn>, choose<Paint::SizeIn, &Paint::sizeIn>},
        {"pictureOn", QT_TRANSLATE_NOOP("BrushFields", "Picture on"), QT_TRANSLATE_NOOP("BrushFields", "Whether the picture that is painted with repeats over each patch or lies on the screen as a sheet"), list({QT_TRANSLATE_NOOP("BrushFields", "Patches"), QT_TRANSLATE_NOOP("BrushFields", "Sheet")}), chosen<Paint::PictureOn, &Paint::pictureOn>, choose<Paint::PictureOn, &Paint::pictureOn>},
        {"gradientTo", QT_TRANSLATE_NOOP("BrushFields", "Gradient to"), QT_TRANSLATE_NOOP("BrushFields", "What a gradient ends with: nothing, or the second color"), list({QT_TRANSLATE_NOOP("BrushFields", "Nothing"), QT_TRANSLATE_NOOP("BrushFields", "Second Color")}), chosen<Paint::GradientTo, &Paint::gradientTo>, choose<Paint::GradientTo, &Paint::gradientTo>},
    };
    return table;
}

// clang-format on

QString BrushFields::words(const char *text)
{
    return QCoreApplication::translate("BrushFields", text);
}

QStringList BrushFields::words(const QStringList &texts)
{
    QStringList translated;
    for (const QString &text : texts)
        translated.append(words(qPrintable(text)));
    return translated;
}
