#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Program/OssService.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QVector>

/// What can be set in the preferences dialog: properties of objects, under a page and a group, in
/// the order of registration. Everything else is found by name on the object:
///
///   property `key`            value, its type decides the editor
///   slot reset<Key>()         back to the default
///   slot <key>Default()       the default, optional
///   slot <key>Tooltip()       tool tip, plain or HTML
///   slot <key>List()          allowed texts of a string preference, optional
///   prettyPropertyName(key)   label, as it is in the source
///   slot savePreferences()    called when the user's choices are to be kept
///
/// Page, group and label are the preference's identity and stay as they are in the source; they are
/// translated in the context of the object's class where people read them.
class OSSCORE_EXPORT OssPreferenceManager
    : public QObject
    , public OssService<OssPreferenceManager>
{
    Q_OBJECT

public:
    struct Preference
    {
        QString page;
        QString group;
        QPointer<QObject> object;
        QString key;
    };

    OssPreferenceManager() = default;

    /// The object is not owned; when it dies its preferences drop out.
    void registerPreference(const QString &page, const QString &group, QObject *object,
                            const QString &key);

    QVector<Preference> preferences() const;

    /// "Page/Group/Label", untranslated: what scripts know it by.
    static QString path(const Preference &preference);
    /// What people read.
    static QString pageTitle(const Preference &preference);
    static QString groupTitle(const Preference &preference);
    static QString label(const Preference &preference);
    static QString toolTip(const Preference &preference);
    /// Empty when any value is allowed.
    static QStringList allowedTexts(const Preference &preference);
    /// Of the values, where they are an enumeration's; empty elsewhere.
    static QStringList names(const Preference &preference);
    static QVariant value(const Preference &preference);
    static bool setValue(const Preference &preference, const QVariant &value);
    /// The value as the property takes it: of its type, and an allowed text where only some are.
    /// Texts are read as in the settings file. Invalid when it is no value of the property.
    static QVariant fitting(const Preference &preference, const QVariant &value);
    static void reset(const Preference &preference);

    /// Has every registered object keep its values: calls its savePreferences(), once each.
    void savePreferences();

private:
    QVector<Preference> m_preferences;
};
