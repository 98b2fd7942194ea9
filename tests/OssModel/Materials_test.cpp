#include "../support/ModelFixture.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Export/OssExportMaterials.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/Types/OssSnTags.h"

#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>

namespace {

const QString Material = QStringLiteral("Material");
constexpr int Resolution = 48;

/// Materials that the program has ready, and layers of materials.
class Materials : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
        if (keys().isEmpty()) {
            const QStringList faults = networks->loadNodeTypes(
                OssResourceInfo::instance()->materialPath());
            ASSERT_TRUE(faults.isEmpty()) << qPrintable(faults.join(QLatin1Char('\n')));
        }
        // What is worn is worn at edges.
        m_project->shadingGroups().first()->geoEntity()->setGeometry(QStringLiteral("cube"));
    }

    static QStringList keys()
    {
        return OssShaderNetworkManager::instance()->nodePathKeys().filter(
            QRegularExpression(QStringLiteral("^Materials/")));
    }

    static const OssSnBaseNode *shaderOf(const OssSnBaseNode *material)
    {
        return OssSnProducer::of(material, material->prefferedOutputPoint()).node;
    }

    /// The pixels of a shader's channel; none, and a failure, where it cannot be computed.
    QByteArray channel(const OssSnBaseNode *shader, const QString &name)
    {
        OssEvaluationService::BakeJob job;
        job.node = shader;
        job.outputPoint = name;
        job.entity = m_network->geoEntity();
        job.patches = {1001};
        job.resolution = Resolution;
        const QString path = m_folder.filePath(QStringLiteral("channel.png"));
        const OssResult baked = OssEvaluationService::instance()->bake(job, path);
        EXPECT_TRUE(baked) << qPrintable(shader->path() + QLatin1Char(' ') + name + baked.error());
        const QImage image(path);
        EXPECT_EQ(image.width(), Resolution);
        return {reinterpret_cast<const char *>(image.constBits()), int(image.sizeInBytes())};
    }

    static QStringList wiredInputs(const OssSnBaseNode *shader)
    {
        QStringList wired;
        for (const OssSnBaseNode::InputPort &port : shader->inputPorts()) {
            if (port.source)
                wired.append(port.name);
        }
        return wired;
    }

    QTemporaryDir m_folder;
};

/// Far from the present one, within the knob's range.
QVariant farValue(const OssCustomAttribute &knob)
{
    if (knob.value().userType() == qMetaTypeId<OssColor>())
        return QVariant::fromValue(OssColor(0.1, 0.6, 0.9, 1.0));
    const double low = knob.definition().minimum.toDouble();
    const double high = knob.definition().maximum.toDouble();
    const double other = knob.value().toDouble() > (low + high) / 2 ? low : high;
    return OssAttributeKind::like(knob.value(), other);
}

bool hasWholeLinks(const OssSnGroupNode *group, const QString &knob)
{
    return !OssLinkedCustomAttributeManager::instance()->links(group, knob).isEmpty()
           && group->brokenLinkCount(knob) == 0;
}

} // namespace

TEST_F(Materials, saySomethingAndHaveAFewKnobsThatDo)
{
    EXPECT_GE(keys().size(), 24);
    for (const QString &key : keys()) {
        const auto type = OssShaderNetworkManager::instance()->nodeType(key);
        EXPECT_TRUE(type->description.endsWith(QLatin1Char('.'))) << qPrintable(key);
        EXPECT_GE(type->aliases.size(), 3) << qPrintable(key);
        EXPECT_FALSE(type->content.contains(QLatin1String("<nodeType"))) << qPrintable(key);
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode(key));
        ASSERT_NE(group, nullptr) << qPrintable(key);
        int knobs = 0;
        for (const OssCustomAttribute &knob : group->userAttributes()) {
            knobs += knob.definition().isKnob ? 1 : 0;
            EXPECT_GT(knob.definition().toolTip.size(), 5) << qPrintable(key + knob.name());
            EXPECT_TRUE(knob.isDefault()) << qPrintable(key + knob.name());
            EXPECT_TRUE(hasWholeLinks(group, knob.name())) << qPrintable(key + knob.name());
        }
        EXPECT_GE(knobs, 4) << qPrintable(key);
        EXPECT_LE(knobs, 10) << qPrintable(key);
        for (const OssSnBaseNode *node : group->groupNetwork()->nodes()) {
            const bool isFree = node->hasTag(OssSnTags::output())
                                || !node->nodeType()->kernel.size();
            EXPECT_TRUE(isFree || node->container()) << qPrintable(node->path());
        }
        EXPECT_EQ(group->outputPointNames().first(), Material);
    }
}

TEST_F(Materials, areComputedAndEveryKnobChangesThem)
{
    for (const QString &key : keys()) {
        OssSnBaseNode *group = m_network->createNode(key);
        const OssSnBaseNode *shader = shaderOf(group);
        ASSERT_NE(shader, nullptr) << qPrintable(key);
        const QStringList channels = wiredInputs(shader);
        for (const char *needed : {"Base Color", "Roughness", "Normal", "Displacement"})
            EXPECT_TRUE(channels.contains(QLatin1String(needed))) << qPrintable(key) << needed;
        const bool isMetal = channels.contains(QStringLiteral("Metallic"))
                             || shader->attribute(QStringLiteral("Metallic")).toDouble() > 0;
        EXPECT_EQ(isMetal,
                  key.contains(QLatin1String("/Metal/")) || key.endsWith(QLatin1String("Paint")));
        QMap<QString, QByteArray> before;
        for (const QString &name : channels)
            before[name] = channel(shader, name);
        EXPECT_TRUE(group->errorText().isEmpty()) << qPrintable(group->errorText());
        for (const OssCustomAttribute &knob : group->userAttributes()) {
            ASSERT_TRUE(group->setAttribute(knob.name(), farValue(knob)));
            const bool changes = std::any_of(
                channels.begin(), channels.end(),
                [&](const QString &name) { return channel(shader, name) != before[name]; });
            EXPECT_TRUE(changes) << qPrintable(key) << " " << qPrintable(knob.name());
            group->setAttribute(knob.name(), knob.value());
        }
        m_network->removeNodes({group});
    }
}

TEST_F(Materials, areSplitIntoChannelsAndMergedIntoOne)
{
    OssSnBaseNode *low = add("Shaders/Standard Surface", "Low");
    OssSnBaseNode *high = add("Shaders/Standard Surface", "High");
    low->setAttribute(QStringLiteral("Roughness"), 0.25);
    high->setAttribute(QStringLiteral("Roughness"), 0.75);
    OssSnBaseNode *split = add("Channel/Split Material");
    ASSERT_TRUE(wire(low, split, "Material"));
    const OssSnProducer rough = OssSnProducer::of(split, QStringLiteral("Roughness"));
    EXPECT_EQ(rough.node, low);
    EXPECT_EQ(rough.outputPoint, QStringLiteral("Roughness"));
    OssSnBaseNode *color = add("Procedural/Color");
    split->setInputNode(Material, color, QStringLiteral("Output"));
    EXPECT_EQ(OssSnProducer::of(split, QStringLiteral("Roughness")).node, nullptr) << "no material";
    m_network->removeNodes({split});

    OssSnBaseNode *merge = add("Layer/Material Merge");
    ASSERT_TRUE(wire(low, merge, "Base"));
    ASSERT_TRUE(wire(high, merge, "Over"));
    merge->setAttribute(QStringLiteral("By Height"), 0.0);
    const OssSnBaseNode *merged = shaderOf(merge);
    ASSERT_NE(merged, nullptr);
    const QString name = QStringLiteral("Roughness");
    EXPECT_EQ(channel(merged, name), channel(high, name));
    merge->setAttribute(QStringLiteral("Amount"), 0.0);
    EXPECT_EQ(channel(merged, name), channel(low, name));
    const QVector<OssExportMaterial> own = OssExportMaterial::of(m_project);
    ASSERT_EQ(own.size(), 1) << "those it is made of are its parts";
    EXPECT_EQ(own.first().node, merged);
}
