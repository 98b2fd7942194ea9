#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssModel/Images/OssImageUniqueId.h"

#include <QSize>

/// An image of the project's image list: a file, or one file for each UDIM patch. Pixels are read
/// when they are needed.
class OSSMODEL_EXPORT OssImage : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString path READ path WRITE setPath)
    Q_PROPERTY(QString category READ category WRITE setCategory)

public:
    /// Mime types of drags: ids of images of the list, resp. paths of image files.
    static const QString MimeType;
    static const QString PathMimeType;

    explicit OssImage(const OssImageUniqueId &id, QObject *parent = nullptr);
    ~OssImage() override;

    OssImageUniqueId uniqueId() const { return m_id; }

    /// Where patches have files of their own, "<UDIM>" stands for the number.
    QString path() const { return m_path; }

    void setPath(const QString &path) { m_path = path; }

    bool isUdim() const;

    /// The file of a patch; the file itself when there is but one.
    QString pathOfPatch(int udim) const;
    /// The patches that have files now, in order; 1001 alone for a single file.
    QList<int> patches() const;

    QString category() const { return m_category; }

    void setCategory(const QString &category) { m_category = category; }

    /// File name without folder.
    QString name() const;

private:
    OssImageUniqueId m_id;
    QString m_path;
    QString m_category;
};

Q_DECLARE_METATYPE(OssImage *)
