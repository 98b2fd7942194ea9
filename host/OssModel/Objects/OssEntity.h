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

    void setName(const QString &name) { m_name = name; }

private:
    QString m_name;
};
