#pragma once

#include "../support/ModelFixture.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Export/OssExportManager.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <vector>

inline QString text(const char *words)
{
    return QString::fromUtf8(words);
}

inline OssExportPreset presetOf(const char *files)
{
    OssExportPreset preset;
    const QByteArray xml = QByteArray("<ExportPreset Name=\"Test\">") + files + "</ExportPreset>";
    const OssResult read = OssExportPreset::read(xml, text("test.xml"), &preset);
    EXPECT_TRUE(read) << qPrintable(read.error());
    return preset;
}

/// Textures written of a material, and read with another library's eyes.
class Export : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_shader = add("Shaders/Standard Surface", "Wall");
        m_entity = m_network->geoEntity();
        m_entity->setName(text("plane"));
        m_options.folder = m_folder.path();
        m_options.resolution = 64;
    }

    OssSnBaseNode *color(double red, double green, double blue, double alpha = 1.0)
    {
        OssSnBaseNode *node = add("Procedural/Color");
        node->setAttribute(text("Color"), QVariant::fromValue(OssColor(red, green, blue, alpha)));
        return node;
    }

    /// Two patches beside each other, each covered in its middle.
    void usePatches()
    {
        QFile file(m_folder.filePath(text("patches.obj")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0.25 0.25\nvt 0.75 0.25\nvt 0.75 0.75\n"
                   "vt 0.25 0.75\nvt 1.25 0.25\nvt 1.75 0.25\nvt 1.75 0.75\nvt 1.25 0.75\n"
                   "f 1/1 2/2 3/3 4/4\nf 1/5 2/6 3/7 4/8\n");
        file.close();
        m_entity->setGeometry(file.fileName());
        m_options.patches = {1001};
        EXPECT_TRUE(plan(presetOf("<File Name='a' Format='png'><Channel To='R' Value='1'/></File>"))
                        .error()
                        .contains(text("still being read")));
        m_options.patches.clear();
        OssExportPlan::waitForMeshes(m_project);
    }

    OssResult plan(const OssExportPreset &preset)
    {
        return OssExportPlan::make(m_project, preset, m_options, &m_plan);
    }

    OssResult write(const OssExportPreset &preset)
    {
        const OssResult planned = plan(preset);
        return planned ? OssExportManager::instance()->run(m_plan, {}) : planned;
    }

    QStringList names() const
    {
        QStringList found;
        for (const OssExportFile &file : m_plan.files)
            found.append(QDir(m_options.folder).relativeFilePath(file.path));
        return found;
    }

    /// As the numbers stand in the file.
    OIIO::ImageBuf read(const char *name) const
    {
        OIIO::ImageSpec config;
        config["oiio:UnassociatedAlpha"] = 1;
        OIIO::ImageBuf image(m_folder.filePath(text(name)).toStdString(), 0, 0, nullptr, &config);
        EXPECT_TRUE(image.read(0, 0, true, OIIO::TypeDesc::FLOAT)) << name << image.geterror();
        return image;
    }

    std::vector<float> mean(const char *name) const
    {
        return OIIO::ImageBufAlgo::computePixelStats(read(name)).avg;
    }

    static void expectNear(const std::vector<float> &found, const std::vector<float> &wanted,
                           float tolerance = 0.003F)
    {
        ASSERT_EQ(found.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i)
            EXPECT_NEAR(found[i], wanted[i], tolerance) << "channel " << i;
    }

    QTemporaryDir m_folder;
    OssSnBaseNode *m_shader = nullptr;
    OssGeoEntity *m_entity = nullptr;
    OssExportOptions m_options;
    OssExportPlan m_plan;
};
