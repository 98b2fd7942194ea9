#include "OssModel/Evaluation/OssProblems.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Images/OssUdimPath.h"
#include "OssModel/Nodes/OssNodeFiles.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssMeshes.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

constexpr int Soon = 200;         ///< milliseconds
constexpr int RegularLook = 3000; ///< milliseconds

/// Starts the name of what is no file of the user's but pixels of an image set, by their name.
const QString PixelMark = QStringLiteral("pixels:");

bool computes(const OssSnBaseNode *node)
{
    const OssSnNodeType *type = node->nodeType();
    return type && !type->kernel.isEmpty();
}

/// A group's knob names the same file as the node inside.
QStringList filesOf(const OssSnBaseNode *node)
{
    QStringList files;
    if (!computes(node))
        return files;
    const QVector<OssCustomAttribute> attributes = node->userAttributes();
    for (const OssCustomAttribute &attribute : attributes)
        files += OssNodeFiles::of(attribute);
    if (const OssImageSet *images = OssShaderNetworkUtils::imageSetOf(node)) {
        const QMap<int, QString> pixels = images->pixels();
        for (const QString &name : pixels)
            files.append(PixelMark + name);
    }
    files.removeAll(QString());
    return files;
}

/// Any thread.
bool isThere(const QString &file, const QString &projectFolder)
{
    if (file.startsWith(PixelMark))
        return !OssPixelStore::find(file.mid(PixelMark.size()), projectFolder).isEmpty();
    return OssUdimPath::isPattern(file) ? !OssUdimPath::patches(file).isEmpty()
                                        : QFileInfo::exists(file);
}

/// What the node and everything that feeds it are like; empty as long as not all is known.
QString stateOf(const OssSnBaseNode *node)
{
    bool isAllKnown = true;
    QString state;
    const auto add = [&](const OssSnBaseNode *source, const QString &outputPoint) {
        bool isKnown = true;
        state += OssSnResultKey::of(source, outputPoint, &isKnown) + QLatin1Char(' ');
        isAllKnown = isAllKnown && isKnown;
    };
    add(node, node->prefferedOutputPoint());
    // What has pixels of its own does not depend on its inputs, but its bakes do.
    for (const OssSnBaseNode::InputPort &port : node->inputPorts())
        add(node->inputNode(port.name), node->inputOutputPoint(port.name));
    return isAllKnown ? state : QString();
}

} // namespace

OssProblems::OssProblems()
{
    m_worker.setMaxThreadCount(1);
    m_soon.setSingleShot(true);
    m_soon.setInterval(Soon);
    connect(&m_soon, &QTimer::timeout, this, &OssProblems::look);
    m_regular.setInterval(RegularLook);
    connect(&m_regular, &QTimer::timeout, this, &OssProblems::look);
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &OssProblems::lookSoon);
    connect(OssFileWatch::instance(), &OssFileWatch::changed, this, &OssProblems::lookSoon);
    connect(OssMeshes::instance(), &OssMeshes::changed, this, &OssProblems::lookSoon);
    const auto *networks = OssShaderNetworkManager::instance();
    connect(networks, &OssShaderNetworkManager::shaderNetworkAdded, this,
            [this](OssShaderNetwork *network) {
                m_networks.removeAll(nullptr);
                if (!m_networks.contains(network))
                    m_networks.append(network);
                connect(network, &QObject::destroyed, this, &OssProblems::lookSoon,
                        Qt::UniqueConnection);
                lookSoon();
            });
}

OssProblems::~OssProblems()
{
    m_worker.waitForDone();
}

QVector<OssSnBaseNode *> OssProblems::allNodes() const
{
    QVector<OssSnBaseNode *> all;
    for (const QPointer<OssShaderNetwork> &network : m_networks) {
        if (network)
            all += network->getAllNodes().toVector();
    }
    return all;
}

QVector<OssProblems::Problem> OssProblems::problems() const
{
    QVector<Problem> list;
    if (m_entries.isEmpty())
        return list;
    const QVector<OssSnBaseNode *> nodes = allNodes();
    for (OssSnBaseNode *node : nodes) {
        const auto entry = m_entries.constFind(node);
        if (entry == m_entries.cend() || entry->node != node)
            continue;
        const QMap<Kind, QString> reasons = worthTelling(*entry);
        for (auto at = reasons.cbegin(); at != reasons.cend(); ++at)
            list.append({node, node->path(), at.key(), at.value()});
    }
    return list;
}

QString OssProblems::reason(const OssSnBaseNode *node) const
{
    const auto entry = m_entries.constFind(node);
    if (entry == m_entries.cend() || entry->node != node)
        return {};
    return QStringList(worthTelling(*entry).values()).join(QLatin1Char('\n'));
}

/// Without what fails because a file is missing, which is said already.
QMap<OssProblems::Kind, QString> OssProblems::worthTelling(const Entry &entry) const
{
    QMap<Kind, QString> reasons = entry.reasons;
    if (!reasons.contains(File))
        return reasons;
    for (const QString &file : m_missing) {
        for (const Kind kind : {Evaluation, Bake}) {
            if (reasons.value(kind).contains(QLatin1Char('"') + file + QLatin1Char('"')))
                reasons.remove(kind);
        }
    }
    return reasons;
}

bool OssProblems::set(OssSnBaseNode *node, Kind kind, const QString &reason)
{
    auto entry = m_entries.find(node);
    if (entry != m_entries.end() && entry->node != node) { // another was at that address
        m_entries.erase(entry);
        entry = m_entries.end();
    }
    const QString before = entry == m_entries.end() ? QString() : entry->reasons.value(kind);
    if (before == reason)
        return false;
    if (reason.isEmpty()) {
        entry->reasons.remove(kind);
        entry->keys.remove(kind);
        if (entry->reasons.isEmpty())
            m_entries.erase(entry);
        return true;
    }
    Entry &kept = m_entries[node];
    kept.node = node;
    kept.reasons.insert(kind, reason);
    return true;
}

void OssProblems::report(const OssSnBaseNode *node, Kind kind, const QString &reason)
{
    auto *known = const_cast<OssSnBaseNode *>(node); // it is told of, and not changed
    if (!known)
        return;
    const bool isOther = set(known, kind, reason);
    if (!reason.isEmpty())
        m_entries[known].keys.insert(kind, stateOf(known));
    if (isOther)
        tell({known});
    tellList();
}

void OssProblems::tell(const QSet<OssSnBaseNode *> &nodes)
{
    for (OssSnBaseNode *node : nodes)
        Q_EMIT nodeChanged(node);
}

void OssProblems::tellList()
{
    // Nodes come and go, too, and are renamed.
    QVector<Problem> now = problems();
    if (now == m_told)
        return;
    m_told = std::move(now);
    Q_EMIT changed();
}

// --- looking

void OssProblems::lookSoon()
{
    if (!m_soon.isActive())
        m_soon.start();
}

void OssProblems::look()
{
    m_networks.removeAll(nullptr);
    forgetOldFailures();
    QSet<QString> files;
    lookAtNodes(&files);
    if (files.isEmpty())
        m_regular.stop();
    else if (!m_regular.isActive())
        m_regular.start();
    lookAtFiles(files);
    tellList();
}

void OssProblems::forgetOldFailures()
{
    QSet<OssSnBaseNode *> told;
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        OssSnBaseNode *node = entry->node;
        if (!node) {
            entry = m_entries.erase(entry);
            continue;
        }
        const QList<Kind> kinds = entry->keys.keys();
        for (const Kind kind : kinds) {
            const QString state = stateOf(node);
            QString &then = entry->keys[kind];
            if (then.isEmpty()) {
                then = state;
            } else if (!state.isEmpty() && then != state) {
                entry->keys.remove(kind);
                entry->reasons.remove(kind);
                told.insert(node);
            }
        }
        entry = entry->reasons.isEmpty() ? m_entries.erase(entry) : ++entry;
    }
    tell(told);
}

/// What is wrong as far as it is known, and the files that are named.
void OssProblems::lookAtNodes(QSet<QString> *files)
{
    QSet<OssSnBaseNode *> told;
    const QVector<OssSnBaseNode *> nodes = allNodes();
    for (OssSnBaseNode *node : nodes) {
        QStringList gone;
        const QStringList named = filesOf(node);
        for (const QString &file : named) {
            files->insert(file);
            if (!m_missing.contains(file))
                continue;
            gone.append(
                file.startsWith(PixelMark)
                    ? tr("Pixels of its images are missing: %1").arg(file.mid(PixelMark.size()))
                    : tr("%1 is missing").arg(QDir::toNativeSeparators(file)));
        }
        const bool isOther = set(node, Type, node->errorText());
        if (set(node, File, gone.join(QLatin1Char('\n'))) || isOther)
            told.insert(node);
    }
    tell(told);
}

void OssProblems::lookAtFiles(const QSet<QString> &files)
{
    m_isDue = m_isLooking;
    if (m_isLooking)
        return;
    if (files.isEmpty()) {
        takeMissing({});
        return;
    }
    m_isLooking = true;
    m_worker.start([this, files, folder = OssPixelStore::projectFolder()] {
        QSet<QString> missing;
        for (const QString &file : files) {
            if (!isThere(file, folder))
                missing.insert(file);
        }
        QMetaObject::invokeMethod(
            this,
            [this, missing] {
                m_isLooking = false;
                takeMissing(missing);
                if (m_isDue)
                    lookSoon();
            },
            Qt::QueuedConnection);
    });
}

void OssProblems::takeMissing(const QSet<QString> &missing)
{
    if (missing == m_missing)
        return;
    m_missing = missing;
    QSet<QString> files;
    lookAtNodes(&files);
    tellList();
}
