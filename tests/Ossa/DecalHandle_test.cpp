#include "Ossa/Viewer/DecalHandle.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Objects/OssMeshes.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTest>
#include <QWidget>

// A decal on a plane that reaches from a quarter to three quarters of a view of 400 pixels.

namespace {

constexpr int Size = 400;

class DecalInHand : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(m_network);
        OssShaderNetworkManager::instance()->setCurrentViewNetwork(m_network);
        OssGeoEntity *entity = m_network->geoEntity();
        entity->setGeometry(text("plane"));
        ASSERT_TRUE(QTest::qWaitFor(
            [entity] { return OssMeshes::instance()->look(entity->source()).mesh != nullptr; }));
        decal = add("Geometry/Decal", "Label");
        m_network->selectOnly({decal});
        view.resize(Size, Size);
        handle = new DecalHandle(&view, {[] { return glm::mat4(1.0F); },
                                         [](const QPointF &at) {
                                             return ScenePick::Ray{
                                                 {float(at.x()) / Size * 2.0F - 1.0F,
                                                  1.0F - float(at.y()) / Size * 2.0F, 5.0F},
                                                 {0.0F, 0.0F, -1.0F}};
                                         }});
        handle->setSeen(OssMeshes::instance()->look(entity->source()).mesh, entity);
        OssUndoManager::instance()->clear();
    }

    void send(QEvent::Type type, const QPointF &at, Qt::KeyboardModifiers modifiers = {})
    {
        const bool isRelease = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          isRelease ? Qt::NoButton : Qt::LeftButton, modifiers);
        QApplication::sendEvent(&view, &event);
    }

    void hold(const QPointF &from, const QPointF &to, Qt::KeyboardModifiers modifiers = {})
    {
        send(QEvent::MouseButtonPress, from);
        send(QEvent::MouseMove, (from + to) / 2.0, modifiers);
        send(QEvent::MouseMove, to, modifiers);
    }

    void drag(const QPointF &from, const QPointF &to, Qt::KeyboardModifiers modifiers = {})
    {
        hold(from, to, modifiers);
        send(QEvent::MouseButtonRelease, to, modifiers);
    }

    double value(const char *name) const { return decal->attribute(text(name)).toDouble(); }

    QWidget view;
    DecalHandle *handle = nullptr;
    OssSnBaseNode *decal = nullptr;
};

} // namespace

TEST_F(DecalInHand, isMovedOverTheSurfaceAndTurnsToItAsOneStep)
{
    decal->setAttribute(text("RotationX"), 40.0);
    decal->setAttribute(text("PositionZ"), 0.3);
    OssUndoManager::instance()->clear();
    drag({210, 190}, {260, 160});
    EXPECT_NEAR(value("PositionX"), 0.25, 1e-5);
    EXPECT_NEAR(value("PositionY"), 0.15, 1e-5);
    EXPECT_NEAR(value("PositionZ"), 0.0, 1e-5);
    EXPECT_NEAR(value("RotationX"), 0.0, 1e-4);
    ASSERT_EQ(OssUndoManager::instance()->count(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(value("PositionX"), 0.0);
    EXPECT_EQ(value("PositionZ"), 0.3);
    EXPECT_EQ(value("RotationX"), 40.0);
    drag({200, 200}, {240, 200}, Qt::ShiftModifier);
    EXPECT_NEAR(value("PositionX"), 0.2, 1e-5);
    EXPECT_NEAR(value("RotationX"), 40.0, 1e-4);
}

TEST_F(DecalInHand, staysWhereItWasBesideTheObject)
{
    drag({200, 200}, {390, 200});
    EXPECT_NEAR(value("PositionX"), 0.475, 1e-5); // of the move before
    EXPECT_EQ(value("PositionY"), 0.0);
}

TEST_F(DecalInHand, isTurnedAtItsKnobAndResizedAtItsMarks)
{
    // 0.6 of 2 units in 400 pixels: from 140 to 260.
    drag({200, 114}, {114, 200});
    EXPECT_NEAR(value("RotationZ"), 90.0, 1e-3);
    decal->setAttribute(text("RotationZ"), 0.0);
    drag({200, 114}, {225, 110}, Qt::ShiftModifier);
    EXPECT_NEAR(value("RotationZ"), -15.0, 1e-3);
    decal->setAttribute(text("RotationZ"), 0.0);
    drag({260, 140}, {320, 80});
    EXPECT_NEAR(value("Scale"), 2.0, 1e-4);
    drag({320, 200}, {260, 200});
    EXPECT_NEAR(value("Width"), 0.3, 1e-5);
    EXPECT_NEAR(value("Height"), 0.6, 1e-9);
}

TEST_F(DecalInHand, isPutBackByEscapeAndByUndoing)
{
    hold({200, 200}, {260, 160});
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&view, &escape);
    EXPECT_EQ(value("PositionX"), 0.0);
    send(QEvent::MouseMove, {280, 160}); // the button is still held
    send(QEvent::MouseButtonRelease, {280, 160});
    EXPECT_EQ(value("PositionX"), 0.0);
    hold({200, 200}, {260, 160});
    EXPECT_NE(value("PositionX"), 0.0);
    OssUndoManager::instance()->takeBack();
    send(QEvent::MouseButtonRelease, {260, 160});
    EXPECT_EQ(value("PositionX"), 0.0);
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);
}

TEST_F(DecalInHand, endsBeforeTheDocumentIsSaved)
{
    hold({200, 200}, {260, 160});
    OssUndoManager::instance()->endInteraction();
    EXPECT_FALSE(OssUndoManager::instance()->isMacroOpen());
    EXPECT_EQ(OssUndoManager::instance()->count(), 1);
    send(QEvent::MouseMove, {280, 160});
    send(QEvent::MouseButtonRelease, {280, 160});
    EXPECT_NEAR(value("PositionX"), 0.3, 1e-5);
}

TEST_F(DecalInHand, isLeftAloneWhereItIsLockedOrNotTheOnlyOne)
{
    decal->setLocked(true);
    drag({200, 200}, {260, 160});
    EXPECT_EQ(value("PositionX"), 0.0);
    decal->setLocked(false);
    m_network->selectOnly({decal, add("Geometry/Decal", "Other")});
    drag({200, 200}, {260, 160});
    EXPECT_EQ(value("PositionX"), 0.0);
    m_network->selectOnly({decal});
    handle->setActive(false); // somebody paints
    drag({200, 200}, {260, 160});
    EXPECT_EQ(value("PositionX"), 0.0);
}
