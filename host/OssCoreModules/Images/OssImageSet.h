#pragma once

#include "OssCore/OssSerializableObject.h"
#include "OssCoreModules/OssCoreModules_export.h"

#include <QPointer>

class OssChannel;

/// The images of one texture, one per UDIM patch.
class OSSCOREMODULES_EXPORT OssImageSet : public OssSerializableObject
{
    Q_OBJECT

public:
    explicit OssImageSet(const QString &name, QObject *parent = nullptr);
    ~OssImageSet() override;

    QString name() const { return m_name; }

    /// The channel that these images are the paint of; null when there is none.
    OssChannel *channel() const;
    void setChannel(OssChannel *channel);

private:
    QString m_name;
    QPointer<QObject> m_channel;
};
