#include "OssModel/Nodes/OssSnMaterialNode.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssModel/Evaluation/OssMaterialThumbnail.h"

#include <QBuffer>
#include <QImage>

OssResult OssSnMaterialNode::generateMaterialThumbnail(const QString &path, int size) const
{
    QImage picture;
    const OssResult made = OssMaterialThumbnail::make(this, size, &picture);
    if (!made)
        return made;
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    if (!picture.save(&file, "PNG"))
        return OssResult::failure(tr("%1: the picture could not be written").arg(path));
    return OssAtomicFile::write(path, file.data());
}
