#include "OssModel/Export/OssExportPlan.h"

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"

#include <QCoreApplication>
#include <QDir>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace {

using Channel = OssExportPreset::Channel;
using File = OssExportPreset::File;

constexpr int LargestResolution = 16384;
constexpr int MostFiles = 100000;
const QStringList Letters{QStringLiteral("Red"), QStringLiteral("Green"), QStringLiteral("Blue"),
                          QStringLiteral("Alpha")};

QString tr(const char *text)
{
    return QCoreApplication::translate("OssExportPlan", text);
}

QString cleaned(const QString &text)
{
    QString name = text;
    return name.replace(QRegularExpression(QStringLiteral("[^\\w.-]+")), QStringLiteral("_"));
}

/// Makes the names of the files of one material.
class Namer
{
public:
    struct Token
    {
        QString text;
        bool tellsApart;
    };

    void set(const QString &token, const QString &text, bool tellsApart)
    {
        m_tokens.insert(token, {text, tellsApart});
    }

    QString name(const QString &pattern) const
    {
        QString result;
        QString optional;
        bool isOptional = false;
        bool isWanted = false;
        for (int i = 0; i < pattern.size();) {
            if (pattern.at(i) == QLatin1Char('[') || pattern.at(i) == QLatin1Char(']')) {
                if (isOptional && isWanted)
                    result += optional;
                isOptional = pattern.at(i) == QLatin1Char('[');
                isWanted = false;
                optional.clear();
                ++i;
                continue;
            }
            const QString token = tokenAt(pattern, i);
            const Token known = m_tokens.value(token, {pattern.mid(i, 1), false});
            isWanted = isWanted || known.tellsApart;
            (isOptional ? optional : result) += known.text;
            i += token.isEmpty() ? 1 : token.size();
        }
        return result;
    }

private:
    QString tokenAt(const QString &pattern, int at) const
    {
        const QStringList tokens = OssExportPreset::tokens();
        const auto found = std::find_if(tokens.cbegin(), tokens.cend(), [&](const QString &token) {
            return pattern.midRef(at).startsWith(token);
        });
        return found == tokens.cend() ? QString() : *found;
    }

    QHash<QString, Token> m_tokens;
};

class Planner
{
public:
    Planner(const OssProject *project, const OssExportPreset &preset,
            const OssExportOptions &options, OssExportPlan *plan)
        : m_project(project)
        , m_preset(preset)
        , m_plan(plan)
        , m_options(options)
    {
        m_plan->options = options;
        m_plan->preset = preset;
    }

    OssResult run()
    {
        OssResult result = m_preset.check();
        if (result)
            result = checkOptions();
        if (result)
            result = chooseMaterials();
        for (const OssExportMaterial &material : qAsConst(m_materials)) {
            if (result)
                result = addMaterial(material);
        }
        if (result && m_plan->files.isEmpty())
            result = OssResult::failure(
                tr("There is nothing to export: no material has what \"%1\" writes")
                    .arg(m_preset.name));
        return result;
    }

private:
    OssResult checkOptions() const
    {
        if (m_options.folder.isEmpty())
            return OssResult::failure(tr("Choose a folder for the textures"));
        if (m_options.resolution < 1 || m_options.resolution > LargestResolution)
            return OssResult::failure(
                tr("No texture has %1 texels a side").arg(m_options.resolution));
        if (m_options.version < 0)
            return OssResult::failure(tr("There is no version %1").arg(m_options.version));
        return {};
    }

    OssResult chooseMaterials()
    {
        const QVector<OssExportMaterial> all = OssExportMaterial::of(m_project);
        if (all.isEmpty())
            return OssResult::failure(
                tr("There is no material to export: connect something to a shader, such as "
                   "Shaders/Standard Surface"));
        const auto isEach = [](const File &file) {
            return file.isEach;
        };
        if (!m_options.channels.isEmpty()
            && std::none_of(m_preset.files.cbegin(), m_preset.files.cend(), isEach))
            return OssResult::failure(
                tr("\"%1\" says itself which channels go where: choose channels of a preset with a file "
                   "for each")
                    .arg(m_preset.name));
        QStringList missing = m_options.materials;
        QStringList unknown = m_options.channels;
        for (const OssExportMaterial &material : all) {
            missing.removeAll(material.path());
            for (const OssExportMaterial::Channel &channel : material.channels)
                unknown.removeAll(channel.name);
            if (m_options.materials.isEmpty() || m_options.materials.contains(material.path()))
                m_materials.append(material);
        }
        if (!missing.isEmpty())
            return OssResult::failure(tr("There is no material \"%1\"").arg(missing.first()));
        return unknown.isEmpty() ? OssResult()
                                 : OssResult::failure(
                                     tr("No material has a channel \"%1\"").arg(unknown.first()));
    }

    OssResult addMaterial(const OssExportMaterial &material)
    {
        const OssMeshes::Look shape = OssMeshes::instance()->look(material.entity->source());
        if (shape.state == OssMeshes::State::Reading)
            return OssResult::failure(
                tr("%1: its mesh is still being read").arg(material.object()));
        if (!shape.mesh)
            return OssResult::failure(material.object() + QStringLiteral(": ") + shape.problem);
        const QList<int> all = OssEvaluationService::instance()->patches(material.entity);
        for (const int patch : m_options.patches) {
            if (!all.contains(patch))
                return OssResult::failure(
                    tr("%1: there is no patch %2").arg(material.object()).arg(patch));
        }
        const QList<int> patches = m_options.patches.isEmpty() ? all : m_options.patches;
        for (m_index = 0; m_index < m_preset.files.size(); ++m_index) {
            const File &file = m_preset.files.at(m_index);
            for (const File &one : file.isEach ? each(file, material) : QVector<File>{file}) {
                const File complete = completed(one, material);
                for (const int patch : patches) {
                    const OssResult added = addFile(complete, material, patch, all.size() > 1);
                    if (!added)
                        return added;
                }
            }
        }
        return {};
    }

    /// A file for each channel.
    QVector<File> each(const File &file, const OssExportMaterial &material) const
    {
        QVector<File> files;
        for (const OssExportMaterial::Channel &channel : material.channels) {
            if (!m_options.channels.isEmpty() && !m_options.channels.contains(channel.name))
                continue;
            if (!channel.isFed && !m_options.writesConstants)
                continue;
            File one = file;
            const std::size_t count = channel.kind == OssSnDataKind::Scalar ? 1 : 3;
            for (std::size_t i = 0; i < count; ++i) {
                one.channels[i].isUsed = true;
                one.channels[i].from = channel.name;
            }
            files.append(one);
        }
        return files;
    }

    /// With nothing left open, for this material.
    File completed(const File &file, const OssExportMaterial &material)
    {
        File result = file;
        const auto *format = OssEvImageFormat::ofFile("a." + file.format.toStdString());
        if (!result.form.depth)
            result.form.depth = format->depths.front();
        for (std::size_t i = 0; i < result.channels.size(); ++i) {
            Channel &channel = result.channels[i];
            if (!channel.isUsed || channel.from.isEmpty())
                continue;
            const OssExportMaterial::Channel *known = material.channel(channel.from);
            if (!known) {
                note(tr("%1 has no \"%2\": %3 is written")
                         .arg(material.name(), channel.from)
                         .arg(channel.value));
                channel.from.clear();
                continue;
            }
            if (known->kind == OssSnDataKind::Scalar)
                channel.component = Letters.first();
            else if (channel.component.isEmpty())
                channel.component = Letters.at(int(i));
            // The green of a normal tells which way is up.
            if (file.flipsNormals && known->kind == OssSnDataKind::Vector
                && channel.component == Letters.at(1))
                channel.inverts = !channel.inverts;
        }
        if (!format->hasAlpha && result.channels[3].isUsed) {
            note(tr("%1 files have no alpha: it is left out of \"%2\"")
                     .arg(QString::fromLatin1(format->name.data(), int(format->name.size())),
                          file.name));
            result.channels[3] = {};
        }
        return result;
    }

    static bool holdsColors(const File &file, const OssExportMaterial &material)
    {
        return std::all_of(file.channels.begin(), file.channels.begin() + 3, [&](const auto &one) {
            const OssExportMaterial::Channel *known = material.channel(one.from);
            return known && known->kind == OssSnDataKind::Color
                   && one.component != QLatin1String("Alpha");
        });
    }

    OssResult addFile(const File &how, const OssExportMaterial &material, int patch,
                      bool hasPatches)
    {
        OssExportFile file;
        file.how = how;
        file.material = material;
        file.index = m_index;
        file.patch = patch;
        file.resolution = how.resolution > 0 ? how.resolution : m_options.resolution;
        file.padding = how.padding.value_or(m_options.padding);
        file.isData = how.form.space == "Raw" || !holdsColors(how, material);
        const QString pattern = how.name + QLatin1Char('.') + how.format;
        file.path = QDir(m_options.folder)
                        .filePath(namer(how, material, patch, hasPatches).name(pattern));
        const QString other = m_paths.value(file.path);
        const QString what =
            tr("%1, %2, patch %3").arg(material.object(), material.name()).arg(patch);
        if (!other.isEmpty())
            return OssResult::failure(
                tr("Two files would be called \"%1\": of %2, and of %3. Put more into their names")
                    .arg(file.path, other, what));
        m_paths.insert(file.path, what);
        if (m_plan->files.size() >= MostFiles)
            return OssResult::failure(tr("More than %1 files").arg(MostFiles));
        m_plan->files.append(file);
        return {};
    }

    Namer namer(const File &how, const OssExportMaterial &material, int patch,
                bool hasPatches) const
    {
        const auto isOther = [&material](const OssExportMaterial &other) {
            return other.entity != material.entity;
        };
        const bool hasObjects = std::any_of(m_materials.cbegin(), m_materials.cend(), isOther);
        const auto count = std::count_if(m_materials.cbegin(), m_materials.cend(),
                                         [&](const auto &other) { return !isOther(other); });
        Namer namer;
        namer.set(QStringLiteral("$project"), cleaned(m_project->name()), false);
        namer.set(QStringLiteral("$object"), cleaned(material.object()), hasObjects);
        namer.set(QStringLiteral("$material"), cleaned(material.name()), count > 1);
        namer.set(QStringLiteral("$channel"), cleaned(how.channels[0].from), how.isEach);
        namer.set(QStringLiteral("$udim"), QString::number(patch), hasPatches);
        namer.set(QStringLiteral("$version"),
                  QStringLiteral("v%1").arg(m_options.version, 3, 10, QLatin1Char('0')), false);
        return namer;
    }

    void note(const QString &text)
    {
        if (!m_plan->notes.contains(text))
            m_plan->notes.append(text);
    }

    const OssProject *m_project;
    const OssExportPreset &m_preset;
    OssExportPlan *m_plan;
    const OssExportOptions &m_options;
    QVector<OssExportMaterial> m_materials;
    QHash<QString, QString> m_paths; ///< what is in them
    int m_index = 0;                 ///< of the preset's file
};

} // namespace

int OssExportFile::channelCount() const
{
    if (how.channels[3].isUsed)
        return 4;
    return how.channels[1].isUsed ? 3 : 1;
}

QString OssExportFile::depthText() const
{
    const auto name = OssEvDepthNames[std::size_t(how.form.depth.value_or(OssEvDepth::Half))];
    return QString::fromLatin1(name.data(), int(name.size()));
}

QString OssExportFile::spaceText() const
{
    if (isData)
        return tr("Data");
    if (!how.form.space.empty())
        return QString::fromStdString(how.form.space);
    const bool isWhole = how.form.depth == OssEvDepth::Byte || how.form.depth == OssEvDepth::Short;
    return QString::fromStdString(isWhole ? OssEvColorSpaces::Screen
                                          : OssColorManagement::spaces()->working());
}

qint64 OssExportFile::bytes() const
{
    const int each = how.form.depth == OssEvDepth::Byte    ? 1
                     : how.form.depth == OssEvDepth::Float ? 4
                                                           : 2;
    return qint64(resolution) * resolution * channelCount() * each;
}

QString OssExportFile::contentText() const
{
    QStringList names;
    for (const Channel &channel : how.channels) {
        const QString name = channel.from.isEmpty() ? QString::number(channel.value) : channel.from;
        if (channel.isUsed && (names.isEmpty() || names.last() != name))
            names.append(name);
    }
    return names.join(QStringLiteral(", "));
}

qint64 OssExportPlan::bytes() const
{
    qint64 sum = 0;
    for (const OssExportFile &file : files)
        sum += file.bytes();
    return sum;
}

void OssExportPlan::waitForMeshes(const OssProject *project)
{
    const QList<OssGeoEntity *> entities = project->entities();
    for (const OssGeoEntity *entity : entities)
        OssMeshes::instance()->waitFor(entity->source());
}

OssResult OssExportPlan::make(const OssProject *project, const OssExportPreset &preset,
                              const OssExportOptions &options, OssExportPlan *plan)
{
    OssExportPlan made;
    const OssResult result = Planner(project, preset, options, &made).run();
    if (result)
        *plan = made;
    return result;
}
