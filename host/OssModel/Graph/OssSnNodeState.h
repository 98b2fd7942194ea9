#pragma once

#include "OssModel/Graph/OssSnNodeNotices.h"

class OssShaderNetwork;

/// What a node is called, how it is switched, and the values of its attributes. Every change of the
/// document records its own undo step. GUI thread.
class OSSMODEL_EXPORT OssSnNodeState : public OssSnNodeNotices
{
    Q_OBJECT
    Q_PROPERTY(QString description READ description WRITE setDescription STORED hasDescription)
    Q_PROPERTY(int enabled READ enabled WRITE setEnabled STORED isNotEnabled)
    Q_PROPERTY(bool bypassed READ isBypassed WRITE setBypassed STORED isBypassed)
    Q_PROPERTY(bool locked READ isLocked WRITE setLocked STORED isLocked)
    Q_PROPERTY(int cacheActive READ cacheActive WRITE setCacheActive STORED isCacheSet)

public:
    using OssSnNodeNotices::OssSnNodeNotices;

    QString name() const { return m_name; }

    /// "/Group/Node" within the root network.
    virtual QString path() const = 0;

    QString description() const { return m_description; }

    bool hasDescription() const { return !m_description.isEmpty(); }

    void setDescription(const QString &description);

    /// 0 is off; other numbers are on.
    int enabled() const { return m_enabled; }

    bool enabledAsBool() const { return m_enabled != 0; }

    bool isNotEnabled() const { return m_enabled != 1; }

    void setEnabled(int enabled);
    void toggleDisable();

    bool isBypassed() const { return m_bypassed; }

    /// Nothing happens to a viewer.
    void setBypassed(bool bypassed);
    void toggleBypass();

    /// Whether the values of its attributes are kept from edits, whoever makes them. Undoing and
    /// redoing are none.
    bool isLocked() const { return m_locked; }

    void setLocked(bool locked);

    int cacheActive() const { return m_cacheActive; }

    bool isCacheSet() const { return m_cacheActive != CacheOff; }

    void setCacheActive(int state);

    /// Whether its picture is looked at. View state, not part of the document; OssViewedNode sets it.
    bool isGuiActive() const { return m_guiActive; }

    void setGuiActive(bool active);

    /// Why the node gives no result, in words; empty when it is well.
    QString errorText() const { return m_errorText; }

    void setErrorText(const QString &text);

    // --- attributes
    /// "Group/Name", or "Name" where there is no group, in order.
    QStringList nodeAttributes() const;
    /// The same in another order; anything else is refused. One undo step.
    void setNodeAttributesUndo(const QStringList &nodeAttributes);
    QString nodeAttributeNameAsUserAttributeName(const QString &nodeAttribute) const;
    /// Sets the value of an attribute; one that is not the attribute's type is converted where that
    /// is possible, refused otherwise. Refused, too, when the attribute is locked.
    bool setAttribute(const QString &name, const QVariant &value, bool notify = true);
    /// Why nobody may edit an attribute, in words: its node is locked, or another that a knob ties
    /// it to. Empty when all may.
    virtual QString lockOf(const QString &attribute) const = 0;

    QVariant attribute(const QString &name) const { return userAttribute(name).value(); }

protected:
    /// Whether the node passes something on that a stream could go by.
    virtual bool canBeBypassed() const = 0;

    QString nameInSteps() const override { return m_name; }

private:
    friend class OssLinkedCustomAttributeManager;
    friend class OssShaderNetwork;
    friend class OssSnBaseNode;

    /// Without asking for locks.
    bool assignAttribute(const QString &name, const QVariant &value, bool notify);

    QString m_name;
    QString m_description;
    QString m_errorText;
    int m_enabled = 1;
    int m_cacheActive = CacheOff;
    bool m_bypassed = false;
    bool m_locked = false;
    bool m_guiActive = false;
};
