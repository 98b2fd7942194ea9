#include "View/MergeColorSpace.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssNodeWalker.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Nodes/OssSnShaderInputNode.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

namespace {

constexpr int ScalarColorSpace = 1;
const QString BlendAttribute = QStringLiteral("BlendColorSpaceEnabled");
const QString MaskInput = QStringLiteral("Mask");

void enableBlending(OssSnBaseNode *merge, bool enable)
{
    if (!merge->lockOf(BlendAttribute).isEmpty())
        return;
    auto value = merge->attribute(BlendAttribute).value<OssUserEnum>();
    value.setCurrentValue(enable ? 1 : 0);
    merge->setAttribute(BlendAttribute, QVariant::fromValue(value));
}

class UpstreamMergeNodesFinder final : public OssShaderNetworkUtils::OssNodeWalkerUpstream
{
public:
    UpstreamMergeNodesFinder()
        : OssNodeWalkerUpstream(true)
    {
    }

    QList<OssSnBaseNode *> merges;

protected:
    void visit(OssSnBaseNode *node) override
    {
        if (OssLayerStreamUtils::isMergeNode(node))
            merges.append(node);
    }

    bool enters(const OssSnBaseNode *node, const QString &input) const override
    {
        return !(OssLayerStreamUtils::isMergeNode(node) && input == MaskInput);
    }
};

/// Looks for what keeps the result below a merge.
class BakePointFinder final : public OssShaderNetworkUtils::OssNodeWalkerDownstream
{
public:
    BakePointFinder()
        : OssNodeWalkerDownstream(true)
    {
    }

    bool found = false;

protected:
    void visit(OssSnBaseNode *node) override
    {
        found = found || MergeColorSpace::holdsByteColor(node);
    }

    bool enters(const OssSnBaseNode *node, const QString &input) const override
    {
        return !(OssLayerStreamUtils::isMergeNode(node) && input == MaskInput);
    }

    bool leaves(const OssSnBaseNode *node, const QString &output) const override
    {
        return output == node->prefferedOutputPoint();
    }
};

/// "Yes" or "No" of the user; what he wants to be asked no more is kept in the preference.
bool askWhetherToUpdate(const OssSnBaseNode *endPoint)
{
    const QString text =
        OssShaderNetworkView::tr(
            "There are Merge nodes upstream of %1 which is set to represent 8bit (byte) color "
            "paint data.\nMerge nodes have an attribute named 'Use Blending Colorspace'. When this "
            "is set to 'Disable' for an 8-bit (byte) color paint channel, precision issues could "
            "occur and result in visual banding artefacts in your paint.\nWould you like to set "
            "the attribute 'Use Blending Colorspace' to 'Enable' for those Merge nodes?")
            .arg(endPoint->name());
    bool never = false;
    const auto answer = OssMessageBox::question(
        nullptr, OssShaderNetworkView::tr("Update 'Blending Colorspace' of Merge Nodes"), text,
        QMessageBox::Yes | QMessageBox::No, OssShaderNetworkView::tr("Don't show again"), &never);
    const bool yes = answer == QMessageBox::Yes;
    if (never)
        OssSnNodeGraphViewContextManager::instance()
            ->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(yes ? QStringLiteral("Change")
                                                                  : QStringLiteral("Leave"));
    return yes;
}

} // namespace

bool MergeColorSpace::holdsByteColor(OssSnBaseNode *node)
{
    if (const auto *input = qobject_cast<OssSnShaderInputNode *>(node))
        return input->colorSpace() != ScalarColorSpace
               && input->imageSetDepth() == OssChannel::UnsignedByte;
    const OssSnImageSetNodeBase *images = OssShaderNetworkUtils::asTrueImageSetNode(node);
    if (!images || images->imageSet())
        return images && images->imageSet()->isByteColor();
    // It gets its images with the first bake.
    const OssSnBakePointNode *bakePoint = OssShaderNetworkUtils::asTrueBakePointNode(node);
    if (!bakePoint || !bakePoint->choosesDepth())
        return false;
    OssImageSet settings{QString()};
    bakePoint->applySettings(&settings);
    return settings.isByteColor();
}

bool MergeColorSpace::isOff(const OssSnBaseNode *node)
{
    return node->exists(BlendAttribute) && node->lockOf(BlendAttribute).isEmpty()
           && node->attribute(BlendAttribute).value<OssUserEnum>().currentValue() == 0;
}

QSet<OssSnBaseNode *> MergeColorSpace::mergesAbove(OssSnBaseNode *node)
{
    UpstreamMergeNodesFinder finder;
    finder.walk(node);
    return {finder.merges.cbegin(), finder.merges.cend()};
}

void MergeColorSpace::setBlendingColorspaceOnMergeNodeCreation(OssSnBaseNode *merge)
{
    BakePointFinder finder;
    finder.walk(merge);
    if (merge->exists(BlendAttribute) && isOff(merge) == finder.found)
        enableBlending(merge, finder.found);
}

void MergeColorSpace::update(OssSnBaseNode *endPoint, const QSet<OssSnBaseNode *> &known)
{
    const QString preference = OssSnNodeGraphViewContextManager::instance()
                                   ->autoUpdateUpstreamMergeNodeColorspaceEnabled();
    if (!endPoint || preference == QLatin1String("Leave") || !holdsByteColor(endPoint))
        return;
    UpstreamMergeNodesFinder finder;
    finder.walk(endPoint);
    QVector<QPointer<OssSnBaseNode>> disabled; // they may go while the user is asked
    for (OssSnBaseNode *merge : qAsConst(finder.merges)) {
        if (isOff(merge) && !known.contains(merge))
            disabled.append(merge);
    }
    if (disabled.isEmpty())
        return;
    if (preference == QLatin1String("Prompt")
        && (!OssApplication::popupsAllowed() || !askWhetherToUpdate(endPoint)))
        return;
    const OssUndoManager::AutoMacro macro(OssShaderNetworkView::tr("Use Blending Colorspace"));
    for (const auto &merge : qAsConst(disabled)) {
        if (merge)
            enableBlending(merge, true);
    }
}

void OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(
    OssSnBaseNode *EndPointNode)
{
    MergeColorSpace::update(EndPointNode);
}
