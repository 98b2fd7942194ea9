#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssModel/OssModel_export.h"

#include <QPointer>

class OssShadingContext;

/// A channel of an object's paint: what a brush writes into. Its type is a GL type code, 5121 for
/// 8-bit paint.
class OSSMODEL_EXPORT OssChannel : public OssSerializableObject
{
    Q_OBJECT

public:
    static constexpr int UnsignedByte = 5121;

    OssChannel(const QString &name, OssShadingContext *context);
    ~OssChannel() override;

    QString name() const { return m_name; }

    int type() const { return m_type; }

    void setType(int type) { m_type = type; }

    OssShadingContext *shadingContext() const;

private:
    QString m_name;
    int m_type = UnsignedByte;
    QPointer<QObject> m_context;
};
