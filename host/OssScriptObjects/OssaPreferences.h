#pragma once

#include "OssCore/Program/OssPreferenceManager.h"
#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QStringList>
#include <QVariant>

namespace Ossa {

/// The preferences for scripts, by "Page/Group/Label" as the dialog shows them in English, whatever
/// language it has. What a script sets is kept like what a user sets.
class OSSSCRIPTOBJECTS_EXPORT Preferences : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc",
                "The preferences, by \"Page/Group/Label\" as the dialog shows them in English.")
    Q_CLASSINFO("names", "Of all preferences.")
    Q_CLASSINFO("value", "What a preference is set to.")
    Q_CLASSINFO("setValue", "Sets a preference.")
    Q_CLASSINFO("reset", "Gives a preference its default again.")
    Q_CLASSINFO("choices", "The texts that a preference takes; empty when it takes any value.")

public:
    explicit Preferences(QObject *manager);
    ~Preferences() override;

public Q_SLOTS:
    QStringList names() const;
    QVariant value(const QString &name) const;
    void setValue(const QString &name, const QVariant &value);
    void reset(const QString &name);
    QStringList choices(const QString &name) const;

private:
    /// False, and reported, when there is none.
    bool find(const QString &name, OssPreferenceManager::Preference *preference) const;
};

} // namespace Ossa
