#include "OssModel/Project/OssProject.h"

#include "OssCore/Documents/OssObjectCollection.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QFileInfo>

#include <algorithm>

namespace {

const QString EntitiesCollection = QStringLiteral("m_entities");
const QString ImagesCollection = QStringLiteral("m_images");

} // namespace

OssProject::OssProject(const QString &name)
    : OssEntity(name)
{
}

OssProject::~OssProject() = default;

QString OssProject::shownName() const
{
    return m_path.isEmpty() ? name() : QFileInfo(m_path).completeBaseName();
}

QList<OssGeoEntity *> OssProject::entities() const
{
    QList<OssGeoEntity *> list;
    for (const auto &entity : m_entities)
        list.append(entity.get());
    return list;
}

OssGeoEntity *OssProject::entity(const QString &name) const
{
    for (const auto &entity : m_entities) {
        if (entity->name() == name)
            return entity.get();
    }
    return nullptr;
}

QString OssProject::freeEntityName(const QString &base) const
{
    QString name = base;
    for (int i = 2; entity(name); ++i)
        name = QStringLiteral("%1 %2").arg(base).arg(i);
    return name;
}

OssGeoEntity *OssProject::addEntity(const QString &name)
{
    OssGeoEntity *entity = insertEntity(std::make_shared<OssGeoEntity>(name), m_entities.size());
    entity->addShadingGroup(QStringLiteral("Shading"));
    return entity;
}

OssGeoEntity *OssProject::insertEntity(const std::shared_ptr<OssGeoEntity> &entity,
                                       std::size_t place)
{
    m_entities.insert(m_entities.begin() + std::ptrdiff_t(std::min(place, m_entities.size())),
                      entity);
    connect(entity.get(), &OssGeoEntity::sourceChanged, this, &OssProject::entitiesChanged,
            Qt::UniqueConnection);
    return entity.get();
}

OssGeoEntity *OssProject::createEntity(const QString &name, const OssGeometrySource &source)
{
    OssGeoEntity *made = nullptr;
    {
        const OssUndoManager::Pause pause;
        made = addEntity(name);
        made->setSource(source);
        OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
        OssShaderNetwork *network = made->shadingGroups().first()->network();
        networks->addShaderNetwork(network);
        network->finishLoading();
        network->moveCurrentViewerNodeToNetwork();
    }
    const std::shared_ptr<OssGeoEntity> kept = m_entities.back();
    const std::size_t place = m_entities.size() - 1;
    OssUndoManager::instance()->record(
        tr("Add Object %1").arg(name), [this, kept] { takeOut(kept); },
        [this, kept, place] { bringIn(kept, place); });
    Q_EMIT entitiesChanged();
    return made;
}

bool OssProject::removeEntity(OssGeoEntity *entity)
{
    const auto found = std::find_if(m_entities.begin(), m_entities.end(),
                                    [entity](const auto &own) { return own.get() == entity; });
    if (found == m_entities.end() || m_entities.size() < 2)
        return false;
    const std::shared_ptr<OssGeoEntity> kept = *found;
    const std::size_t place = takeOut(kept);
    OssUndoManager::instance()->record(
        tr("Remove Object %1").arg(kept->name()), [this, kept, place] { bringIn(kept, place); },
        [this, kept] { takeOut(kept); });
    return true;
}

void OssProject::bringIn(const std::shared_ptr<OssGeoEntity> &entity, std::size_t place)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    insertEntity(entity, place);
    const QList<OssShadingGroup *> groups = entity->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        networks->addShaderNetwork(group->network());
        const QList<OssSnBaseNode *> nodes = group->network()->nodes();
        for (OssSnBaseNode *node : nodes)
            networks->registerNode(group->network(), node);
    }
    Q_EMIT entitiesChanged();
}

std::size_t OssProject::takeOut(const std::shared_ptr<OssGeoEntity> &entity)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const auto found = std::find(m_entities.begin(), m_entities.end(), entity);
    const auto place = std::size_t(found - m_entities.begin());
    m_entities.erase(found);
    OssShaderNetwork *first = m_entities.front()->shadingGroups().first()->network();
    const QList<OssShadingGroup *> groups = entity->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        if (networks->currentShaderNetwork() == group->network()) {
            networks->setCurrentShaderNetwork(first);
            networks->setCurrentViewNetwork(first);
            networks->setCurrentViewerNode(first->viewerNode());
        }
        const QList<OssSnBaseNode *> nodes = group->network()->nodes();
        for (OssSnBaseNode *node : nodes)
            networks->deregisterNode(group->network(), node);
    }
    Q_EMIT entitiesChanged();
    return place;
}

QList<OssShadingGroup *> OssProject::shadingGroups() const
{
    QList<OssShadingGroup *> groups;
    for (const auto &entity : m_entities)
        groups.append(entity->shadingGroups());
    return groups;
}

QStringList OssProject::pixelFiles() const
{
    QStringList files;
    const QList<OssShadingGroup *> groups = shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const QList<OssImageSet *> sets = group->imageSets();
        for (const OssImageSet *set : sets)
            files += set->pixels().values();
    }
    for (const auto &entity : m_entities) {
        const QString kept = OssMeshes::instance()->keptFile(entity->source());
        if (!kept.isEmpty())
            files.append(kept);
    }
    files.sort();
    files.removeDuplicates();
    return files;
}

QByteArray OssProject::stateHash()
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer, false);
    serializer.setCanonical(true);
    save(serializer, name(), {});
    return QCryptographicHash::hash(buffer.data(), QCryptographicHash::Sha256).toHex();
}

bool OssProject::saveObjects(OssSerializer &serializer)
{
    const bool saved = OssObjectCollection::save(serializer, EntitiesCollection,
                                                 QStringLiteral("OssGeoEntity"), m_entities);
    if (m_images.empty())
        return saved;
    return OssObjectCollection::save(
               serializer, ImagesCollection, QStringLiteral("OssImage"), m_images,
               [](const OssImage &image) { return image.uniqueId().toString(); })
           && saved;
}

bool OssProject::onLoadCollection(const QString &name, const QString &type,
                                  const QString &elementType, int count,
                                  const Attributes &attributes)
{
    return name == EntitiesCollection || name == ImagesCollection
           || OssEntity::onLoadCollection(name, type, elementType, count, attributes);
}

OssSerializableObject *OssProject::onLoadCollectionObject(OssDeserializer &deserializer,
                                                          const QString &name, const QString &type,
                                                          const Attributes &)
{
    if (type != QLatin1String("OssImage"))
        return insertEntity(std::make_shared<OssGeoEntity>(name), m_entities.size());
    const OssImageUniqueId id = OssImageUniqueId::fromString(name);
    if (id.isNull()) {
        deserializer.raiseError(tr("\"%1\" is no id of an image").arg(name));
        return nullptr;
    }
    m_images.push_back(std::make_shared<OssImage>(id));
    return m_images.back().get();
}

// --- images

QList<OssImage *> OssProject::images() const
{
    QList<OssImage *> list;
    for (const auto &image : m_images)
        list.append(image.get());
    return list;
}

QList<int> OssProject::newResolutions()
{
    return {256, 512, 1024, 2048, 4096, 8192, 16384};
}

void OssProject::setNewResolution(int resolution)
{
    if (resolution == m_newResolution || !newResolutions().contains(resolution))
        return;
    const int before = std::exchange(m_newResolution, resolution);
    OssUndoManager::instance()->record(
        tr("Size of New Images"), [this, before] { m_newResolution = before; },
        [this, resolution] { m_newResolution = resolution; });
}

// --- colours

void OssProject::takeColors(const OssColorSettings &colors)
{
    m_colors = colors;
    if (OssProjectManager::instance()->currentProject() == this)
        OssColorManagement::instance()->use(m_colors);
}

void OssProject::setColors(const OssColorSettings &colors)
{
    if (colors == m_colors)
        return;
    const OssColorSettings before = m_colors;
    takeColors(colors);
    OssUndoManager::instance()->record(
        tr("Color Settings"), [this, before] { takeColors(before); },
        [this, colors] { takeColors(colors); });
}

void OssProject::setColorConfig(const QString &config)
{
    OssColorSettings colors = m_colors;
    colors.config = config;
    setColors(colors);
}

void OssProject::renameColorConfig(const QString &path)
{
    if (path == m_colors.config)
        return;
    const QString before = std::exchange(m_colors.config, path);
    OssUndoManager::instance()->record(
        tr("Keep Paths of Files"), [this, before] { m_colors.config = before; },
        [this, path] { m_colors.config = path; });
}

void OssProject::setWorkingSpace(const QString &space)
{
    OssColorSettings colors = m_colors;
    colors.working = space;
    setColors(colors);
}

void OssProject::setFileRules(const QStringList &rules)
{
    OssColorSettings colors = m_colors;
    colors.fileRules = rules;
    setColors(colors);
}

OssImage *OssProject::addImage(const QString &path, const QString &category)
{
    const auto image = std::make_shared<OssImage>(OssImageUniqueId::create());
    image->setPath(path);
    image->setCategory(category);
    m_images.push_back(image);
    OssUndoManager::instance()->record(
        tr("Add Image %1").arg(image->name()),
        [this, image] { m_images.erase(std::find(m_images.begin(), m_images.end(), image)); },
        [this, image] { m_images.push_back(image); });
    return image.get();
}
