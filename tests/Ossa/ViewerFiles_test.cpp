#include "Ossa/Viewer/ViewerHint.h"
#include "Ossa/Viewer/ViewerSource.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// What the Viewer shows while files change on disk.
class ViewerFiles : public ModelFixture
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    void paint(const QColor &color) const
    {
        QImage picture(16, 16, QImage::Format_RGB32);
        picture.fill(color);
        ASSERT_TRUE(picture.save(path("wall.png")));
    }

    void writeMesh(int patches) const
    {
        QFile mesh(path("wall.obj"));
        ASSERT_TRUE(mesh.open(QIODevice::WriteOnly));
        mesh.write("v 0 0 0\nv 1 0 0\nv 0 1 0\n");
        for (int i = 0; i < patches; ++i)
            mesh.write(QStringLiteral("vt %1.1 0.1\nvt %1.9 0.1\nvt %1.1 0.9\nf 1/%2 2/%3 3/%4\n")
                           .arg(i)
                           .arg(3 * i + 1)
                           .arg(3 * i + 2)
                           .arg(3 * i + 3)
                           .toLatin1());
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ViewerFiles, picturesAndShapesThatChangeOnDiskAreShown)
{
    paint(Qt::red);
    writeMesh(1);
    m_network->geoEntity()->setGeometry(path("wall.obj"));
    OssSnBaseNode *image = add("Misc/Image");
    image->setAttribute(QStringLiteral("File"), path("wall.png"));
    ViewerSource source;
    QList<int> patches;
    QColor shown;
    QObject::connect(&source, &ViewerSource::began, &source,
                     [&](const QList<int> &all) { patches = all; });
    QObject::connect(&source, &ViewerSource::tileArrived, &source,
                     [&](int, int, const QPoint &, const QImage &picture) {
                         shown = picture.pixelColor(20, 20);
                     });
    source.setResolution(64);
    m_network->viewerNode()->setInputNode(QStringLiteral("1"), image, QStringLiteral("Output"));
    m_network->setViewerNodeCurrentEdge(1, true);
    source.setActive(true);
    const auto comesToBe = [&](const QColor &color, int count) {
        return QTest::qWaitFor([&] { return shown == color && patches.size() == count; }, 10000);
    };
    ASSERT_TRUE(comesToBe(Qt::red, 1)) << qPrintable(shown.name()) << patches.size();
    OssUndoManager::instance()->clear();
    paint(Qt::green);
    EXPECT_TRUE(comesToBe(Qt::green, 1)) << qPrintable(shown.name());
    writeMesh(3);
    EXPECT_TRUE(comesToBe(Qt::green, 3)) << patches.size();
    EXPECT_EQ(undoCount(), 0) << "files are no edits";
}

namespace {

/// What the Viewer says where it has no picture.
class ViewerHints : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_network->geoEntity()->setGeometry(text("plane"));
        QObject::connect(&m_source, &ViewerSource::began, &m_source,
                         [this](const QList<int> &, const QString &, const QString &problem) {
                             m_said = problem;
                         });
        m_source.setResolution(64);
        m_source.setActive(true);
    }

    bool comesToSay(const char *words)
    {
        return QTest::qWaitFor([&] { return m_said.contains(text(words)); });
    }

    bool comesToShow()
    {
        return QTest::qWaitFor([&] { return m_said.isEmpty(); });
    }

    ViewerSource m_source;
    QString m_said;
};

TEST_F(ViewerHints, anInputThatIsSwitchedOffIsSaidToBeThat)
{
    OssSnBaseNode *viewer = m_network->viewerNode();
    OssSnBaseNode *color = add("Procedural/Color");
    OssSnBaseNode *dot = add("Misc/Dot");
    const QString input = dot->inputNames().first();
    EXPECT_TRUE(comesToSay("Nothing is connected"));
    m_network->setViewerNodeCurrentEdge(1, true);
    dot->setInputNode(input, color, color->prefferedOutputPoint());
    viewer->setInputNode(text("1"), dot, dot->prefferedOutputPoint());
    EXPECT_TRUE(comesToShow()) << qPrintable(m_said);
    const std::pair<OssSnBaseNode *, QString> ends[] = {{viewer, text("1")}, {dot, input}};
    for (const auto &[node, name] : ends) {
        node->setInputEnabled(name, false);
        EXPECT_TRUE(comesToSay("switched off")) << qPrintable(m_said);
        EXPECT_TRUE(m_said.contains(node->name()));
        EXPECT_TRUE(m_said.contains(text("Toggle Wire"))) << "how it comes back";
        EXPECT_TRUE(ViewerHint::whyBare().contains(text("switched off"))) << "on the object, too";
        node->setInputEnabled(name, true);
        EXPECT_TRUE(comesToShow()) << qPrintable(m_said);
    }
    viewer->setInputEnabled(text("1"), false);
    viewer->setInputNode(text("1"), nullptr, QString());
    EXPECT_TRUE(comesToSay("Nothing is connected")) << "there is no wire to switch on";
}

} // namespace
