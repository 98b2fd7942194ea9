#pragma once

#include "OssCoreModules/Network/OssSnBaseNode.h"

class OssImageSet;

/// A node that reads or writes the pixels of an image set.
class OSSCOREMODULES_EXPORT OssSnImageSetNodeBase : public OssSnBaseNode
{
    Q_OBJECT

public:
    using OssSnBaseNode::OssSnBaseNode;

    /// Null when it has none.
    OssImageSet *imageSet() const;
    /// Undoable. The flag tells whether listeners hear of it.
    void setImageSet(OssImageSet *set, bool notify);

Q_SIGNALS:
    void imageSetChanged();

private:
    QPointer<QObject> m_imageSet;
};
