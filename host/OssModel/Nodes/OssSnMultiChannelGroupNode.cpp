#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Nodes/OssLayerRefreshSuspensionManager.h"
#include "OssModel/Nodes/OssLayerShaderModelManager.h"

OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode(std::shared_ptr<const OssSnNodeType> type)
    : OssSnGroupNode(std::move(type))
{
    connect(this, &OssSnBaseNode::inputAdded, this, &OssSnMultiChannelGroupNode::checkValidity);
    connect(this, &OssSnBaseNode::inputListAdded, this, &OssSnMultiChannelGroupNode::checkValidity);
    connect(this, &OssSnBaseNode::inputRemoved, this, &OssSnMultiChannelGroupNode::checkValidity);
    connect(this, &OssSnBaseNode::nodeInputRenamed, this,
            &OssSnMultiChannelGroupNode::checkValidity);
    connect(this, &OssSnBaseNode::outputPointAdded, this,
            &OssSnMultiChannelGroupNode::checkValidity);
    connect(this, &OssSnBaseNode::outputPointRemoved, this,
            &OssSnMultiChannelGroupNode::checkValidity);
    connect(this, &OssSnBaseNode::outputPointRenamed, this,
            &OssSnMultiChannelGroupNode::checkValidity);
    connect(this, &OssSnBaseNode::shaderModelChanged, this,
            &OssSnMultiChannelGroupNode::checkValidity);
    connect(OssLayerRefreshSuspensionManager::instance(),
            &OssLayerRefreshSuspensionManager::resumed, this, [this] {
                if (m_validityWaits)
                    checkValidity();
            });
}

OssSnMultiChannelGroupNode::~OssSnMultiChannelGroupNode()
{
    deleteContexts();
}

const OssLayerShaderModel *OssSnMultiChannelGroupNode::shaderModel() const
{
    return hasShaderModel() ? OssLayerShaderModelManager::instance()->model(m_shaderModelId)
                            : nullptr;
}

void OssSnMultiChannelGroupNode::setShaderModelId(const QString &id)
{
    if (m_shaderModelId == id)
        return;
    const auto apply = [this](const QString &value) {
        m_shaderModelId = value;
        Q_EMIT shaderModelChanged();
    };
    const QString before = m_shaderModelId;
    apply(id);
    OssUndoManager::instance()->record(
        tr("Set Shader Model"), [apply, before] { apply(before); }, [apply, id] { apply(id); },
        this);
}

bool OssSnMultiChannelGroupNode::batchConnectInputNode(const QString &role,
                                                       OssSnMultiChannelGroupNode *source)
{
    const OssLayerShaderModel *model = shaderModel();
    if (!model || (source && source->shaderModel() != model))
        return false;
    const bool over = role == OssLayerStreamUtils::overInputName({});
    const auto portOf = [over](const QString &stream) {
        return over ? OssLayerStreamUtils::overInputName(stream)
                    : OssLayerStreamUtils::baseInputName(stream);
    };
    const QStringList streams = model->inputList();
    for (const QString &stream : streams) {
        if (!hasInput(portOf(stream)) || (source && !source->hasOutputPoint(stream)))
            return false;
    }
    OssUndoManager::AutoMacro macro(tr("Connect Streams of %1").arg(name()));
    for (const QString &stream : streams) {
        if (!setInputNode(portOf(stream), source, source ? stream : QString())) {
            macro.cancel();
            return false;
        }
    }
    return true;
}

// --- streams

QStringList OssSnMultiChannelGroupNode::inputsOf(const QString &stream) const
{
    return {OssLayerStreamUtils::inputName(stream)};
}

QStringList OssSnMultiChannelGroupNode::outputsOf(const QString &stream) const
{
    return {stream};
}

void OssSnMultiChannelGroupNode::checkValidity()
{
    m_validityWaits = OssLayerRefreshSuspensionManager::instance()->isSuspended();
    if (m_validityWaits)
        return;
    bool valid = true;
    QStringList ofStreams;
    const OssLayerShaderModel *model = shaderModel();
    const QStringList streams = model ? model->inputList() : QStringList();
    for (const QString &stream : streams) {
        ofStreams += inputsOf(stream);
        for (const QString &input : inputsOf(stream))
            valid = valid && hasInput(input);
        for (const QString &output : outputsOf(stream))
            valid = valid && hasOutputPoint(output);
    }
    valid = valid && (model || !hasShaderModel());
    const QStringList inputs = inputNames();
    for (const QString &input : inputs)
        setInputShared(input, !streams.isEmpty() && !ofStreams.contains(input));
    if (m_valid == valid)
        return;
    m_valid = valid;
    // Clusters gather streams, and one that lacks a port is none.
    if (valid)
        Q_EMIT updatePortClusters();
    else
        Q_EMIT clearPortClusters();
    setErrorText(valid ? QString()
                       : tr("It does not have the streams of \"%1\"").arg(m_shaderModelId));
    Q_EMIT validityChanged();
}

void OssSnMultiChannelGroupNode::onEndLoad()
{
    OssSnGroupNode::onEndLoad();
    checkValidity();
}

OssSnBaseNode *OssSnMultiChannelGroupNode::createInside(const QString &pathKey, const QString &name,
                                                        const QPointF &place)
{
    OssSnBaseNode *node = groupNetwork()->createNode(pathKey, name);
    if (node && node->viewContext())
        node->viewContext()->setNodePosition(place);
    return node;
}

void OssSnMultiChannelGroupNode::wire(OssSnBaseNode *source, OssSnBaseNode *target,
                                      const QString &input)
{
    if (source && target)
        target->setInputNode(input, source, source->prefferedOutputPoint());
}

void OssSnMultiChannelGroupNode::wireOutput(OssSnBaseNode *source,
                                            const OssLayerShaderModelInput &stream)
{
    OssSnBaseNode *out = createOutput(stream.streamName(), stream.kind());
    if (out)
        wire(source, out, out->inputNames().first());
}

void OssSnMultiChannelGroupNode::configureStream(const OssLayerShaderModelInput &stream)
{
    wireOutput(createInput(OssLayerStreamUtils::inputName(stream.streamName()), stream.kind()),
               stream);
}

QPointF OssSnMultiChannelGroupNode::rowPlace(const OssLayerShaderModelInput &stream) const
{
    constexpr qreal RowHeight = 220.0;
    const OssLayerShaderModel *model = shaderModel();
    const int row = model ? model->inputList().indexOf(stream.streamName()) : 0;
    return {0.0, RowHeight * row};
}

void OssSnMultiChannelGroupNode::onMadeFresh()
{
    if (!hasShaderModel()) {
        const QStringList ids = OssLayerShaderModelManager::instance()->modelIds();
        if (!ids.isEmpty())
            setShaderModelId(ids.first());
    }
    configureStreams();
}

bool OssSnMultiChannelGroupNode::configureStreams()
{
    const OssLayerShaderModel *model = shaderModel();
    if (!model)
        return false;
    const OssUndoManager::AutoMacro macro(tr("Configure %1").arg(name()));
    configureShared();
    for (const OssLayerShaderModelInput &stream : model->inputs())
        configureStream(stream);
    checkValidity();
    Q_EMIT updatePortClusters();
    return true;
}
