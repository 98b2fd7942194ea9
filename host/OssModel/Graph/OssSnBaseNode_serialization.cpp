#include "OssModel/Graph/OssSnBaseNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssValueText.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseContext.h"

#include <algorithm>
#include <utility>

QString OssSnBaseNode::serializedType() const
{
    return m_savedClass.isEmpty() ? OssSerializableObject::serializedType() : m_savedClass;
}

OssSnBaseNode::Attributes OssSnBaseNode::identityAttributes() const
{
    Attributes attributes;
    attributes.insert(QStringLiteral("key"), m_pathKey);
    const QString definition = definitionId();
    if (!definition.isEmpty())
        attributes.insert(QStringLiteral("definition"), definition);
    // What a published group began as is not in its type's description here.
    const bool isPublished = m_type && m_type->isPublishedGroup();
    const bool typical = m_type && !isPublished && m_versionUUID == m_type->versionUUID
                         && m_versionHashCreated.isEmpty() && m_versionDate == m_type->date;
    if (!typical) {
        attributes.insert(QStringLiteral("version"), m_versionUUID);
        attributes.insert(QStringLiteral("versionHash"),
                          isPublished ? versionHashCreated() : m_versionHashCreated);
        attributes.insert(QStringLiteral("versionDate"), m_versionDate);
    }
    if (!m_tags.isEmpty()) {
        QStringList own = m_tags.values();
        own.sort();
        attributes.insert(QStringLiteral("tags"), own.join(QLatin1Char(' ')));
    }
    if (const OssSnBaseNode *holder = container())
        attributes.insert(QStringLiteral("container"), holder->name());
    return attributes;
}

void OssSnBaseNode::loadIdentity(const Attributes &attributes)
{
    m_name = attributes.value(QStringLiteral("name"));
    m_pathKey = attributes.value(QStringLiteral("key"));
    if (attributes.contains(QStringLiteral("version"))) {
        m_versionUUID = attributes.value(QStringLiteral("version"));
        m_versionHashCreated = attributes.value(QStringLiteral("versionHash"));
        m_versionDate = attributes.value(QStringLiteral("versionDate"));
    }
    const QStringList own = attributes.value(QStringLiteral("tags"))
                                .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &tag : own)
        m_tags.insert(tag);
    m_container.savedName = attributes.value(QStringLiteral("container"));
    if (m_type)
        return;
    m_foreignId = attributes.value(QStringLiteral("definition"));
    m_savedClass = attributes.value(QStringLiteral("type"));
}

bool OssSnBaseNode::attributeNeedsSaving(const OssCustomAttribute &attribute) const
{
    // The type gives its attributes their defaults; what a user or a context added is all there is.
    const bool ofType = m_type
                        && std::any_of(m_type->attributes.cbegin(), m_type->attributes.cend(),
                                       [&](const OssCustomAttribute &typical) {
                                           return typical.name() == attribute.name();
                                       });
    return !ofType || !attribute.isDefault();
}

bool OssSnBaseNode::portsDifferFromType() const
{
    if (!m_type)
        return m_portsFromFile;
    if (m_type->inputs.size() != m_inputs.size() || m_type->outputs.size() != m_outputs.size())
        return true;
    const auto sameInput = [](const OssSnNodeType::Port &a, const InputPort &b) {
        return a.name == b.name && a.kind == b.kind && a.label == b.label
               && a.preferred == b.preferred;
    };
    const auto sameOutput = [](const OssSnNodeType::Port &a, const OutputPoint &b) {
        return a.name == b.name && a.kind == b.kind && a.label == b.label;
    };
    return !std::equal(m_type->inputs.cbegin(), m_type->inputs.cend(), m_inputs.cbegin(), sameInput)
           || !std::equal(m_type->outputs.cbegin(), m_type->outputs.cend(), m_outputs.cbegin(),
                          sameOutput);
}

void OssSnBaseNode::savePorts(OssSerializer &serializer) const
{
    const auto write = [&serializer](const QString &element, const QString &name,
                                     const QString &label, OssSnDataKind kind, bool preferred) {
        Attributes attributes;
        attributes.insert(QStringLiteral("name"), name);
        attributes.insert(QStringLiteral("kind"), QString::number(int(kind)));
        if (!label.isEmpty())
            attributes.insert(QStringLiteral("label"), label);
        if (preferred)
            attributes.insert(QStringLiteral("preferred"), QStringLiteral("true"));
        serializer.writeElement(element, attributes);
    };
    for (const InputPort &port : m_inputs)
        write(QStringLiteral("inputPort"), port.name, port.label, port.kind, port.preferred);
    for (const OutputPoint &point : m_outputs)
        write(QStringLiteral("outputPort"), point.name, point.label, point.kind, false);
}

void OssSnBaseNode::loadPort(bool input, const Attributes &attributes)
{
    // A file that lists ports lists all of them.
    if (!m_portsFromFile) {
        m_inputs.clear();
        m_outputs.clear();
        m_portsFromFile = true;
    }
    const QString name = attributes.value(QStringLiteral("name"));
    const QString label = attributes.value(QStringLiteral("label"));
    const auto kind = OssSnDataKind(
        std::clamp(attributes.value(QStringLiteral("kind")).toInt(), 0, 4));
    if (name.isEmpty() || (input ? hasInput(name) : hasOutputPoint(name)))
        return;
    if (!input) {
        m_outputs.append({name, label, kind});
        return;
    }
    InputPort port;
    port.name = name;
    port.label = label;
    port.kind = kind;
    port.preferred = attributes.value(QStringLiteral("preferred")) == QLatin1String("true");
    m_inputs.append(port);
}

bool OssSnBaseNode::saveObjects(OssSerializer &serializer)
{
    if (portsDifferFromType())
        savePorts(serializer);
    for (const InputPort &port : m_inputs) {
        if (!port.source && port.enabled)
            continue;
        Attributes attributes;
        attributes.insert(QStringLiteral("name"), port.name);
        if (!port.enabled)
            attributes.insert(QStringLiteral("enabled"), QStringLiteral("false"));
        if (port.source) {
            const bool near = port.source->network() == m_network;
            attributes.insert(QStringLiteral("node"),
                              near ? port.source->name() : port.source->path());
            attributes.insert(QStringLiteral("point"), port.sourceOutput);
        }
        serializer.writeElement(QStringLiteral("input"), attributes);
    }
    const QStringList order = userAttributeNames();
    if (order != typicalAttributeOrder())
        serializer.writeElement(QStringLiteral("attributeOrder"),
                                {{QStringLiteral("names"), OssValueText::toText(order)}});
    bool saved = true;
    for (const NamedContext &named : qAsConst(m_contexts))
        saved = named.context->save(serializer, named.name, {}) && saved;
    return saved;
}

OssSerializableObject *OssSnBaseNode::onLoadSubObject(OssDeserializer &deserializer,
                                                      const QString &name, const QString &type)
{
    OssSnBaseContext *saved = context(name);
    if (saved && !m_type && m_pathKey.isEmpty()
        && type != QLatin1String(saved->metaObject()->className())) {
        // A backdrop from before it had a type; its context gives it one as soon as it is made.
        deleteContexts();
        createContexts(QStringLiteral("<NodeType><Contexts><Context Type=\"UINodeGraphView\" "
                                      "GuiNodeClass=\"Backdrop\"/></Contexts></NodeType>"));
        saved = context(name);
        loadForeign();
    }
    if (saved)
        return saved;
    return OssSerializableObject::onLoadSubObject(deserializer, name, type);
}

bool OssSnBaseNode::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                  const Attributes &attributes)
{
    if (name == QLatin1String("inputPort") || name == QLatin1String("outputPort")) {
        loadPort(name == QLatin1String("inputPort"), attributes);
        return true;
    }
    if (name == QLatin1String("attributeOrder")) {
        m_loadedOrder = OssValueText::fromText(attributes.value(QStringLiteral("names")),
                                               QMetaType::QStringList)
                            .toStringList();
        return true;
    }
    if (name != QLatin1String("input"))
        return OssSerializableObject::onLoadElement(deserializer, name, attributes);
    const QString input = attributes.value(QStringLiteral("name"));
    if (!m_type && !hasInput(input)) {
        InputPort port;
        port.name = input;
        m_inputs.append(port);
    }
    const int index = inputIndex(input);
    if (index >= 0 && attributes.value(QStringLiteral("enabled")) == QLatin1String("false"))
        m_inputs[index].enabled = false;
    const QString source = attributes.value(QStringLiteral("node"));
    if (!source.isEmpty())
        m_pending.append({input, source, attributes.value(QStringLiteral("point"))});
    return true;
}

void OssSnBaseNode::onEndLoad()
{
    if (!m_loadedOrder.isEmpty())
        orderUserAttributes(m_loadedOrder);
    m_loadedOrder.clear();
}

void OssSnBaseNode::addDelayedKnob(const DelayedKnob &knob)
{
    m_delayedKnobs.append(knob);
}

QVector<OssSnBaseNode::DelayedKnob> OssSnBaseNode::takeDelayedKnobs()
{
    return std::exchange(m_delayedKnobs, {});
}

QVector<OssSnBaseNode::PendingConnection> OssSnBaseNode::takePendingConnections()
{
    QVector<PendingConnection> pending;
    pending.swap(m_pending);
    return pending;
}
