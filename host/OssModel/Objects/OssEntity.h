#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssModel/OssModel_export.h"

/// Something in a project that has a name for people.
class OSSMODEL_EXPORT OssEntity : public OssSerializableObject
{
    Q_OBJECT

public:
    explicit OssEntity(const QString &name, QObject *parent = nullptr);
    ~OssEntity() override;

    QString name() const { return m_name; }

    /// No step, but the project counts as modified.
    void setName(const QString &name);

Q_SIGNALS:
    void nameChanged(const QString &name);

private:
    QString m_name;
};
