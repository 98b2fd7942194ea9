#include "OssModel/Project/OssProjectColors.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssColor.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssEvaluation/Values/OssEvRamp.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Project/OssProject.h"

#include <QCoreApplication>

#include <array>
#include <cmath>

namespace {

/// Numbers that differ by less are the same colour: greys stay what was typed.
constexpr double SmallestChange = 1e-5;

/// From one working space to another: by its name, or by way of the built-in one.
class Conversion
{
public:
    Conversion(OssEvColorSpaces::Pointer from, OssEvColorSpaces::Pointer to)
        : m_from(std::move(from))
        , m_to(std::move(to))
    {
    }

    OssEvResult check() const
    {
        Texel texel{};
        return apply(&texel);
    }

    /// False where it stays what it is.
    bool convert(float *rgb) const
    {
        Texel texel{rgb[0], rgb[1], rgb[2], 1.0F};
        if (!apply(&texel))
            return false;
        bool isOther = false;
        for (std::size_t i = 0; i < 3; ++i)
            isOther = isOther || std::abs(double(texel[i]) - double(rgb[i])) > SmallestChange;
        if (isOther)
            std::copy_n(texel.begin(), 3, rgb);
        return isOther;
    }

private:
    using Texel = std::array<float, 4>;

    OssEvResult apply(Texel *texel) const
    {
        if (m_to->toWorking(m_from->working(), texel->data(), 1))
            return {};
        const OssEvResult there = m_from->fromWorking(OssEvColorSpaces::Light, texel->data(), 1);
        return there ? m_to->toWorking(OssEvColorSpaces::Light, texel->data(), 1) : there;
    }

    OssEvColorSpaces::Pointer m_from;
    OssEvColorSpaces::Pointer m_to;
};

int convertColor(const Conversion &conversion, QVariant *value)
{
    const auto color = value->value<OssColor>();
    std::array<float, 3> rgb{float(color.red()), float(color.green()), float(color.blue())};
    if (!conversion.convert(rgb.data()))
        return 0;
    *value = QVariant::fromValue(
        OssColor(double(rgb[0]), double(rgb[1]), double(rgb[2]), color.alpha()));
    return 1;
}

int convertRamp(const Conversion &conversion, QVariant *value)
{
    OssEvRamp ramp;
    if (!OssEvRamp::fromText(value->toString().toStdString(), &ramp))
        return 0;
    std::vector<OssEvRamp::Stop> stops = ramp.stops();
    int count = 0;
    for (OssEvRamp::Stop &stop : stops)
        count += conversion.convert(stop.color.data()) ? 1 : 0;
    if (count > 0)
        *value = QString::fromStdString(OssEvRamp(stops).toText());
    return count;
}

int convertValue(const Conversion &conversion, OssCustomAttribute *attribute)
{
    const OssAttributeKind *kind = OssAttributeKind::of(*attribute);
    QVariant value = attribute->value();
    int count = 0;
    if (kind && kind->name == QLatin1String("color"))
        count = convertColor(conversion, &value);
    else if (kind && kind->name == QLatin1String("ramp"))
        count = convertRamp(conversion, &value);
    if (count > 0)
        attribute->setValue(value);
    return count;
}

struct Change
{
    OssSnBaseNode *node;
    OssCustomAttribute attribute; ///< as it will be
};

Conversion conversionTo(const OssColorSettings &settings)
{
    OssEvColorSpaces::Pointer to;
    (void)OssColorManagement::find(settings, &to); // where it fails, what stands in counts
    return {OssColorManagement::spaces(), to};
}

/// What would be another, all of it before anything changes: knobs carry their values on.
QVector<Change> changesOf(const OssProject *project, const Conversion &conversion, int *count)
{
    QVector<Change> changes;
    *count = 0;
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const QList<OssSnBaseNode *> nodes = group->network()->getAllNodes();
        for (OssSnBaseNode *node : nodes) {
            const QVector<OssCustomAttribute> attributes = node->userAttributes();
            for (OssCustomAttribute attribute : attributes) {
                const int converted = convertValue(conversion, &attribute);
                *count += converted;
                if (converted > 0)
                    changes.append({node, attribute});
            }
        }
    }
    return changes;
}

} // namespace

int OssProjectColors::countColors(const OssProject *project, const OssColorSettings &settings)
{
    int count = 0;
    changesOf(project, conversionTo(settings), &count);
    return count;
}

OssResult OssProjectColors::change(OssProject *project, const OssColorSettings &settings,
                                   Values values, int *converted)
{
    if (converted)
        *converted = 0;
    if (settings == project->colors())
        return {};
    OssUndoManager::AutoMacro macro(
        QCoreApplication::translate("OssProjectColors", "Color Settings"));
    // Paint holds values of the space in which it was painted; images say in which theirs are.
    OssResult baked = OssCanvasManager::instance()->bakePaint();
    if (!baked) {
        macro.cancel();
        return baked;
    }
    if (values == Values::Converted) {
        const Conversion conversion = conversionTo(settings);
        const OssEvResult possible = conversion.check();
        if (!possible) {
            macro.cancel();
            return OssResult::failure(QString::fromStdString(possible.error()));
        }
        int count = 0;
        const QVector<Change> changes = changesOf(project, conversion, &count);
        for (const Change &change : changes)
            change.node->setUserAttribute(change.attribute, true); // a lock is none against this
        if (converted)
            *converted = count;
    }
    project->setColors(settings);
    return {};
}
