#pragma once

#include "OssCore/Documents/OssDeserializer.h"
#include "OssCore/Documents/OssSerializer.h"
#include "OssCore/OssCore_export.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssCore/Values/OssGroupParameterObject.h"

#include <QObject>
#include <QStringList>
#include <QUuid>
#include <QVector>

/// Object that can be selected, referred to by UUID, carry user attributes, and be saved and loaded.
///
/// Saved are, in this order: the UUID (where one was ever asked for), the stored Qt properties, the
/// user attributes, what saveObjects() adds, and what an earlier load did not understand. Loading
/// gives properties first, through their setters, then everything else in file order.
class OSSCORE_EXPORT OssSerializableObject
    : public QObject
    , public OssGroupParameterObject
{
    Q_OBJECT

public:
    using Attributes = QMap<QString, QString>;

    explicit OssSerializableObject(QObject *parent = nullptr);
    ~OssSerializableObject() override;

    bool selected() const { return m_selected; }

    /// With braces. Made at the first call; stable and known to OssObjectReferenceManager since.
    QString uuidString() const;
    /// Takes the given UUID over, as loading does. A text that is none is refused.
    bool setUuidString(const QString &uuid);

    bool exists(const QString &name) const;
    /// Invalid when there is none of that name.
    OssCustomAttribute userAttribute(const QString &name) const;

    bool userAttributesExist() const { return !m_userAttributes.isEmpty(); }

    QStringList userAttributeNames() const;

    const QVector<OssCustomAttribute> &userAttributes() const { return m_userAttributes; }

    /// Sets or adds an attribute; one of equal name keeps its place. Undoable. Without `notify`
    /// nobody is told.
    void setUserAttribute(const OssCustomAttribute &attribute, bool notify);
    /// Undoable. False when there is none of that name.
    bool removeUserAttribute(const QString &name);

    /// Writes this object as a named sub-object.
    bool save(OssSerializer &serializer, const QString &name, const Attributes &attributes);
    /// Fills this object from the element at which the reader stands and moves past it.
    bool load(OssDeserializer &deserializer);

    /// Sub-objects, collections and elements beyond properties and attributes. False on failure.
    virtual bool saveObjects(OssSerializer &serializer);
    /// The existing or new object that a saved sub-object is loaded into. Null: not wanted; the
    /// saved text is kept and written again.
    virtual OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer,
                                                   const QString &name, const QString &type);
    /// The same for an object of the collection being read. `attributes` are its element's.
    virtual OssSerializableObject *onLoadCollectionObject(OssDeserializer &deserializer,
                                                          const QString &name, const QString &type,
                                                          const Attributes &attributes);
    virtual void onEndCollection(OssDeserializer &deserializer, const QString &name);
    /// `attributes` are the collection's entries. False when the name is unknown; then the
    /// collection is kept as it is and written again.
    virtual bool onLoadCollection(const QString &name, const QString &type,
                                  const QString &elementType, int count,
                                  const Attributes &attributes);
    /// Any other element. True when it was used; its content, if any, is passed over unless it was
    /// read here with OssDeserializer::readRaw().
    virtual bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                               const Attributes &attributes);
    /// A saved user attribute. The base gives the value to an attribute of that name that exists
    /// already, which is what types with fixed attributes need.
    virtual bool onLoadUserAttribute(const QString &name, const Attributes &attributes);
    /// After everything of this object was read.
    virtual void onEndLoad();

public Q_SLOTS:
    /// Selection is no part of the document: nothing is recorded.
    void setSelected(bool selected);

Q_SIGNALS:
    /// Only when it changes.
    void selectedChanged(bool selected);
    /// After a notifying setUserAttribute(), also on undo and redo.
    void userAttributeChanged(const QString &name);

protected:
    /// Name of the class in files.
    virtual QString serializedType() const;
    /// User attributes that need no saving: a type's attribute at its default.
    virtual bool attributeNeedsSaving(const OssCustomAttribute &attribute) const;

    /// What the steps of the history call the object; empty where that needs no saying.
    virtual QString nameInSteps() const { return {}; }

    /// Called for each change, before the signal.
    virtual void onUserAttributeSet(const OssCustomAttribute &attribute, bool added);
    virtual void onUserAttributeGone(const OssCustomAttribute &attribute);
    /// Gives the object its type's attributes: no undo, no notice.
    void initUserAttributes(const QVector<OssCustomAttribute> &attributes);
    /// All names in their new order; anything else is refused. No undo, no notice.
    bool orderUserAttributes(const QStringList &names);
    /// Gives an attribute another name, in its place. False when there is none or the name is taken.
    /// No undo, no notice.
    bool renameUserAttribute(const QString &oldName, const QString &newName);
    int userAttributeIndex(const QString &name) const;
    /// Reads once more what was unknown when it was read, for an object that has learned more since.
    void loadForeign();

private:
    void saveProperties(OssSerializer &serializer) const;
    void saveUserAttributes(OssSerializer &serializer) const;
    bool loadChild(OssDeserializer &deserializer);
    void loadProperties(const Attributes &attributes);
    void loadCollection(OssDeserializer &deserializer);
    void applyUserAttribute(const OssCustomAttribute &attribute, int index, bool notify);
    void dropUserAttribute(int index);
    QString stepTitle(const QString &what, const OssCustomAttribute &attribute) const;

    mutable QUuid m_uuid;
    QVector<OssCustomAttribute> m_userAttributes;
    QStringList m_foreign;
    Attributes m_foreignProperties;
    bool m_selected = false;
};
