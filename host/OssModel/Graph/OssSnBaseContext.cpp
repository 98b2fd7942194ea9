#include "OssModel/Graph/OssSnBaseContext.h"

#include "OssModel/Graph/OssShaderNetworkContextLoader.h"
#include "OssModel/Graph/OssSnBaseNode.h"

OssShaderNetworkContextLoader::OssShaderNetworkContextLoader(QObject *parent)
    : QObject(parent)
{
}

OssShaderNetworkContextLoader::~OssShaderNetworkContextLoader() = default;

OssSnBaseContext::OssSnBaseContext(QObject *parent)
    : OssSerializableObject(parent)
{
}

OssSnBaseContext::~OssSnBaseContext() = default;

OssSnBaseNode *OssSnBaseContext::parentNode() const
{
    return qobject_cast<OssSnBaseNode *>(parent());
}

QVector<OssSnBaseContext::Input> OssSnBaseContext::inputs() const
{
    QVector<Input> result;
    const OssSnBaseNode *node = parentNode();
    if (!node)
        return result;
    result.reserve(node->inputPorts().size());
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        QSet<QString> tags = m_inputTags.value(port.name);
        for (const QString &tag : port.tags)
            tags.insert(tag);
        result.append({port.name, port.preferred, port.setAtLoad, tags});
    }
    return result;
}

QStringList OssSnBaseContext::outputPointNames() const
{
    const OssSnBaseNode *node = parentNode();
    return node ? node->outputPointNames() : QStringList();
}

void OssSnBaseContext::addInputTag(const QString &inputName, const QString &tag)
{
    m_inputTags[inputName].insert(tag);
}

bool OssSnBaseContext::hasInputTag(const QString &inputName, const QString &tag) const
{
    const auto found = m_inputTags.constFind(inputName);
    return found != m_inputTags.cend() && found->contains(tag);
}

bool OssSnBaseContext::onLoadCollection(const QString &name, const QString &type,
                                        const QString &elementType, int count,
                                        const Attributes &attributes)
{
    // These two every context that draws a node reads before it asks here.
    if (name == QLatin1String("m_inputNodeInitialPos")
        || name == QLatin1String("m_outputNodeInitialPos"))
        return true;
    return OssSerializableObject::onLoadCollection(name, type, elementType, count, attributes);
}

OssSnBaseContext *OssSnBaseContext::clone(OssSnBaseNode *node) const
{
    QObject *made = metaObject()->newInstance(Q_ARG(QObject *, static_cast<QObject *>(node)));
    return qobject_cast<OssSnBaseContext *>(made);
}

bool OssSnBaseContext::attributeIsStub(const QString &, bool flag) const
{
    return flag;
}

QString OssSnBaseContext::versionHashSource() const
{
    QStringList names = m_inputTags.keys();
    names.sort();
    QString text;
    for (const QString &name : qAsConst(names)) {
        QStringList tags = m_inputTags.value(name).values();
        tags.sort();
        text += QStringLiteral("InputTags %1 %2\n").arg(name, tags.join(QLatin1Char(',')));
    }
    return text;
}

bool OssSnBaseContext::hasVersionHash() const
{
    return false;
}

bool OssSnBaseContext::versionMatch(const OssSnBaseContext *other) const
{
    return other && versionHashSource() == other->versionHashSource();
}

void OssSnBaseContext::copyGuiStateFrom(OssSnBaseContext *other)
{
    if (other)
        m_inputTags = other->m_inputTags;
}

OssResult OssSnBaseContext::exportNode()
{
    return OssResult::failure(tr("The node cannot be exported by itself"));
}

void OssSnBaseContext::copyGuiNodeStateFrom(OssSnBaseContext *other)
{
    if (!other)
        return;
    const QVector<OssCustomAttribute> attributes = other->userAttributes();
    for (const OssCustomAttribute &attribute : attributes)
        setUserAttribute(attribute, true);
}

void OssSnBaseContext::onUserAttributeChanged(OssCustomAttribute, OssSnBaseNode *) {}

void OssSnBaseContext::onUserAttributeRemoved(OssCustomAttribute, OssSnBaseNode *) {}
