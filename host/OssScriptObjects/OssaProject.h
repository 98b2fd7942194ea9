#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>
#include <QStringList>
#include <QVariantMap>

#include <functional>

class OssProject;
class OssResult;
struct OssColorSettings;
struct OssExportOptions;
struct OssExportPlan;

namespace Ossa {

class GeoEntity;
class Image;
class NodeGraph;

/// The open project for scripts. It is gone when the project is closed.
class OSSSCRIPTOBJECTS_EXPORT Project : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "A project. It is gone when another one is opened.")
    Q_PROPERTY(QString name READ name)
    Q_PROPERTY(QString path READ path)
    Q_CLASSINFO("path", "The folder NAME.ossa; empty before the project was ever saved.")
    Q_PROPERTY(bool modified READ isModified)
    Q_PROPERTY(bool readOnly READ isReadOnly)
    Q_CLASSINFO("readOnly", "A newer version wrote the project; it can only be looked at.")
    Q_PROPERTY(int newResolution READ newResolution WRITE setNewResolution)
    Q_CLASSINFO("newResolution", "Width and height of new images in pixels, from 256 to 16384.")
    Q_PROPERTY(QString colorConfig READ colorConfig WRITE setColorConfig)
    Q_CLASSINFO("colorConfig", "Path of an OpenColorIO configuration, \"$OCIO\" for that of the "
                               "environment, or empty for the built-in one.")
    Q_PROPERTY(QString workingSpace READ workingSpace WRITE setWorkingSpace)
    Q_CLASSINFO("workingSpace", "Color space in which everything is computed. Colors of nodes keep "
                                "their numbers; changeWorkingSpace() has them look the same.")
    Q_PROPERTY(QStringList fileRules READ fileRules WRITE setFileRules)
    Q_CLASSINFO("fileRules", "In which color spaces image files are, by their names: the first "
                             "\"PATTERN=SPACE\" that fits. The space may be \"Data\".")
    Q_PROPERTY(QString colorProblem READ colorProblem)
    Q_CLASSINFO("colorProblem", "Why something stands in for the configuration or the working "
                                "space; empty when nothing does.")
    Q_CLASSINFO("colorSpaces", "Names of the color spaces of the configuration.")
    Q_CLASSINFO("changeWorkingSpace", "Sets the working space and has the colors of nodes look as "
                                      "before; how many were converted.")
    Q_CLASSINFO("objects", "The objects that are textured.")
    Q_CLASSINFO("object", "By name; None when there is none.")
    Q_CLASSINFO("createObject", "Adds an object with a root graph. Its geometry is \"plane\", "
                                "\"sphere\", \"cube\", \"cylinder\", \"shaderBall\" or a file.")
    Q_CLASSINFO("removeObject", "Takes an object with its graphs out of the project. A project has "
                                "at least one.")
    Q_CLASSINFO("importMesh", "Makes objects of a mesh file: split is \"one\", \"objects\" or "
                              "\"materials\". With unwrap, texture coordinates are made.")
    Q_CLASSINFO("missingFiles", "Paths of meshes and images that the project names and that are "
                                "missing or cannot be read.")
    Q_CLASSINFO("relink", "Has all that names the old path name the new one; how many those were.")
    Q_CLASSINFO("relinkFolder", "Relinks all missing files that lie under their names in or below "
                                "the folder; how many uses of files were changed.")
    Q_CLASSINFO("graphs", "The root graphs of all objects.")
    Q_CLASSINFO("images", "The images of the image list.")
    Q_CLASSINFO("addImage", "Adds an image file; \"<UDIM>\" stands for the patch's number.")
    Q_CLASSINFO("exportPresets", "Names of the presets by which textures are written.")
    Q_CLASSINFO(
        "exportTextures",
        "Writes the textures of the materials as a preset says, a name or a file, and returns "
        "their paths. Options: \"resolution\", \"padding\" (pixels; -1 fills everything), "
        "\"version\", \"patches\" (\"1001-1004\"), \"materials\" "
        "(\"OBJECT/MATERIAL\"), \"channels\", \"constants\".")
    Q_CLASSINFO("exportGltf", "Writes objects and textures as one glTF file (*.glb). Options as of "
                              "exportTextures, without channels and constants.")
    Q_CLASSINFO("save", "Saves the project where it was opened.")
    Q_CLASSINFO("saveAs", "Saves the project as a folder NAME.ossa.")
    Q_CLASSINFO("close", "Closes the project without saving it.")
    Q_CLASSINFO("stateHash", "Equal for equal documents, however they came about.")

public:
    explicit Project(QObject *project);
    ~Project() override;

    QString name() const;
    QString path() const;
    bool isModified() const;
    bool isReadOnly() const;
    int newResolution() const;
    void setNewResolution(int resolution);
    QString colorConfig() const;
    void setColorConfig(const QString &config);
    QString workingSpace() const;
    void setWorkingSpace(const QString &space);
    QStringList fileRules() const;
    void setFileRules(const QStringList &rules);
    QString colorProblem() const;

public Q_SLOTS:
    QList<GeoEntity *> objects() const;
    GeoEntity *object(const QString &name) const;
    GeoEntity *createObject(const QString &name, const QString &geometry);
    void removeObject(Ossa::GeoEntity *object);
    QList<GeoEntity *> importMesh(const QString &path, const QString &split = QStringLiteral("one"),
                                  bool unwrap = false);
    QStringList colorSpaces() const;
    int changeWorkingSpace(const QString &space);
    QStringList missingFiles() const;
    int relink(const QString &oldPath, const QString &newPath);
    int relinkFolder(const QString &folder);
    QList<NodeGraph *> graphs() const;
    QList<Image *> images() const;
    Image *addImage(const QString &path);
    QStringList exportPresets() const;
    QStringList exportTextures(const QString &preset, const QString &folder,
                               const QVariantMap &options = {}) const;
    void exportGltf(const QString &path, const QVariantMap &options = {}) const;
    void save();
    void saveAs(const QString &path);
    void close();
    QString stateHash() const;

private:
    int changeColors(const OssColorSettings &colors, bool converts);
    QStringList write(const QVariantMap &options, OssExportOptions *choices,
                      const std::function<OssResult(const OssProject *)> &makePlan,
                      const OssExportPlan *plan) const;
};

} // namespace Ossa
