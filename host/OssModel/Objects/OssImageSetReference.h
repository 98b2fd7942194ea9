#pragma once

#include "OssModel/Objects/OssImageSet.h"

/// The image set that an object of the document works with and does not own. Files name it; the name
/// is looked up when the set is first asked for, for sets may be read after those who use them.
class OSSMODEL_EXPORT OssImageSetReference
{
public:
    /// Null when there is none, or none of the saved name yet. `owner` is who has the sets and finds
    /// one by its name; null when there is nobody to ask now.
    template <class Owner>
    OssImageSet *find(const Owner *owner) const
    {
        if (!m_set && owner && !m_savedName.isEmpty())
            m_set = owner->findImageSet(m_savedName);
        return m_set;
    }

    /// Null: none.
    void set(OssImageSet *set);

    /// What files write; empty when there is none.
    QString name() const { return m_set ? m_set->name() : m_savedName; }

    /// Writes nothing when there is none. A name for which no set was found is kept.
    void save(OssSerializer &serializer) const;
    /// False for an element that save() does not write.
    bool load(const QString &element, const OssSerializableObject::Attributes &attributes);

private:
    mutable QPointer<OssImageSet> m_set;
    QString m_savedName;
};
