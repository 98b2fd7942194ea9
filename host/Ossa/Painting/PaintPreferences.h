#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssGroupParameterObject.h"

#include <QObject>

/// How painting behaves: the page "Painting" of the preferences dialog.
class PaintPreferences
    : public QObject
    , public OssGroupParameterObject
    , public OssService<PaintPreferences>
{
    Q_OBJECT
    Q_PROPERTY(QString bakeBehavior READ bakeBehavior WRITE setBakeBehavior)

public:
    PaintPreferences();

    QString bakeBehavior() const { return m_bakeBehavior; }

    /// Whether the user decides each time what becomes of paint that is in no image yet.
    bool asksBeforeBaking() const;

    QString prettyPropertyName(const QString &Name) const override;

public Q_SLOTS:
    /// One of bakeBehaviorList(); anything else is ignored.
    void setBakeBehavior(const QString &behavior);
    void resetBakeBehavior();
    QString bakeBehaviorTooltip() const;
    QStringList bakeBehaviorList() const;
    void savePreferences();

private:
    QString m_bakeBehavior;
};
