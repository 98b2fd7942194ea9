#pragma once

#include "OssCore/Program/OssPreferenceManager.h"

#include <QObject>

#include <functional>

class QMetaEnum;
class QWidget;

/// One preference and the widget that edits it, chosen by the property's type: check box, number
/// field, text field, or a list for enumerations and texts with a list of allowed ones. Changes
/// act on the object at once.
class PreferenceEditor : public QObject
{
    Q_OBJECT

public:
    /// Remembers the value that restore() goes back to.
    PreferenceEditor(const OssPreferenceManager::Preference &preference, QObject *parent);

    /// Owned by the widget it is put into.
    QWidget *createWidget();

    const OssPreferenceManager::Preference &preference() const { return m_preference; }

    /// Back to the value at construction.
    void restore();
    /// Back to the default.
    void reset();

private:
    QWidget *createCheckBox();
    QWidget *createIntegerField();
    QWidget *createNumberField();
    QWidget *createTextField();
    QWidget *createTextList(const QStringList &texts);
    QWidget *createEnumerationList(const QMetaEnum &enumeration);
    void apply(const QVariant &value);
    QVariant value() const;

    OssPreferenceManager::Preference m_preference;
    QVariant m_original;
    std::function<void()> m_showValue;
};
