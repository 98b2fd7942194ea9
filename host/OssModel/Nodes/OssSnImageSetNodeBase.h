#pragma once

#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Objects/OssImageSetReference.h"

/// A node that reads or writes the pixels of an image set.
class OSSMODEL_EXPORT OssSnImageSetNodeBase : public OssSnBaseNode
{
    Q_OBJECT

public:
    using OssSnBaseNode::OssSnBaseNode;

    /// Null when it has none.
    OssImageSet *imageSet() const;
    /// Undoable. The flag tells whether listeners hear of it.
    void setImageSet(OssImageSet *set, bool notify);

    /// Makes images where there are none: of the project's size, as applySettings() has them. Undoable.
    /// Null without a shading that could keep them.
    virtual OssImageSet *needImageSet();

    /// Gives images that are this node's alone the settings that it asks for. Not a step.
    virtual void applySettings(OssImageSet *) const {}

    /// What files name them by, there or not; empty when the node never had any.
    QString imageSetName() const { return m_images.name(); }

    /// The same as setImageSet() for a node that is in no document yet: no step, and nobody is told.
    void takeImageSet(OssImageSet *set) { m_images.set(set); }

    /// Takes properties of the node out of the user's hands that its channel decides.
    void enablePropertiesBasedOnManagedByChannel();

    /// Whether what a panel shows of the images is decided by a channel.
    bool isManagedByChannel() const { return m_managedByChannel; }

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override;

private:
    void setManagedByChannel(bool managed);

    bool m_managedByChannel = false;
    OssImageSetReference m_images;
};
