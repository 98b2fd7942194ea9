#pragma once

#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/UvView.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/OssaFiles.h"
#include "support/Text.h"

#include <QDir>

#include <memory>

/// A cube, a node to paint on with images of 64 texels, and the 2-D view as the canvas.
class PaintFixture : public ModelFixture
{
protected:
    static constexpr int Resolution = 64;

    void SetUp() override
    {
        ModelFixture::SetUp();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
        m_network->geoEntity()->setGeometry(text("cube"));
        m_paint = paintNode();
        m_session = std::make_unique<PaintSession>();
        m_canvas = std::make_unique<UvView>(&m_pictures, m_session.get());
        m_pictures.setPaint(&m_session->buffer());
        QObject::connect(m_session.get(), &PaintSession::painted, &m_pictures,
                         &ViewerPictures::showPaint);
        setBrush(Qt::red);
        ASSERT_TRUE(m_session->setNode(m_paint));
        history()->clear();
    }

    void TearDown() override
    {
        ModelFixture::TearDown();
        m_canvas.reset();
        m_session.reset();
        OssApplication::setPopupsAllowed(m_popups);
    }

    OssSnImageSetNodeBase *paintNode()
    {
        auto *node = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
        EXPECT_TRUE(node && node->imageSet());
        node->imageSet()->setResolution(Resolution);
        return node;
    }

    OssImageSet *images() const { return m_paint->imageSet(); }

    void setBrush(const QColor &color, bool erases = false, double radius = 6.0)
    {
        OssEvBrush brush;
        brush.color = {float(color.redF()), float(color.greenF()), float(color.blueF())};
        brush.radius = radius;
        brush.hardness = 1.0;
        brush.tool = erases ? OssEvBrush::Tool::Eraser : OssEvBrush::Tool::Brush;
        Brushes::instance()->setBrush(brush);
    }

    void stroke(const QPointF &from, const QPointF &to)
    {
        ASSERT_TRUE(m_session->begin(from));
        m_session->moveTo(to);
        m_session->end();
    }

    void dab(const QPointF &place = {0.5, 0.5}) { stroke(place, place); }

    bool hasPaint() const { return !m_session->buffer().isEmpty(); }

    static OssUndoManager *history() { return OssUndoManager::instance(); }

    /// A tile that has this value everywhere.
    static std::shared_ptr<OssEvTile> tileOf(int channels, const std::array<float, 4> &value)
    {
        return std::make_shared<OssEvTile>(channels, OssEvTile::Format::Half, value);
    }

    OssSnImageSetNodeBase *m_paint = nullptr;
    ViewerPictures m_pictures;
    std::unique_ptr<PaintSession> m_session;
    std::unique_ptr<UvView> m_canvas;
    bool m_popups = true;
};

/// While it lives no pixels can be written: a file stands where their folder belongs.
class NoRoomForPixels
{
public:
    NoRoomForPixels()
    {
        QDir(m_path).removeRecursively();
        writeFile(m_path);
    }

    ~NoRoomForPixels() { QFile::remove(m_path); }

    NoRoomForPixels(const NoRoomForPixels &) = delete;
    NoRoomForPixels &operator=(const NoRoomForPixels &) = delete;

private:
    const QString m_path = QDir(OssSettings::folderPath()).filePath(text("pixels"));
};
