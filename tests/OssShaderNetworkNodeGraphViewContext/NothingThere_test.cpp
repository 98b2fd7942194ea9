#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssCore/Program/OssClassFactoryManager.h"

#include <QMetaMethod>
#include <QtTest>

#include <array>
#include <functional>
#include <vector>

namespace {

OssSnBaseNode *const NoNode = nullptr;
QGraphicsScene *const NoScene = nullptr;

/// Slots whose object lacks what they act on: a node, an item, a network, a scene, a view.
class NothingThere : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        OssApplication::setPopupsAllowed(false);
        QObject::connect(&m_closer, &QTimer::timeout, [] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
                dialog->reject();
        });
        m_closer.start(5);
        m_node = addAt("Filter/Blur", {0, 0});
    }

    using Choice = std::function<bool(const QMetaMethod &)>;

    static bool all(const QMetaMethod &) { return true; }

    /// Calls the chosen slots of the object's class and of those above it up to `last`, with
    /// `node` wherever a node is wanted and null, zero or empty for the rest. Says how many.
    static int callSlots(QObject *object, const QMetaObject &last, OssSnBaseNode *node,
                         const Choice &chosen = all)
    {
        int called = 0;
        const QMetaObject *type = object->metaObject();
        for (int i = last.methodOffset(); i < type->methodCount(); ++i) {
            const QMetaMethod method = type->method(i);
            std::vector<QVariant> values;
            if (method.methodType() != QMetaMethod::Slot || !chosen(method)
                || !makeArguments(method, node, &values))
                continue;
            SCOPED_TRACE(method.methodSignature().constData());
            std::array<QGenericArgument, 10> arguments;
            const QList<QByteArray> names = method.parameterTypes();
            for (std::size_t k = 0; k < values.size(); ++k)
                arguments.at(k) = {names.at(int(k)).constData(), values[k].constData()};
            EXPECT_TRUE(method.invoke(object, Qt::DirectConnection, arguments[0], arguments[1],
                                      arguments[2], arguments[3], arguments[4], arguments[5]));
            ++called;
        }
        return called;
    }

    OssSnBaseNode *m_node = nullptr;

private:
    /// False where a slot takes what cannot be made here.
    static bool makeArguments(const QMetaMethod &method, OssSnBaseNode *node,
                              std::vector<QVariant> *values)
    {
        const QList<QByteArray> names = method.parameterTypes();
        for (int i = 0; i < names.size(); ++i) {
            const int type = method.parameterType(i);
            if (names.at(i) == "OssSnBaseNode*")
                values->push_back(QVariant::fromValue(node));
            else if (type != QMetaType::UnknownType)
                values->push_back(QVariant(type, nullptr));
            else if (names.at(i).endsWith('*'))
                values->push_back(QVariant::fromValue<void *>(nullptr));
            else
                return false;
        }
        return true;
    }

    QTimer m_closer;
};

TEST_F(NothingThere, everyCommandOfAViewWithoutNetworkIsHarmless)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    m_node->setSelected(true);
    begin();
    for (OssSnBaseNode *node : {NoNode, m_node}) {
        for (QGraphicsScene *scene : {NoScene, m_view->scene()}) {
            OssShaderNetworkView view(nullptr);
            view.setScene(scene);
            EXPECT_GT(callSlots(&view, OssShaderNetworkView::staticMetaObject, node), 80);
            view.importMaterial({text("a.oma")}, {5, 5});
            view.importCustomProcedural({text("a.opc")}, {5, 5});
            expectNothingDone();
        }
    }
}

TEST_F(NothingThere, noCommandNeedsAScene)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    OssShaderNetworkView view(nullptr);
    view.setNetwork(m_network);
    for (OssSnBaseNode *node : {NoNode, m_node}) {
        m_node->setSelected(true);
        callSlots(&view, OssShaderNetworkView::staticMetaObject, node);
    }
}

TEST_F(NothingThere, noInputNeedsASceneOrANetwork)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    begin();
    QGraphicsScene empty;
    OssNgNode stranger; // stands for no node of the model
    for (QGraphicsScene *scene : {NoScene, &empty}) {
        OssShaderNetworkView view(nullptr);
        view.setScene(scene);
        if (scene) {
            scene->addItem(&stranger);
            stranger.setSelected(true);
        }
        const QPoint place = view.mapFromScene(QPointF(20, 8));
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(text("notes.txt"))});
        QDragLeaveEvent leave;
        QContextMenuEvent menu(QContextMenuEvent::Mouse, place, place);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseClick(view.viewport(), Qt::RightButton, {}, place);
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::ControlModifier, place);
        for (const int key : {Qt::Key_Control, Qt::Key_Escape, Qt::Key_Return, Qt::Key_A}) {
            QTest::keyClick(&view, Qt::Key(key));
            QTest::keyClick(&view, Qt::Key(key), Qt::ControlModifier);
        }
        const Dragged dragged{view.viewport(), &mime, place};
        dragged.enter();
        dragged.move();
        dragged.drop();
        QApplication::sendEvent(view.viewport(), &leave);
        if (!scene)
            QApplication::sendEvent(view.viewport(), &menu);
        view.viewport()->grab();
    }
    expectNothingDone();
}

TEST_F(NothingThere, theManagerPassesOverWhatIsMissing)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    begin();
    const Choice takesObjects = [](const QMetaMethod &method) {
        return method.methodSignature().contains('*');
    };
    callSlots(m_manager, NodeGraphArranger::staticMetaObject, nullptr, takesObjects);
    callSlots(m_manager->nodeGraphWidget(), OssSnNodeGraphWidget::staticMetaObject, nullptr,
              takesObjects);
    callSlots(m_manager->nodePropertiesWidget(), OssSnNodePropertiesWidget::staticMetaObject,
              nullptr);
    OssShaderNetworkManager::instance()->setCurrentShaderNetwork(m_network);
    m_manager->onCurrentShaderNetworkChanged(m_network);
    expectNothingDone();
}

// --- contexts

constexpr std::array<const char *, 6> Contexts{
    "OssSnNodeGraphViewContext",           "OssSnBakePointNodeGraphViewContext",
    "OssSnGeoChannelNodeGraphViewContext", "OssSnBaseTeleportNodeGraphViewContext",
    "OssSnGroupNodeGraphViewContext",      "OssSnUINodeGraphViewContext"};

std::unique_ptr<OssSnNodeGraphViewContext> makeContext(const char *type, QObject *node)
{
    QObject *made = OssClassFactoryManager::instance()->create(QLatin1String(type), node);
    return std::unique_ptr<OssSnNodeGraphViewContext>(
        qobject_cast<OssSnNodeGraphViewContext *>(made));
}

TEST_F(NothingThere, aContextWithoutNodeDoesNothingAndAnswersWithNothing)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    begin();
    for (const char *type : Contexts) {
        SCOPED_TRACE(type);
        for (OssSnBaseNode *node : {NoNode, m_node}) {
            const auto context = makeContext(type, nullptr);
            context->initializeGui();
            EXPECT_EQ(context->guiNode(), nullptr);
            EXPECT_GT(callSlots(context.get(), OssSnNodeGraphViewContext::staticMetaObject, node),
                      50);
            context->applySelection(true);
            context->updateGuiEdges();
            context->updatePortVisibility();
            context->connectInputFromGui(node, text("Input"), text("Output"));
            context->copyGuiStateFrom(nullptr);
            context->copyGuiNodeStateFrom(contextOf(m_node));
            contextOf(m_node)->copyGuiNodeStateFrom(context.get());
            context->copyGuiNodeStateFrom(nullptr);
            EXPECT_EQ(context->versionHashSource(), QString());
            EXPECT_EQ(context->nodePosition(), QPointF());
            EXPECT_EQ(context->nodeSize(), QSizeF());
        }
        expectNothingDone();
    }
}

TEST_F(NothingThere, aContextOfARemovedNodeAndOneOfAnotherKindAreHarmless)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    for (const char *key : {"Filter/Blur", "Misc/Group", "Misc/Bake Point", "Misc/Geo-Channel",
                            "Misc/Backdrop", "Teleport Receiver/Receiver"}) {
        SCOPED_TRACE(key);
        OssSnBaseNode *removed = add(key);
        ASSERT_NE(removed, nullptr);
        m_network->removeNodes({removed});
        for (const char *type : Contexts) {
            SCOPED_TRACE(type);
            const auto context = makeContext(type, removed);
            context->initializeGui();
            EXPECT_EQ(context->guiNode(), nullptr);
            callSlots(context.get(), OssSnNodeGraphViewContext::staticMetaObject, nullptr);
            callSlots(context.get(), OssSnNodeGraphViewContext::staticMetaObject, m_node);
        }
    }
}

TEST_F(NothingThere, noRequestForAPlaceMovesAnythingWithoutAView)
{
    const OtherPage other;
    OssSnBaseNode *backdrop = addAt("Misc/Backdrop", {500, 300});
    OssSnBaseNode *node = addAt("Filter/Blur", {550, 350});
    begin();
    const Choice asksView = [](const QMetaMethod &method) {
        static const QList<QByteArray> names{"onSetLayout",      "onNodePositioned", "onNodeSynced",
                                             "onUniformarise",   "placeNode",        "onContainer",
                                             "onViewerAttached", "onDotableMarker"};
        return std::any_of(names.cbegin(), names.cend(),
                           [&](const QByteArray &name) { return method.name().startsWith(name); });
    };
    for (OssSnBaseNode *asking : {backdrop, node}) {
        OssDebugLog::instance()->clear();
        const int called = callSlots(contextOf(asking), OssSnNodeGraphViewContext::staticMetaObject,
                                     m_node, asksView);
        EXPECT_EQ(called, asking == backdrop ? 16 : 10);
        expectLogged("[ !! ] Fatal error -> no view!");
        EXPECT_EQ(OssDebugLog::instance()->lines().size(), called);
    }
    expectNothingDone();
}

} // namespace
