#include "OssCore/Documents/OssSerializableObject.h"

#include "OssCore/Documents/OssObjectReferenceManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssValueText.h"

#include <QBuffer>
#include <QMetaProperty>
#include <QPointer>
#include <QSet>

OssSerializableObject::OssSerializableObject(QObject *parent)
    : QObject(parent)
{
    OssAttributeKind::registerTypes();
    // Made before this object, so that it outlives even objects with static storage.
    OssObjectReferenceManager::instance();
}

OssSerializableObject::~OssSerializableObject()
{
    if (!m_uuid.isNull())
        OssObjectReferenceManager::instance()->remove(m_uuid, this);
}

QString OssSerializableObject::uuidString() const
{
    if (m_uuid.isNull()) {
        m_uuid = QUuid::createUuid();
        OssObjectReferenceManager::instance()->add(m_uuid,
                                                   const_cast<OssSerializableObject *>(this));
    }
    return m_uuid.toString();
}

bool OssSerializableObject::setUuidString(const QString &uuid)
{
    const QUuid read = QUuid::fromString(uuid);
    if (read.isNull())
        return false;
    if (read == m_uuid)
        return true;
    OssObjectReferenceManager *manager = OssObjectReferenceManager::instance();
    if (!m_uuid.isNull())
        manager->remove(m_uuid, this);
    m_uuid = read;
    manager->add(read, this);
    return true;
}

void OssSerializableObject::setSelected(bool selected)
{
    if (m_selected == selected)
        return;
    m_selected = selected;
    Q_EMIT selectedChanged(selected);
}

// --- user attributes

int OssSerializableObject::userAttributeIndex(const QString &name) const
{
    for (int i = 0; i < m_userAttributes.size(); ++i) {
        if (m_userAttributes.at(i).name() == name)
            return i;
    }
    return -1;
}

bool OssSerializableObject::exists(const QString &name) const
{
    return userAttributeIndex(name) >= 0;
}

OssCustomAttribute OssSerializableObject::userAttribute(const QString &name) const
{
    const int index = userAttributeIndex(name);
    return index < 0 ? OssCustomAttribute() : m_userAttributes.at(index);
}

QStringList OssSerializableObject::userAttributeNames() const
{
    QStringList names;
    names.reserve(m_userAttributes.size());
    for (const OssCustomAttribute &attribute : m_userAttributes)
        names.append(attribute.name());
    return names;
}

void OssSerializableObject::initUserAttributes(const QVector<OssCustomAttribute> &attributes)
{
    m_userAttributes = attributes;
}

bool OssSerializableObject::orderUserAttributes(const QStringList &names)
{
    QVector<OssCustomAttribute> ordered;
    for (const QString &name : names) {
        const OssCustomAttribute attribute = userAttribute(name);
        if (attribute.isValid())
            ordered.append(attribute);
    }
    if (QSet<QString>(names.cbegin(), names.cend()).size() != m_userAttributes.size()
        || ordered.size() != m_userAttributes.size())
        return false;
    m_userAttributes = ordered;
    return true;
}

bool OssSerializableObject::renameUserAttribute(const QString &oldName, const QString &newName)
{
    const int index = userAttributeIndex(oldName);
    if (index < 0 || newName.isEmpty() || exists(newName))
        return false;
    m_userAttributes[index].editDefinition().name = newName;
    return true;
}

QString OssSerializableObject::stepTitle(const QString &what,
                                         const OssCustomAttribute &attribute) const
{
    const QString own = nameInSteps();
    return own.isEmpty() ? what.arg(attribute.prettyName())
                         : tr("%1 of %2").arg(what.arg(attribute.prettyName()), own);
}

void OssSerializableObject::setUserAttribute(const OssCustomAttribute &attribute, bool notify)
{
    if (!attribute.isValid())
        return;
    const int index = userAttributeIndex(attribute.name());
    const OssCustomAttribute before = index < 0 ? OssCustomAttribute() : m_userAttributes.at(index);
    if (index >= 0 && before == attribute)
        return;
    applyUserAttribute(attribute, index, notify);
    OssUndoManager *undo = OssUndoManager::instance();
    if (!undo->isRecording())
        return;
    const QPointer<OssSerializableObject> self(this);
    undo->addUndo(std::make_unique<OssFunctionUndo>(
        stepTitle(tr("Change %1"), attribute),
        [self, before, name = attribute.name()] {
            if (!self)
                return;
            if (before.isValid())
                self->applyUserAttribute(before, self->userAttributeIndex(name), true);
            else
                self->dropUserAttribute(self->userAttributeIndex(name));
        },
        [self, attribute] {
            if (self)
                self->applyUserAttribute(attribute, self->userAttributeIndex(attribute.name()),
                                         true);
        },
        this));
}

bool OssSerializableObject::removeUserAttribute(const QString &name)
{
    const int index = userAttributeIndex(name);
    if (index < 0)
        return false;
    const OssCustomAttribute removed = m_userAttributes.at(index);
    dropUserAttribute(index);
    const QPointer<OssSerializableObject> self(this);
    OssUndoManager::instance()->addUndo(std::make_unique<OssFunctionUndo>(
        stepTitle(tr("Remove %1"), removed),
        [self, removed, index] {
            if (!self)
                return;
            self->m_userAttributes.insert(qMin(index, self->m_userAttributes.size()), removed);
            self->onUserAttributeSet(removed, true);
            Q_EMIT self->userAttributeChanged(removed.name());
        },
        [self, name] {
            if (self)
                self->dropUserAttribute(self->userAttributeIndex(name));
        },
        this));
    return true;
}

void OssSerializableObject::applyUserAttribute(const OssCustomAttribute &attribute, int index,
                                               bool notify)
{
    if (index < 0)
        m_userAttributes.append(attribute);
    else
        m_userAttributes[index] = attribute;
    if (!notify)
        return;
    onUserAttributeSet(attribute, index < 0);
    Q_EMIT userAttributeChanged(attribute.name());
}

void OssSerializableObject::dropUserAttribute(int index)
{
    if (index < 0 || index >= m_userAttributes.size())
        return;
    const OssCustomAttribute gone = m_userAttributes.takeAt(index);
    onUserAttributeGone(gone);
}

void OssSerializableObject::onUserAttributeSet(const OssCustomAttribute &, bool) {}

void OssSerializableObject::onUserAttributeGone(const OssCustomAttribute &) {}

bool OssSerializableObject::attributeNeedsSaving(const OssCustomAttribute &) const
{
    return true;
}

// --- saving

QString OssSerializableObject::serializedType() const
{
    return QString::fromLatin1(metaObject()->className());
}

bool OssSerializableObject::save(OssSerializer &serializer, const QString &name,
                                 const Attributes &attributes)
{
    if (serializer.putOff(this, name, attributes))
        return true;
    Attributes own = attributes;
    if (!m_uuid.isNull() && !serializer.isCanonical())
        own.insert(QStringLiteral("uuid"), m_uuid.toString());
    serializer.beginObject(name, serializedType(), own);
    saveProperties(serializer);
    saveUserAttributes(serializer);
    const bool saved = saveObjects(serializer);
    for (const QString &foreign : m_foreign)
        serializer.writeRaw(foreign);
    serializer.endObject();
    return saved && !serializer.failed();
}

void OssSerializableObject::saveProperties(OssSerializer &serializer) const
{
    Attributes properties = m_foreignProperties;
    const QMetaObject *meta = metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (property.isStored(this) && property.isWritable())
            properties.insert(QString::fromLatin1(property.name()),
                              OssValueText::toText(property.read(this)));
    }
    if (!properties.isEmpty())
        serializer.writeElement(QStringLiteral("properties"), properties);
}

namespace {

/// What no type tells of an attribute that a user made.
void describeKnob(const OssCustomAttribute &knob, OssSerializableObject::Attributes *attributes)
{
    const OssCustomAttribute::Definition &definition = knob.definition();
    const auto put = [attributes](const char *key, const QVariant &value) {
        const QString text = OssValueText::toText(value);
        if (!text.isEmpty())
            attributes->insert(QLatin1String(key), text);
    };
    attributes->insert(QStringLiteral("knob"), QStringLiteral("true"));
    attributes->insert(QStringLiteral("prettyName"), knob.prettyName());
    attributes->insert(QStringLiteral("group"), knob.group());
    put("default", definition.defaultValue);
    put("minimum", definition.minimum);
    put("maximum", definition.maximum);
    put("softMinimum", definition.softMinimum);
    put("softMaximum", definition.softMaximum);
    put("toolTip", definition.toolTip);
    put("editor", definition.editor);
    put("choices", OssAttributeKind::choices(knob.value()));
}

} // namespace

void OssSerializableObject::saveUserAttributes(OssSerializer &serializer) const
{
    for (const OssCustomAttribute &attribute : m_userAttributes) {
        if (!attributeNeedsSaving(attribute))
            continue;
        Attributes attributes;
        attributes.insert(QStringLiteral("name"), attribute.name());
        attributes.insert(QStringLiteral("type"),
                          QString::fromLatin1(attribute.value().typeName()));
        attributes.insert(QStringLiteral("value"), OssValueText::toText(attribute.value()));
        if (attribute.definition().isKnob)
            describeKnob(attribute, &attributes);
        serializer.writeElement(QStringLiteral("attribute"), attributes);
    }
}

bool OssSerializableObject::saveObjects(OssSerializer &)
{
    return true;
}

// --- loading

namespace {

/// A collection that nobody knew, as it stood in the file.
QString collectionText(const OssSerializableObject::Attributes &head,
                       const OssSerializableObject::Attributes &entries,
                       const QStringList &children)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer, false);
    serializer.beginCollection(
        head.value(QStringLiteral("name")), head.value(QStringLiteral("count")).toInt(),
        head.value(QStringLiteral("type")), head.value(QStringLiteral("elementType")), entries);
    for (const QString &child : children)
        serializer.writeRaw(child);
    serializer.endCollection();
    return QString::fromUtf8(buffer.data());
}

} // namespace

bool OssSerializableObject::load(OssDeserializer &deserializer)
{
    const QString uuid = deserializer.attribute(QStringLiteral("uuid"));
    if (!uuid.isEmpty() && (!deserializer.claimId(uuid) || !setUuidString(uuid))) {
        deserializer.raiseError(tr("the id %1 is not valid or stands there twice").arg(uuid));
        return false;
    }
    while (deserializer.nextElement()) {
        if (!loadChild(deserializer))
            return false;
    }
    if (!deserializer.failed())
        onEndLoad();
    return !deserializer.failed();
}

void OssSerializableObject::loadForeign()
{
    const QString root = QStringLiteral("foreign");
    QByteArray text = QStringLiteral("<%1>%2</%1>").arg(root, m_foreign.join(QString())).toUtf8();
    m_foreign.clear();
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer deserializer(&buffer, root);
    Attributes none;
    if (!deserializer.beginDocument(root, &none))
        return;
    while (deserializer.nextElement())
        loadChild(deserializer);
}

bool OssSerializableObject::loadChild(OssDeserializer &deserializer)
{
    const QString element = deserializer.elementName();
    const Attributes attributes = deserializer.attributes();
    if (element == QLatin1String("properties")) {
        loadProperties(attributes);
        deserializer.skipElement();
    } else if (element == QLatin1String("collection")) {
        loadCollection(deserializer);
    } else if (element == QLatin1String("object")) {
        OssSerializableObject *object = onLoadSubObject(deserializer,
                                                        attributes.value(QStringLiteral("name")),
                                                        attributes.value(QStringLiteral("type")));
        if (object)
            object->load(deserializer);
        else
            m_foreign.append(deserializer.readRaw());
    } else if (const int depth = deserializer.depth();
               (element == QLatin1String("attribute")
                && onLoadUserAttribute(attributes.value(QStringLiteral("name")), attributes))
               || onLoadElement(deserializer, element, attributes)) {
        if (deserializer.depth() == depth)
            deserializer.skipElement();
    } else {
        m_foreign.append(deserializer.readRaw());
    }
    return !deserializer.failed();
}

void OssSerializableObject::loadProperties(const Attributes &attributes)
{
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it) {
        const int index = metaObject()->indexOfProperty(it.key().toLatin1().constData());
        const QMetaProperty property = metaObject()->property(index);
        // Whether the value would be stored now does not count: it is still the default.
        if (index < 0 || !property.isWritable() || !property.isStored()) {
            m_foreignProperties.insert(it.key(), it.value());
            continue;
        }
        const QVariant value = OssValueText::fromText(it.value(), property.userType());
        if (value.isValid())
            property.write(this, value);
    }
}

void OssSerializableObject::loadCollection(OssDeserializer &deserializer)
{
    const Attributes head = deserializer.attributes();
    const QString name = head.value(QStringLiteral("name"));
    Attributes entries;
    QStringList foreignChildren;
    bool asked = false;
    bool known = false;
    const auto ask = [&] {
        asked = true;
        known = onLoadCollection(name, head.value(QStringLiteral("type")),
                                 head.value(QStringLiteral("elementType")),
                                 head.value(QStringLiteral("count")).toInt(), entries);
    };
    // Entries stand before objects, so that the collection is announced whole.
    while (deserializer.nextElement()) {
        const Attributes attributes = deserializer.attributes();
        const QString element = deserializer.elementName();
        if (!asked && element == QLatin1String("entry")) {
            entries.insert(attributes.value(QStringLiteral("key")),
                           attributes.value(QStringLiteral("value")));
            deserializer.skipElement();
            continue;
        }
        if (!asked)
            ask();
        OssSerializableObject *object = nullptr;
        if (known && element == QLatin1String("object")) {
            object = onLoadCollectionObject(deserializer, attributes.value(QStringLiteral("name")),
                                            attributes.value(QStringLiteral("type")), attributes);
        }
        if (object)
            object->load(deserializer);
        else
            foreignChildren.append(deserializer.readRaw());
    }
    if (deserializer.failed())
        return;
    if (!asked)
        ask();
    if (known)
        onEndCollection(deserializer, name);
    else
        m_foreign.append(collectionText(head, entries, foreignChildren));
}

OssSerializableObject *OssSerializableObject::onLoadSubObject(OssDeserializer &, const QString &,
                                                              const QString &)
{
    return nullptr;
}

OssSerializableObject *OssSerializableObject::onLoadCollectionObject(OssDeserializer &,
                                                                     const QString &,
                                                                     const QString &,
                                                                     const Attributes &)
{
    return nullptr;
}

void OssSerializableObject::onEndCollection(OssDeserializer &, const QString &) {}

bool OssSerializableObject::onLoadCollection(const QString &, const QString &, const QString &, int,
                                             const Attributes &)
{
    return false;
}

bool OssSerializableObject::onLoadElement(OssDeserializer &, const QString &, const Attributes &)
{
    return false;
}

bool OssSerializableObject::onLoadUserAttribute(const QString &name, const Attributes &attributes)
{
    const int index = userAttributeIndex(name);
    if (index < 0)
        return false;
    OssCustomAttribute &attribute = m_userAttributes[index];
    const QVariant read = OssValueText::fromText(attributes.value(QStringLiteral("value")),
                                                 attribute.value().userType());
    const QVariant value = OssAttributeKind::like(attribute.value(), read);
    if (value.isValid())
        attribute.setValue(value);
    return value.isValid();
}

void OssSerializableObject::onEndLoad() {}
