#pragma once

#include "OssCore/OssCore_export.h"

#include <QObject>
#include <QPointer>
#include <QString>

/// Makes objects of one class by its name, for a given owner.
class OSSCORE_EXPORT OssClassFactory : public QObject
{
    Q_OBJECT

public:
    explicit OssClassFactory(QObject *parent = nullptr);
    ~OssClassFactory() override;

    /// A new object that belongs to `node` and becomes its child.
    virtual QPointer<QObject> create(QObject *node) = 0;
    virtual QString className() = 0;
    /// Name under which the class is offered; the class name where there is no other.
    virtual QString displayName() = 0;

    /// Hands `factory` to the manager, which owns it from then on. Called on the factory itself.
    void registerMe(OssClassFactory *factory);
};
