#pragma once

#include "OssCore/OssCore_export.h"

#include <QMetaType>
#include <QStringList>

/// A choice from a list: the value of menu attributes. The list belongs to the value, so that an
/// attribute can be shown and saved by itself.
class OSSCORE_EXPORT OssUserEnum
{
public:
    OssUserEnum() = default;
    explicit OssUserEnum(QStringList names, int currentValue = 0);

    QStringList names() const { return m_names; }

    int currentValue() const { return m_currentValue; }

    /// Empty when the current value is outside the list.
    QString currentName() const;

    /// Any number is kept; the list does not bound it, so that a newer type's choice survives.
    void setCurrentValue(int value) { m_currentValue = value; }

    /// Only the chosen value counts: the list is the definition's.
    friend bool operator==(const OssUserEnum &a, const OssUserEnum &b)
    {
        return a.m_currentValue == b.m_currentValue;
    }

    friend bool operator<(const OssUserEnum &a, const OssUserEnum &b)
    {
        return a.m_currentValue < b.m_currentValue;
    }

    /// Makes the comparison and the conversions to int and QString known to QVariant.
    static void registerMetaType();

private:
    QStringList m_names;
    int m_currentValue = 0;
};

Q_DECLARE_METATYPE(OssUserEnum)
