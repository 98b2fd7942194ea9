#include "Ossa/Painting/ObjectCanvas.h"

#include "Ossa/Surfaces/ObjectCamera.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Objects/OssMeshes.h"
#include "PaintFixture.h"

#include <algorithm>

namespace {

/// A cube of six patches with 64 texels each, looked at from above, beside and in front.
class ObjectCanvases : public PaintFixture
{
protected:
    static constexpr int Width = 400;
    static constexpr int Height = 300;

    void SetUp() override
    {
        PaintFixture::SetUp();
        m_object = std::make_unique<ObjectCanvas>(m_session.get());
        m_camera.resetDirection();
        m_camera.frame({0.0F, 0.0F, 0.0F}, 0.9F);
        m_object->setMesh(mesh());
        place();
        m_object->setActive(true);
        ASSERT_TRUE(QTest::qWaitFor([this] { return m_object->isReady(); }));
    }

    void TearDown() override
    {
        m_object.reset();
        PaintFixture::TearDown();
    }

    std::shared_ptr<const OssEvMesh> mesh() const
    {
        return OssMeshes::instance()->look(m_network->geoEntity()->source()).mesh;
    }

    void place()
    {
        m_object->setView(m_camera.view(), m_camera.projection(float(Width) / Height),
                          {Width, Height});
    }

    /// Where a place of the world is on the picture.
    QPointF pixelOf(const QVector3D &world) const
    {
        const QVector3D clip = m_camera.projection(float(Width) / Height) * m_camera.view() * world;
        return {(double(clip.x()) * 0.5 + 0.5) * Width, (0.5 - double(clip.y()) * 0.5) * Height};
    }

    void draw(const QPointF &from, const QPointF &to)
    {
        ASSERT_EQ(m_object->press(from), ObjectCanvas::Press::Begun);
        m_object->move(to);
        m_session->end();
    }

    ObjectCamera m_camera;
    std::unique_ptr<ObjectCanvas> m_object;
    const QVector3D m_edge{0.5F, 0.0F, 0.5F}; ///< between two sides that are seen
};

TEST_F(ObjectCanvases, aStrokeOverAnEdgeIsOneStepOnBothPatches)
{
    draw(pixelOf(m_edge + QVector3D(-0.3F, 0.0F, 0.0F)),
         pixelOf(m_edge + QVector3D(0.0F, 0.0F, -0.3F)));
    EXPECT_EQ(m_session->buffer().patches().size(), 2U);
    EXPECT_EQ(undoCount(), 1);
    history()->undo();
    EXPECT_FALSE(hasPaint());
    history()->redo();
    EXPECT_EQ(m_session->buffer().patches().size(), 2U);
    EXPECT_TRUE(m_session->bake().ok());
    EXPECT_EQ(images()->pixels().size(), 2);
}

TEST_F(ObjectCanvases, besideTheObjectNothingBeginsAndThePointerIsNowhere)
{
    EXPECT_EQ(m_object->press({3.0, 3.0}), ObjectCanvas::Press::Beside);
    EXPECT_FALSE(m_session->isPainting());
    EXPECT_TRUE(m_object->outline({3.0, 3.0}).isEmpty());
    EXPECT_FALSE(m_object->uvAt({3.0, 3.0}).has_value());
    const QPointF on = pixelOf(m_edge);
    EXPECT_TRUE(m_object->outline(on).boundingRect().contains(on));
    EXPECT_TRUE(m_object->uvAt(on).has_value());
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(ObjectCanvases, aLineGoesOnFromTheLastStrokeAlsoAfterTheObjectWasTurned)
{
    const QVector3D from(-0.3F, 0.2F, 0.5F);
    const QVector3D to(0.3F, 0.2F, 0.5F);
    draw(pixelOf(from), pixelOf(from));
    m_camera.orbit({0.05, 0.02});
    place();
    EXPECT_EQ(m_object->pressLine({3.0, 3.0}), ObjectCanvas::Press::Beside) << "a drag turns there";
    EXPECT_FALSE(m_session->isPainting());
    EXPECT_EQ(m_object->pressLine(pixelOf(to)), ObjectCanvas::Press::Begun);
    m_session->end();
    EXPECT_EQ(undoCount(), 2);
    int painted = 0;
    const int patch = m_session->buffer().patches().front();
    EXPECT_EQ(m_session->buffer().patches().size(), 1U);
    std::vector<OssEvPaintTile::Texel> row(Resolution);
    for (int y = 0; y < Resolution; ++y) {
        if (!m_session->buffer().readRow(patch, Resolution, 0, y, Resolution, row.data()))
            continue;
        const auto count = std::count_if(row.cbegin(), row.cend(),
                                         [](const auto &texel) { return texel[3] > 0.5F; });
        painted = std::max(painted, int(count));
    }
    EXPECT_GT(painted, int(0.7 * Resolution)) << "the whole way";
}

TEST_F(ObjectCanvases, whatCannotBePaintedOnIsSaid)
{
    QString told;
    QObject::connect(OssStatusManager::instance(), &OssStatusManager::messageShown, m_object.get(),
                     [&told](const QString &message) { told = message; });
    m_session->setNode(nullptr);
    EXPECT_EQ(m_object->press(pixelOf(m_edge)), ObjectCanvas::Press::Refused);
    EXPECT_TRUE(told.contains(text("nothing to paint on"))) << qPrintable(told);
    m_session->setNode(m_paint);
    m_object->setMesh(OssEvShapes::sphere());
    EXPECT_EQ(m_object->press(pixelOf(m_edge)), ObjectCanvas::Press::Refused);
    EXPECT_TRUE(told.contains(text("not the object"))) << qPrintable(told);
    // Another size of the images: it is made ready once more.
    m_object->setMesh(mesh());
    images()->setResolution(2 * Resolution);
    EXPECT_EQ(m_object->press(pixelOf(m_edge)), ObjectCanvas::Press::Refused);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_object->isReady(); }));
    EXPECT_EQ(m_object->press(pixelOf(m_edge)), ObjectCanvas::Press::Begun);
}

} // namespace
