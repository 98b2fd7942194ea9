#include "Manager/OssSnNodeGraphViewContextLoader.h"

#include "OssCore/Program/OssClassFactoryManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnUINodeGraphViewContext.h"

#include <QXmlStreamReader>

namespace {

/// Reads one description into the context it ends up with.
class Reader
{
public:
    Reader(const QString &description, OssSnBaseNode *node)
        : m_xml(description)
        , m_node(node)
        , m_context(new OssSnNodeGraphViewContext(node, true))
    {
    }

    OssSnNodeGraphViewContext *read();

private:
    bool has(const char *name) const
    {
        return m_xml.attributes().hasAttribute(QLatin1String(name));
    }

    QString text(const char *name) const
    {
        return m_xml.attributes().value(QLatin1String(name)).toString();
    }

    void readContext();
    void chooseContext(const QString &type);
    void readLook();
    void readPorts(const char *element, bool inputs);
    void readPositions(const QString &name, bool input);

    QXmlStreamReader m_xml;
    OssSnBaseNode *m_node;
    OssSnNodeGraphViewContext *m_context; ///< the node's child; null for an unknown class
};

OssSnNodeGraphViewContext *Reader::read()
{
    m_xml.readNextStartElement();
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("Contexts")) {
            while (m_xml.readNextStartElement())
                readContext();
        } else {
            m_xml.skipCurrentElement();
        }
    }
    return m_context;
}

void Reader::readContext()
{
    const QString type = text("Type");
    const bool used = m_xml.name() == QLatin1String("Context")
                      && (type == QLatin1String("NodeGraphView")
                          || type == QLatin1String("UINodeGraphView"));
    if (!used) {
        m_xml.skipCurrentElement();
        return;
    }
    chooseContext(type);
    if (m_context)
        readLook();
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("Inputs"))
            readPorts("Input", true);
        else if (m_xml.name() == QLatin1String("Outputs"))
            readPorts("Output", false);
        else
            m_xml.skipCurrentElement();
    }
}

void Reader::chooseContext(const QString &type)
{
    if (type == QLatin1String("UINodeGraphView") && has("GuiNodeClass")) {
        delete m_context;
        auto *context = new OssSnUINodeGraphViewContext(m_node);
        m_context = context;
        context->setGuiNodeClass(text("GuiNodeClass"));
    } else if (type == QLatin1String("NodeGraphView") && has("Class")) {
        delete m_context;
        m_context = nullptr;
        const QPointer<QObject> made = OssClassFactoryManager::instance()->create(text("Class"),
                                                                                  m_node);
        m_context = qobject_cast<OssSnNodeGraphViewContext *>(made.data());
    }
}

void Reader::readLook()
{
    if (has("ShapeType"))
        m_context->setShapeType(text("ShapeType").toInt());
    if (has("NodeColorTop"))
        m_context->setNodeColorTop(text("NodeColorTop"));
    if (has("NodeColorBottom"))
        m_context->setNodeColorBottom(text("NodeColorBottom"));
    if (has("Pixmap"))
        m_context->setPixmapPath(text("Pixmap"));
    if (has("PixmapOffset")) {
        const QStringList parts = text("PixmapOffset").split(QLatin1Char(','));
        if (parts.size() == 2)
            m_context->setPixmapOffset({parts.at(0).toInt(), parts.at(1).toInt()});
    }
}

void Reader::readPorts(const char *element, bool inputs)
{
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() != QLatin1String(element) || !has("Name")) {
            m_xml.skipCurrentElement();
            continue;
        }
        const QString name = text("Name");
        if (inputs && has("Tags") && m_context) {
            const QStringList tags = text("Tags").split(QLatin1Char(','));
            for (const QString &tag : tags)
                m_context->addInputTag(name, tag);
        }
        readPositions(name, inputs);
    }
}

void Reader::readPositions(const QString &name, bool input)
{
    int originOffset = 0;
    QStringList point;
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() != QLatin1String("Pos")) {
            m_xml.skipCurrentElement();
            continue;
        }
        originOffset = text("OriginOffset").toInt();
        point = m_xml.readElementText(QXmlStreamReader::SkipChildElements).split(QLatin1Char(','));
    }
    if (!m_context || point.size() != 2)
        return;
    const QPair<QPoint, QPoint> position{{originOffset, 0},
                                         {point.at(0).toInt(), point.at(1).toInt()}};
    if (input)
        m_context->setInputNodeInitialPos(name, position);
    else
        m_context->setOutputNodeInitialPos(name, position);
}

} // namespace

QList<OssSnBaseContext *> OssSnNodeGraphViewContextLoader::load(const QString &description,
                                                                OssSnBaseNode *node)
{
    return {Reader(description, node).read()};
}
