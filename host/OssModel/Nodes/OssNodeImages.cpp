#include "OssModel/Graph/OssNodeImages.h"

#include "OssCore/Documents/OssDeserializer.h"
#include "OssCore/Documents/OssObjectCollection.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssShadingContext.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

namespace {

const QString ProjectAttribute = QStringLiteral("project");
const QString SetsCollection = QStringLiteral("m_imageSets");

QString tr(const char *text, int count = -1)
{
    return QCoreApplication::translate("OssNodeImages", text, nullptr, count);
}

QList<OssSnImageSetNodeBase *> imageNodesAmong(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnImageSetNodeBase *> found;
    for (OssSnBaseNode *node : nodes) {
        if (auto *images = qobject_cast<OssSnImageSetNodeBase *>(node))
            found.append(images);
        if (const auto *group = qobject_cast<OssSnGroupNode *>(node))
            found.append(imageNodesAmong(group->groupNetwork()->nodes()));
    }
    return found;
}

QList<OssImageSet *> setsOf(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssImageSet *> sets;
    const QList<OssSnImageSetNodeBase *> images = imageNodesAmong(nodes);
    for (const OssSnImageSetNodeBase *node : images) {
        OssImageSet *set = node->imageSet();
        if (set && !sets.contains(set))
            sets.append(set);
    }
    return sets;
}

/// Brings pixel files from another project, while events go on.
void bring(const QStringList &files, const QString &project)
{
    if (files.isEmpty() || project.isEmpty())
        return;
    const OssStatusManager::Work work(tr("Copying pixels"), OssStatusManager::Blocking);
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        for (const QString &file : files) {
            // What is not there, or is not what it is called, is missed by who looks for it.
            if (!OssPixelStore::bring(file, project))
                continue;
        }
    }));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    loop.exec();
    thread->wait();
}

/// The set's pixels as far as they can be had here.
QMap<int, QString> pixelsAtHand(const OssImageSet *set, const QString &project)
{
    const auto isHere = [](const QString &file) {
        return !OssPixelStore::find(file, OssPixelStore::projectFolder()).isEmpty();
    };
    QMap<int, QString> pixels = set->pixels();
    QStringList elsewhere;
    for (const QString &file : qAsConst(pixels)) {
        if (!isHere(file))
            elsewhere.append(file);
    }
    bring(elsewhere, project);
    for (auto at = pixels.begin(); at != pixels.end();)
        at = isHere(at.value()) ? std::next(at) : pixels.erase(at);
    return pixels;
}

void tellOfLoss(const OssSnBaseNode *node)
{
    const QString text = tr("%1 has no pixels, or not all of them: they were not found")
                             .arg(node->name());
    OssDebug("OssNodeImages", __LINE__, "[ !! ] %s", qPrintable(text));
    OssStatusManager::instance()->showMessage(text);
}

} // namespace

OssNodeImages::OssNodeImages() = default;
OssNodeImages::~OssNodeImages() = default;

void OssNodeImages::bakePaint(const QList<OssSnBaseNode *> &nodes)
{
    OssCanvasWidget *canvas = OssCanvasManager::instance()->currentCanvas();
    if (!canvas)
        return;
    const QList<OssImageSet *> sets = setsOf(nodes);
    for (OssImageSet *set : sets)
        canvas->handleBakeBehavior(set);
}

void OssNodeImages::write(OssSerializer &serializer, const QList<OssSnBaseNode *> &nodes)
{
    const QList<OssImageSet *> sets = setsOf(nodes);
    if (sets.isEmpty())
        return;
    OssSerializer::Attributes origin;
    if (!OssPixelStore::projectFolder().isEmpty())
        origin.insert(ProjectAttribute, OssPixelStore::projectFolder());
    serializer.beginObject(elementName(), QStringLiteral("OssShadingContext"), origin);
    OssObjectCollection::save(serializer, SetsCollection, QStringLiteral("OssImageSet"), sets);
    serializer.endObject();
}

void OssNodeImages::read(OssDeserializer &reader)
{
    m_project = reader.attribute(ProjectAttribute);
    m_sets = std::make_unique<OssShadingContext>(QString(), nullptr);
    reader.loadObject(m_sets.get());
}

void OssNodeImages::give(const OssShaderNetwork *copies, const OssShaderNetwork *target) const
{
    OssShadingContext *shading = target->shadingContext();
    if (!shading)
        return;
    QHash<QString, OssImageSet *> made;
    const QList<OssSnImageSetNodeBase *> nodes = imageNodesAmong(copies->nodes());
    for (OssSnImageSetNodeBase *node : nodes) {
        const QString name = node->imageSetName();
        if (name.isEmpty())
            continue;
        const OssImageSet *original = m_sets ? m_sets->findImageSet(name) : nullptr;
        if (original && !made.contains(name)) {
            OssImageSet *own = original->duplicate(shading->freeImageSetName(name));
            const OssUndoManager::Pause pause;
            own->setPixels(pixelsAtHand(original, m_project));
            made.insert(name, own);
        }
        OssImageSet *own = made.value(name);
        if (own)
            shading->addImageSet(own); // takes it
        const bool isWhole = own && own->pixels() == original->pixels();
        const OssUndoManager::Pause pause; // the nodes are in no document yet
        node->takeImageSet(own);
        if (isWhole)
            continue;
        tellOfLoss(node);
        if (auto *bakePoint = qobject_cast<OssSnBakePointNode *>(node))
            bakePoint->setBakedKey({});
    }
}
