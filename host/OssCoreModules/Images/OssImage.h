#pragma once

#include "OssCore/OssSerializableObject.h"
#include "OssCoreModules/OssCoreModules_export.h"

/// An image of the project's image list.
class OSSCOREMODULES_EXPORT OssImage : public OssSerializableObject
{
    Q_OBJECT

public:
    /// Mime types of drags: ids of images of the list, resp. paths of image files.
    static const QString MimeType;
    static const QString PathMimeType;

    explicit OssImage(const QString &path, QObject *parent = nullptr);
    ~OssImage() override;

    QString path() const { return m_path; }

private:
    QString m_path;
};

Q_DECLARE_METATYPE(OssImage *)
