#pragma once

#include "OssCore/Values/OssColor.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"

#include <QMap>

#include <optional>

class OssGeoEntity;
class OssGeoImageSet;

/// Keeps the result of what feeds it as images, from which everything behind it goes on.
class OSSMODEL_EXPORT OssSnBakePointNode : public OssSnImageSetNodeBase
{
    Q_OBJECT

public:
    explicit OssSnBakePointNode(std::shared_ptr<const OssSnNodeType> type);
    ~OssSnBakePointNode() override;

    QString preferredInputName() const;

    /// Undoable. What the images of the patches were made from, as evaluation names it, and at what
    /// size and in which form; the others keep what they have. Without patches it is said of all, and
    /// an empty key means that there is no result any more.
    void setBakedKey(const QString &key, const QList<int> &patches = {}, int size = 0,
                     const QString &form = {});

    bool hasBakedResult() const { return !m_baked.isEmpty(); }

    /// Whether a bake now would give what the images hold, in each patch that it would bake, and the
    /// geo-channel has them if it is to. With `anySettings` it does not matter at which size and in
    /// which form they are kept. Files that nobody has looked at yet count as what they were.
    bool isBakedResultUpToDate(bool anySettings = false) const;
    /// The same without the geo-channel.
    bool arePixelsUpToDate(bool anySettings = false) const;
    /// The patches that a bake now would bake: those that the object has and the limit lets through.
    QList<int> patchesToBake() const;

    /// Announces when the result has become, or is no longer, out of date.
    void checkBakedState();

    /// Whether the result also goes into a geo-channel, and into which.
    bool syncGeoChannel() const;
    QString geoChannelName() const;
    /// The object's geo-channel that is to have the result; null when none is, or there is none.
    OssGeoImageSet *syncedGeoChannel() const;
    /// Whether only some patches are baked, and which: "1001-1004,1011".
    bool limitBake() const;
    QString limitBakeRange() const;
    /// What the others show.
    OssColor limitBakeBackground() const;
    bool filterCollectionEnabled() const;
    QString filterCollectionText() const;
    /// Whether the filter, names of objects with wildcards, lets the object through. Without a filter
    /// or a text it does, and so it does for what belongs to no object.
    bool isBakedFor(const OssGeoEntity *object) const;

    OssImageSet *needImageSet() override;
    /// Without pixels: how those are kept that a bake now would make, whether there are any yet.
    std::unique_ptr<const OssImageSet> imagesToBake() const;
    /// Whether nobody has chosen how large its images are, and there are none.
    bool asksForSize() const;
    void applySettings(OssImageSet *images) const override;
    /// Whether it says how finely values are kept. Those of older documents keep them as they come.
    bool choosesDepth() const;

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override;

Q_SIGNALS:
    void geoChannelNameChanged(QString name);
    void syncGeoChannelChanged(bool on);
    void bakedStateChanged();
    /// Also when the range changed.
    void limitBakeChanged(bool on);
    void filterCollectionEnabledChanged(bool on);
    void filterCollectionTextChanged(QString text);

protected:
    void onUserAttributeSet(const OssCustomAttribute &attribute, bool added) override;

private:
    /// What a patch holds.
    struct Baked
    {
        QString key;
        int size = 0; ///< 0: any
        QString form; ///< as OssImageSet::form(); empty: any

        friend bool operator==(const Baked &a, const Baked &b)
        {
            return a.key == b.key && a.size == b.size && a.form == b.form;
        }
    };

    static constexpr int OtherPatches = 0;

    QMap<int, Baked> m_baked; ///< by patch; what all have that are not named is under OtherPatches
    std::optional<bool> m_wasUpToDate; ///< when it was last announced
};
