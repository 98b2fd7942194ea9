#include "OssModel/Objects/OssImageSet.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Objects/OssChannel.h"

#include <algorithm>
#include <array>

namespace {

/// In the order of OssEvDepth.
constexpr std::array<int, 4> Codes{OssChannel::UnsignedByte, OssImageSet::HalfDepth,
                                   OssImageSet::FloatDepth, OssImageSet::ShortDepth};
const QString PixelsElement = QStringLiteral("pixels");
const QString PaintElement = QStringLiteral("unbakedPaint");
const QString NameAttribute = QStringLiteral("name");

} // namespace

OssImageSet::OssImageSet(const QString &name, QObject *parent)
    : OssSerializableObject(parent)
    , m_name(name)
    , m_depth(OssChannel::UnsignedByte)
{
}

OssImageSet::~OssImageSet() = default;

OssChannel *OssImageSet::channel() const
{
    return qobject_cast<OssChannel *>(m_channel.data());
}

void OssImageSet::setChannel(OssChannel *channel)
{
    m_channel = channel;
}

int OssImageSet::codeOf(OssEvDepth depth)
{
    return Codes[std::size_t(depth)];
}

OssEvDepth OssImageSet::engineDepth() const
{
    const auto *found = std::find(Codes.cbegin(), Codes.cend(), m_depth);
    return found == Codes.cend() ? OssEvDepth::Half
                                 : OssEvDepth(std::distance(Codes.cbegin(), found));
}

QString OssImageSet::form() const
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(m_depth)
        .arg(m_bleed)
        .arg(m_scalar ? QStringLiteral("scalar") : QStringLiteral("color"), m_fileSpace)
        .trimmed();
}

void OssImageSet::setResolution(int resolution)
{
    constexpr int Largest = 1 << 20;
    if (resolution > 0 && resolution <= Largest)
        m_resolution = resolution;
    else
        OssDebug("OssImageSet", __LINE__, "[ !! ] %d is no resolution for \"%s\"", resolution,
                 qPrintable(m_name));
}

bool OssImageSet::isByteColor() const
{
    const OssChannel *own = channel();
    return !m_scalar && (own ? own->type() : m_depth) == OssChannel::UnsignedByte;
}

OssImageSet *OssImageSet::duplicate(const QString &name) const
{
    auto *copy = new OssImageSet(name);
    copy->m_channel = m_channel;
    copy->copySettings(*this);
    copy->m_resolution = m_resolution;
    copy->m_pixels = m_pixels;
    return copy;
}

void OssImageSet::copySettings(const OssImageSet &other)
{
    m_depth = other.m_depth;
    m_bleed = other.m_bleed;
    m_fileSpace = other.m_fileSpace;
    m_scalar = other.m_scalar;
    m_fillColor = other.m_fillColor;
}

void OssImageSet::setPixels(const QMap<int, QString> &pixels)
{
    if (m_pixels == pixels)
        return;
    const auto apply = [this](const QMap<int, QString> &value) {
        m_pixels = value;
        Q_EMIT pixelsChanged();
    };
    const QMap<int, QString> before = m_pixels;
    apply(pixels);
    OssUndoManager::instance()->record(
        tr("Write Pixels of %1").arg(m_name), [apply, before] { apply(before); },
        [apply, pixels] { apply(pixels); });
}

// --- files

bool OssImageSet::saveObjects(OssSerializer &serializer)
{
    if (!serializer.isCanonical() && !m_unbakedPaint.isEmpty())
        serializer.writeElement(PaintElement, {{NameAttribute, m_unbakedPaint}});
    for (auto at = m_pixels.cbegin(); at != m_pixels.cend(); ++at)
        serializer.writeElement(PixelsElement,
                                {{QStringLiteral("patch"), QString::number(at.key())},
                                 {QStringLiteral("file"), at.value()}});
    return OssSerializableObject::saveObjects(serializer);
}

bool OssImageSet::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                const Attributes &attributes)
{
    if (name == PaintElement) {
        m_unbakedPaint = attributes.value(NameAttribute);
        return true;
    }
    if (name != PixelsElement)
        return OssSerializableObject::onLoadElement(deserializer, name, attributes);
    bool isNumber = false;
    const int patch = attributes.value(QStringLiteral("patch")).toInt(&isNumber);
    const QString file = attributes.value(QStringLiteral("file"));
    if (!isNumber || !OssPixelStore::isName(file)) {
        deserializer.raiseError(tr("\"%1\" cannot be the pixels of patch %2")
                                    .arg(file, attributes.value(QStringLiteral("patch"))));
        return false;
    }
    m_pixels.insert(patch, file);
    return true;
}
