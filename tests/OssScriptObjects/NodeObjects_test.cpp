#include "OssInterface/Palettes/OssPalette.h"
#include "OssScriptObjects/OssaActions.h"
#include "OssScriptObjects/OssaApplication.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssaPalette.h"
#include "OssScriptObjects/OssaPreferences.h"
#include "OssScriptObjects/OssaUndo.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"
#include "support/ModelFixture.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <functional>
#include <limits>

namespace {

using Type = OssScriptException::Type;

OssScriptManager *scripts()
{
    return OssScriptManager::instance();
}

class NodeObjects : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_graph = OssScriptObject<Ossa::NodeGraph>(m_network);
        m_blur = m_graph->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("Soft"));
        m_group = m_graph->createNode(QStringLiteral("Misc/Group"), QStringLiteral("Group"));
        ASSERT_TRUE(m_blur && m_group);
        scripts()->clearError();
    }

    struct Refusal
    {
        std::function<void()> call;
        Type type;
        const char *message;
    };

    /// Each is told in these words and leaves the document as it was.
    void expectRefused(std::initializer_list<Refusal> refusals) const
    {
        for (const Refusal &refusal : refusals) {
            const QByteArray before = m_project->stateHash();
            const OssScriptManager::Run quiet;
            refusal.call();
            EXPECT_TRUE(scripts()->hasError()) << refusal.message;
            EXPECT_EQ(scripts()->lastError().type, refusal.type) << refusal.message;
            EXPECT_TRUE(scripts()->lastError().message.contains(QString::fromUtf8(refusal.message)))
                << refusal.message << ": " << qPrintable(scripts()->lastError().message);
            EXPECT_EQ(m_project->stateHash(), before) << refusal.message;
            scripts()->clearError();
        }
    }

    /// An attribute of a type of value.
    QString attributeOf(const Ossa::Node *node, QMetaType::Type type) const
    {
        for (const QString &name : node->attributes()) {
            if (node->attribute(name).userType() == type)
                return name;
        }
        return {};
    }

    Ossa::NodeGraph *m_graph = nullptr;
    Ossa::Node *m_blur = nullptr;
    Ossa::Node *m_group = nullptr;
};

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

} // namespace

TEST_F(NodeObjects, groupsGetPortsAndKnobsAndNothingElseDoes)
{
    const ExpectedLog expected("is no attribute of a node inside group");
    EXPECT_NE(m_group->createInput(text("In"), text("Color")), nullptr);
    EXPECT_NE(m_group->createOutput(text("Out"), text("scalar")), nullptr);
    EXPECT_FALSE(scripts()->hasError());
    EXPECT_TRUE(m_group->inputs().contains(text("In")));
    EXPECT_TRUE(m_group->outputs().contains(text("Out")));
    Ossa::Node *inner = m_group->inside()->createNode(text("Filter/Blur"), {});
    const QString attribute = attributeOf(inner, QMetaType::Double);
    const QString knob = m_group->createKnob(inner, attribute);
    EXPECT_TRUE(m_group->attributes().contains(knob));
    EXPECT_FALSE(scripts()->hasError());
    expectRefused({
        {[&] { m_group->createInput(text("X"), text("sound")); }, Type::NotAllowed, "of kind"},
        {[&] { m_group->createOutput(text("X"), text("sound")); }, Type::NotAllowed, "of kind"},
        {[&] { m_blur->createInput(text("X"), text("color")); }, Type::NotAllowed, "input"},
        {[&] { m_blur->createOutput(text("X"), text("color")); }, Type::NotAllowed, "output"},
        {[&] { m_group->createKnob(nullptr, attribute); }, Type::WrongType, "None is no node"},
        {[&] { m_group->createKnob(inner, text("No")); }, Type::UnknownName, "no attribute"},
        {[&] { m_group->createKnob(m_blur, attribute); }, Type::NotAllowed, "become a knob"},
        {[&] { m_blur->createKnob(inner, attribute); }, Type::NotAllowed, "become a knob"},
    });
}

TEST_F(NodeObjects, attributesTakeWhatAPanelWouldTake)
{
    const QString number = attributeOf(m_blur, QMetaType::Double);
    ASSERT_FALSE(number.isEmpty());
    const QVariantMap info = m_blur->attributeInfo(number);
    EXPECT_FALSE(info.contains(text("choices")));
    EXPECT_TRUE(info.value(text("isDefault")).toBool());
    const double most = info.value(text("maximum")).toDouble();
    const double least = info.value(text("minimum")).toDouble();
    ASSERT_LT(least, most);
    const auto set = [&](const QVariant &value) {
        return [=] {
            m_blur->setAttribute(number, value);
        };
    };
    const double none = std::numeric_limits<double>::quiet_NaN();
    expectRefused({
        {set(most + 1), Type::OutOfRange, "out of the range"},
        {set(least - 1), Type::OutOfRange, "out of the range"},
        {set(none), Type::OutOfRange, "out of the range"},
        {[&] { m_blur->setAttribute(text("No"), 1); }, Type::UnknownName, "no attribute"},
        {[&] { m_blur->resetAttribute(text("No")); }, Type::UnknownName, "no attribute"},
        {[&] { m_blur->attributeInfo(text("No")); }, Type::UnknownName, "no attribute"},
        {[&] { m_blur->position(); }, Type::ObjectUnavailable, "shown in no node graph"},
        {[&] {
             m_blur->setPosition({1, 1});
         },
         Type::ObjectUnavailable, "in no node graph"},
        {[&] {
             m_blur->setSize({100, 100});
         },
         Type::ObjectUnavailable, "in no node graph"},
    });
    m_blur->setAttribute(number, most);
    EXPECT_EQ(m_blur->attribute(number).toDouble(), most);
    EXPECT_FALSE(m_blur->attributeInfo(number).value(text("isDefault")).toBool());
    m_blur->resetAttribute(number);
    EXPECT_TRUE(m_blur->attributeInfo(number).value(text("isDefault")).toBool());
    EXPECT_FALSE(scripts()->hasError());

    int withChoices = 0;
    for (const QString &type : OssScriptObject<Ossa::Application>(qApp)->nodeTypes()) {
        const Ossa::Node *node = m_graph->createNode(type, {});
        for (const QString &name : node ? node->attributes() : QStringList())
            withChoices += node->attributeInfo(name).contains(text("choices"));
    }
    EXPECT_GT(withChoices, 0);
    scripts()->clearError();
}

TEST_F(NodeObjects, wiresAreDrawnTakenAwayAndRefused)
{
    Ossa::Node *source = m_graph->createNode(text("Filter/Blur"), text("Source"));
    const QString input = m_blur->inputs().first();
    m_blur->connectInput(input, source, {});
    EXPECT_EQ(m_blur->inputNode(input), source);
    EXPECT_EQ(m_blur->upstreamNodes(), QList<Ossa::Node *>{source});
    EXPECT_EQ(source->downstreamNodes(), QList<Ossa::Node *>{m_blur});
    Ossa::Node *removed = m_graph->createNode(text("Filter/Blur"), {});
    removed->remove();
    auto *inside = m_group->inside();
    expectRefused({
        {[&] { m_blur->connectInput(text("No"), source, {}); }, Type::UnknownName, "no input"},
        {[&] { m_blur->connectInput(input, removed, {}); }, Type::InternalObjectGone, "removed"},
        {[&] { m_blur->connectInput(input, source, text("No")); }, Type::NotAllowed, ""},
        {[&] { source->connectInput(input, m_blur, {}); }, Type::NotAllowed, ""},
        {[&] { m_graph->connect(source, nullptr, {}, {}); }, Type::WrongType, "None is no node"},
        {[&] { inside->connect(source, m_blur, {}, {}); }, Type::NotAllowed, "not in this graph"},
        {[&] { m_graph->connect(m_blur, m_group, {}, {}); }, Type::NotAllowed, "no free input"},
        {[&] { m_graph->view(m_blur, 99); }, Type::OutOfRange, "no input 99"},
        {[&] { m_graph->view(m_graph->viewer(), 1); }, Type::NotAllowed, ""},
    });
    m_blur->connectInput(input, nullptr, {});
    EXPECT_EQ(m_blur->inputNode(input), nullptr);
    m_graph->connect(source, m_blur, {}, {});
    EXPECT_EQ(m_blur->upstreamNodes(), QList<Ossa::Node *>{source});
    EXPECT_FALSE(scripts()->hasError());
}

TEST_F(NodeObjects, nodesAreMadeGroupedAndExchangedAsText)
{
    EXPECT_EQ(m_graph->nodesOfType(text("Filter/Blur")), QList<Ossa::Node *>{m_blur});
    EXPECT_EQ(m_graph->node(text("No")), nullptr);
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("nodes.xml"));
    auto *inside = m_group->inside();
    Ossa::NodeGraph *graph = m_graph;
    expectRefused({
        {[=] { graph->createNode(text("No/Such"), {}); }, Type::UnknownName, "no node type"},
        {[=] { graph->group({}, {}); }, Type::NotAllowed, "nothing to group"},
        {[=] { inside->group({m_blur}, {}); }, Type::NotAllowed, "not in this graph"},
        {[=] { graph->ungroup(m_blur); }, Type::NotSupported, "is no group"},
        {[=] { graph->fromText(text("words")); }, Type::FileInvalid, ""},
        {[=] { inside->toText({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->remove({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->extract({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->duplicate({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->select({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->exportNodes({m_blur}, file); }, Type::NotAllowed, "not in this graph"},
        {[=] { graph->importNodes(file); }, Type::FileInvalid, "nodes.xml"},
        {[=] { m_blur->bake(file, 0, {}); }, Type::OutOfRange, "1 to 32768"},
        {[=] { m_blur->bake(file, 32769, {}); }, Type::OutOfRange, "1 to 32768"},
        {[=] {
             m_blur->bake(file, 16, {1001, 1002});
         },
         Type::NotAllowed, "<UDIM>"},
    });
    EXPECT_FALSE(QFile::exists(file));
    m_graph->exportNodes({m_blur, m_blur}, file);
    EXPECT_EQ(m_graph->importNodes(file).size(), 1);
    EXPECT_EQ(m_graph->fromText(m_graph->toText({m_blur, m_group})).size(), 2);
    EXPECT_TRUE(m_graph->duplicate({}).isEmpty());
    EXPECT_EQ(m_graph->duplicate({m_blur}).size(), 1);
    Ossa::Node *made = m_graph->group({m_blur}, text("Both"));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->name(), text("Both"));
    EXPECT_EQ(m_blur->graph(), made->inside());
    EXPECT_EQ(m_graph->ungroup(made), QList<Ossa::Node *>{m_blur});
    EXPECT_FALSE(scripts()->hasError()) << qPrintable(scripts()->lastError().message);
}

TEST_F(NodeObjects, aScriptIsOneStepAroundItsOwnMacros)
{
    OssUndoManager::instance()->clear();
    auto *undo = OssScriptObject<Ossa::Application>(qApp)->undo();
    const auto make = [this] {
        m_graph->createNode(QStringLiteral("Misc/Dot"), {});
    };
    scripts()->beginScript(text("Mine"));
    make();
    make();
    undo->begin(text("Inner"));
    make();
    undo->begin(text("Innermost"));
    make();
    undo->end();
    make();
    undo->end();
    make();
    make();
    scripts()->endScript();
    EXPECT_EQ(undo->texts(), (QStringList{text("Mine"), text("Inner"), text("Mine")}));
    make();
    make();
    EXPECT_EQ(undo->count(), 5) << "no script runs";
    scripts()->beginScript(text("Back"));
    undo->undo();
    make();
    make();
    scripts()->endScript();
    EXPECT_EQ(undo->count(), 5);
    EXPECT_EQ(undo->texts().last(), text("Back"));
    EXPECT_FALSE(scripts()->hasError());
}

TEST_F(NodeObjects, theRegisterTakesNothingThatIsNone)
{
    const ExpectedLog expected[] = {ExpectedLog("Factory is NULL", ExpectedLog::Possible),
                                    ExpectedLog("API is NULL", ExpectedLog::Possible)};
    scripts()->registerAPIFactory(nullptr);
    scripts()->registerAPI(nullptr, text("None"));
    scripts()->deleteAPI(nullptr);
    Ossa::API *known = scripts()->obtainAPI(m_network, {});
    EXPECT_EQ(known, m_graph) << "the class that the factory makes";
    EXPECT_EQ(scripts()->obtainAPI(m_network, text("Ossa::None")), nullptr);
}

TEST_F(NodeObjects, palettesAndPreferencesAreReachedByName)
{
    OssPalette palette;
    auto *api = OssScriptObject<Ossa::Palette>(&palette);
    api->show();
    EXPECT_TRUE(palette.isVisible());
    api->hide();
    EXPECT_FALSE(palette.isVisible());

    auto *application = OssScriptObject<Ossa::Application>(qApp);
    auto *preferences = application->preferences();
    expectRefused({
        {[=] { preferences->value(text("No")); }, Type::UnknownName, "no preference"},
        {[=] { preferences->setValue(text("No"), 1); }, Type::UnknownName, "no preference"},
        {[=] { preferences->reset(text("No")); }, Type::UnknownName, "no preference"},
        {[=] { preferences->choices(text("No")); }, Type::UnknownName, "no preference"},
    });
    EXPECT_TRUE(application->actions()->paths(text("/None")).isEmpty());
}
