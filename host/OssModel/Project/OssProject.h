#pragma once

#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Objects/OssEntity.h"

#include <QByteArray>

#include <memory>
#include <vector>

class OssGeoEntity;
class OssImage;
class OssShadingGroup;
struct OssGeometrySource;

/// A project: the objects that are textured, with everything that hangs on them.
class OSSMODEL_EXPORT OssProject
    : public OssEntity
    , public OssImageHolder
{
    Q_OBJECT
    Q_PROPERTY(int newResolution READ newResolution WRITE setNewResolution STORED hasNewResolution)
    Q_PROPERTY(QString colorConfig READ colorConfig WRITE setColorConfig STORED hasColorConfig)
    Q_PROPERTY(QString workingSpace READ workingSpace WRITE setWorkingSpace STORED hasWorkingSpace)
    Q_PROPERTY(QStringList fileRules READ fileRules WRITE setFileRules STORED hasFileRules)

public:
    explicit OssProject(const QString &name = {});
    ~OssProject() override;

    /// The project's folder, "NAME.ossa"; empty before it was ever saved.
    QString path() const { return m_path; }

    void setPath(const QString &path) { m_path = path; }

    /// What people know it by: the name of its folder, which they may have given it elsewhere, or its
    /// own while it lies in none.
    QString shownName() const;

    /// A project that a newer version wrote is opened for looking only.
    bool isReadOnly() const { return m_readOnly; }

    void setReadOnly(bool readOnly) { m_readOnly = readOnly; }

    QList<OssGeoEntity *> entities() const;
    /// Null when there is none of that name.
    OssGeoEntity *entity(const QString &name) const;
    /// `base` when it is free, else with the lowest free number.
    QString freeEntityName(const QString &base) const;
    /// For making a project. Owned by the project; comes with one shading group and the network in it.
    OssGeoEntity *addEntity(const QString &name);
    /// The same in the open project: with a viewer, and one step.
    OssGeoEntity *createEntity(const QString &name, const OssGeometrySource &source);
    /// One step, from which everything of the object comes back. Where its network was the current one,
    /// that of the first object becomes it. False for the last object, without which there is no project.
    bool removeEntity(OssGeoEntity *entity);
    /// Of all objects, in their order.
    QList<OssShadingGroup *> shadingGroups() const;

    // --- images
    QList<OssImage *> images() const override;
    OssImage *addImage(const QString &path, const QString &category) override;

    int newResolution() const override { return m_newResolution; }

    /// Undoable. Nothing for what is no size that images can have.
    void setNewResolution(int resolution);

    bool hasNewResolution() const { return m_newResolution != OssImageManager::UsualResolution; }

    // --- colours, in which the open project is reckoned and shown

    const OssColorSettings &colors() const { return m_colors; }

    /// One step. What cannot be had is kept all the same; OssColorManagement tells it.
    void setColors(const OssColorSettings &colors);

    QString colorConfig() const { return m_colors.config; }

    void setColorConfig(const QString &config);

    /// Another path to the same file, for a project that will lie elsewhere. One step.
    void renameColorConfig(const QString &path);

    bool hasColorConfig() const { return !m_colors.config.isEmpty(); }

    QString workingSpace() const { return m_colors.working; }

    void setWorkingSpace(const QString &space);

    bool hasWorkingSpace() const { return !m_colors.working.isEmpty(); }

    QStringList fileRules() const { return m_colors.fileRules; }

    void setFileRules(const QStringList &rules);

    bool hasFileRules() const { return !m_colors.fileRules.isEmpty(); }

    /// The sizes that a project's new images can have.
    static QList<int> newResolutions();

    /// Names of the files in OssPixelStore that the document needs, each once, sorted: pixels and kept
    /// meshes.
    QStringList pixelFiles() const;

    /// Hash of the document: what saving would write, without ids. Equal for equal documents,
    /// however they came about; not of selection, current tab or current viewer.
    QByteArray stateHash();

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override;
    OssSerializableObject *onLoadCollectionObject(OssDeserializer &deserializer,
                                                  const QString &name, const QString &type,
                                                  const Attributes &attributes) override;

Q_SIGNALS:
    /// Objects came or went, or one has another source.
    void entitiesChanged();

private:
    OssGeoEntity *insertEntity(const std::shared_ptr<OssGeoEntity> &entity, std::size_t place);
    /// With all nodes told to those who follow nodes.
    void bringIn(const std::shared_ptr<OssGeoEntity> &entity, std::size_t place);
    std::size_t takeOut(const std::shared_ptr<OssGeoEntity> &entity);

    void takeColors(const OssColorSettings &colors);

    QString m_path;
    OssColorSettings m_colors;
    bool m_readOnly = false;
    int m_newResolution = OssImageManager::UsualResolution;
    std::vector<std::shared_ptr<OssGeoEntity>> m_entities;
    std::vector<std::shared_ptr<OssImage>> m_images;
};

Q_DECLARE_METATYPE(OssProject *)
