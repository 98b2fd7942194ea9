#pragma once

#include "OssCore/OssCore_export.h"

#include <QMetaType>
#include <QSharedDataPointer>
#include <QString>
#include <QVariant>

/// One named, typed value of an object together with what a panel needs to show it. A value class:
/// copies are cheap (the definition is shared) and independent. Slots take it by value.
class OSSCORE_EXPORT OssCustomAttribute
{
public:
    /// What all copies of an attribute share until one changes it.
    struct OSSCORE_EXPORT Definition : QSharedData
    {
        QString name;
        QString prettyName; ///< empty: made from the name
        QString group;      ///< section of the panel; may be empty
        QString toolTip;
        QVariant defaultValue;
        QVariant minimum; ///< invalid: no bound
        QVariant maximum;
        QVariant softMinimum; ///< what a slider spans; invalid: the bound
        QVariant softMaximum;
        /// How it is edited where the value's type does not tell: "file", "curve", "ramp".
        QString editor;
        bool visible = true;
        bool isKnob = false; ///< made by a user on a group, not by the node's type
    };

    /// An invalid attribute: what a look-up of an unknown name gives.
    OssCustomAttribute();
    OssCustomAttribute(const QString &name, const QVariant &value);
    OssCustomAttribute(QSharedDataPointer<Definition> definition, const QVariant &value);
    OssCustomAttribute(const OssCustomAttribute &);
    OssCustomAttribute(OssCustomAttribute &&) noexcept;
    OssCustomAttribute &operator=(const OssCustomAttribute &);
    OssCustomAttribute &operator=(OssCustomAttribute &&) noexcept;
    ~OssCustomAttribute();

    bool isValid() const;
    QString name() const;
    QString prettyName() const;
    QString group() const;
    bool isVisible() const;

    QVariant value() const { return m_value; }

    void setValue(const QVariant &value) { m_value = value; }

    void setPrettyName(const QString &prettyName);

    const Definition &definition() const;
    Definition &editDefinition();
    bool isDefault() const;

    /// Name, definition text and value are the same.
    friend OSSCORE_EXPORT bool operator==(const OssCustomAttribute &a, const OssCustomAttribute &b);

private:
    QSharedDataPointer<Definition> m_definition;
    QVariant m_value;
};

Q_DECLARE_METATYPE(OssCustomAttribute)
