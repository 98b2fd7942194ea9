#pragma once

#include "OssModel/Objects/OssEntity.h"
#include "OssModel/Objects/OssGeometrySource.h"

#include <memory>
#include <vector>

class OssGeoImageSet;
class OssImageSet;
class OssShadingGroup;

/// An object of the project: what is textured. Has its shape and one or more shading groups.
class OSSMODEL_EXPORT OssGeoEntity : public OssEntity
{
    Q_OBJECT
    /// The name of a shape, or the file that it is read from; the others say how.
    Q_PROPERTY(QString geometry READ geometry WRITE setGeometry)
    Q_PROPERTY(QString geometryPart READ part WRITE setPart STORED hasFile)
    Q_PROPERTY(int geometrySplit READ split WRITE setSplit STORED hasFile)
    Q_PROPERTY(int geometryUp READ up WRITE setUp STORED hasFile)
    Q_PROPERTY(double geometryScale READ scale WRITE setScale STORED hasFile)
    Q_PROPERTY(QString uvSet READ uvSet WRITE setUvSet STORED hasFile)
    Q_PROPERTY(bool unwraps READ unwraps WRITE setUnwraps STORED hasFile)

public:
    explicit OssGeoEntity(const QString &name = {}, QObject *parent = nullptr);
    ~OssGeoEntity() override;

    /// One step. Nothing for an empty name.
    void changeName(const QString &name);

    /// Of the source: the name of its shape, or its file.
    QString geometry() const { return m_source.shape; }

    /// Not undoable.
    void setGeometry(const QString &geometry);

    const OssGeometrySource &source() const { return m_source; }

    /// Not undoable.
    void setSource(const OssGeometrySource &source);
    /// One step under the title. Graphs, images and bakes stay as they are.
    void changeSource(const OssGeometrySource &source, const QString &title);

    bool hasFile() const { return m_source.isFile(); }

    QList<OssShadingGroup *> shadingGroups() const;
    /// Owned by the entity.
    OssShadingGroup *addShadingGroup(const QString &name);

    /// Geo-channels in the order of their making.
    QList<OssGeoImageSet *> geoImageSets() const;
    /// Null when there is none of that name.
    OssGeoImageSet *geoImageSet(const QString &name) const;
    /// Owned by the entity. Null when the name is empty or taken. Undoable.
    OssGeoImageSet *addGeoImageSet(const QString &name);
    /// Among all image sets of the object's shading; null when there is none of that name.
    OssImageSet *findImageSet(const QString &name) const;

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override;
    OssSerializableObject *onLoadCollectionObject(OssDeserializer &deserializer,
                                                  const QString &name, const QString &type,
                                                  const Attributes &attributes) override;

    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override;

Q_SIGNALS:
    /// The source is another.
    void sourceChanged();
    /// One came or went, or has other images.
    void geoImageSetsChanged();

private:
    // --- as files have the source
    QString part() const { return m_source.part; }

    void setPart(const QString &part) { m_source.part = part; }

    int split() const { return int(m_source.options.split); }

    void setSplit(int split);

    int up() const { return int(m_source.options.up); }

    void setUp(int up);

    double scale() const { return m_source.options.scale; }

    void setScale(double scale);

    QString uvSet() const { return QString::fromStdString(m_source.options.uvSet); }

    void setUvSet(const QString &name) { m_source.options.uvSet = name.toStdString(); }

    bool unwraps() const { return m_source.options.unwraps; }

    void setUnwraps(bool on) { m_source.options.unwraps = on; }

    OssGeoImageSet *makeGeoImageSet(const QString &name);

    OssGeometrySource m_source;
    std::vector<std::shared_ptr<OssGeoImageSet>> m_geoImageSets;
    std::vector<std::unique_ptr<OssShadingGroup>> m_groups;
};
