#include "ScriptSession.h"

// What scripts give to the program and get from it, and what is refused.

namespace {

class ScriptValues : public ScriptSession
{
protected:
    /// A graph, a node in it, and found(TYPE): a node with the name of an attribute of that type.
    void SetUp() override
    {
        ScriptSession::SetUp();
        ASSERT_EQ(run("import ossa\ng = ossa.graph()\nn = g.createNode('Filter/Blur')\n"
                      "def found(type):\n"
                      "    for t in ossa.nodeTypes():\n"
                      "        n = g.createNode(t)\n"
                      "        for x in n.attributes:\n"
                      "            if isinstance(n.attribute(x), type): return n, x\n"
                      "        n.remove()\n"),
                  0)
            << qPrintable(m_errors);
    }
};

} // namespace

TEST_F(ScriptValues, arriveAsTheyWereGivenInEveryFormThatTheyMayHave)
{
    const struct
    {
        const char *lines;
        const char *output;
    } cases[] = {
        {"v, a = found(ossa.Point)\nv.setAttribute(a, ossa.Point(3, 4)); print(v.attribute(a).y)",
         "4.0"},
        {"v.setAttribute(a, 'here')", nullptr},
        {"g.createNode('Misc/Dot', 'D', 'here')", nullptr},
        {"g.createNode('Misc/Dot', 'D', (1, 2, 3))", nullptr},
        {"n.position = 'here'", nullptr},
        {"n.name = 'Named'; print(n.name)", "Named"},
        {"n.name = 5", nullptr},
        {"n.enabled = False; print(n.enabled)", "False"},
        {"print(g.node('None such'))", "None"},
        {"g.select([n, g.viewer()]); print(len(g.selectedNodes()))", "2"},
        {"g.select((n,)); print(len(g.selectedNodes()))", "1"},
        {"g.select([]); print(len(g.selectedNodes()))", "0"},
        {"g.select([n, 'x'])", nullptr},
        {"g.select(n)", nullptr},
        {"g.select([g])", nullptr},
        {"g.select([None])", nullptr},
        {"g.connect(g, n)", nullptr},
        {"ossa.status().set(1.5, 2)", nullptr},
        {"ossa.status().set('1', 2)", nullptr},
        {"ossa.status().set(2**40, 2)", nullptr},
        {"ossa.status().message(b'x')", nullptr},
        {"n.setAttribute('Radius', 2**70)", nullptr},
        {"n.setAttribute('Radius', object())", nullptr},
        {"n.setAttribute('Radius', {1: 2})", nullptr},
        {"n.setAttribute('Radius', '\\ud800')", nullptr},
        {"l = []\nl.append(l)\nn.setAttribute('Radius', l)", nullptr},
        {"n.bake('x.exr', 0)", nullptr},
        {"n.bake('x.exr', 16, ['a'])", nullptr},
        {"n.bake('x.exr', 16, [1.5])", nullptr},
    };

    const ExpectedLog expected[] = {ExpectedLog("pixels wide, not 0"),
                                    ExpectedLog("is no value for")};
    for (const auto &c : cases) {
        const int code = run(c.lines);
        EXPECT_EQ(code == 0, c.output != nullptr) << c.lines << qPrintable(m_errors);
        if (c.output)
            EXPECT_EQ(m_output.trimmed().toStdString(), c.output) << c.lines;
        else
            EXPECT_FALSE(m_errors.contains(QStringLiteral("SystemError"))) << qPrintable(m_errors);
    }
}

TEST_F(ScriptValues, ofOtherLibrariesAreNumbersWhenTheySaySo)
{
    ASSERT_EQ(run("n, a = found(float)\n"
                  "class Whole:\n    def __index__(self): return 1\n\n"
                  "class Real:\n    def __float__(self): return 0.25\n\n"
                  "class Broken:\n    def __index__(self): raise RuntimeError('mine')\n\n"
                  "class Text:\n    def __float__(self): return 'x'\n"),
              0)
        << qPrintable(m_errors);
    EXPECT_EQ(run("n.setAttribute(a, Whole()); print(n.attribute(a))"), 0) << qPrintable(m_errors);
    EXPECT_EQ(m_output, QStringLiteral("1.0\n"));
    EXPECT_EQ(run("n.setAttribute(a, Real()); print(n.attribute(a))"), 0) << qPrintable(m_errors);
    EXPECT_EQ(m_output, QStringLiteral("0.25\n"));
    EXPECT_EQ(run("n.setAttribute(a, Broken())"), 1);
    EXPECT_TRUE(m_errors.contains(QStringLiteral("mine"))) << qPrintable(m_errors);
    EXPECT_EQ(run("n.setAttribute(a, Text())"), 1);
    EXPECT_TRUE(m_errors.contains(QStringLiteral("TypeError"))) << qPrintable(m_errors);
    EXPECT_EQ(run("print(n.attribute(a))"), 0);
    EXPECT_EQ(m_output, QStringLiteral("0.25\n"));
}

TEST_F(ScriptValues, coloursGoBothWays)
{
    const ExpectedLog expected("is no value for");
    ASSERT_EQ(run("n, a = found(ossa.Color)"), 0) << qPrintable(m_errors);
    EXPECT_EQ(run("n.setAttribute(a, ossa.Color(0.25, 0.5, 2, 1))\n"
                  "c = n.attribute(a); print(c.red, c.green, c.blue, c.alpha)"),
              0)
        << qPrintable(m_errors);
    EXPECT_EQ(m_output, QStringLiteral("0.25 0.5 2.0 1.0\n"));
    EXPECT_EQ(run("c.red = 'x'\nn.setAttribute(a, c)"), 1);
    EXPECT_EQ(run("n.setAttribute(a, 'no colour')"), 1);
    EXPECT_EQ(run("c = n.attribute(a); print(c.red)"), 0);
    EXPECT_EQ(m_output, QStringLiteral("0.25\n"));
}

TEST_F(ScriptValues, ofObjectsThatAreGoneAreRefusedWhereverTheyStand)
{
    const ExpectedLog expected("object not valid");
    ASSERT_EQ(run("p = ossa.project()"), 0);
    m_project = OssProjectManager::instance()->newProject(QStringLiteral("Other"));
    for (const char *lines : {"n.name", "n.name = 'x'", "n.remove()", "g.nodes()", "p.save()",
                              "ossa.graph().select([n])", "ossa.graph().connect(n, n)",
                              "ossa.graph().remove([[n]])", "n.renamed.connect(print)"}) {
        EXPECT_EQ(run(lines), 1) << lines;
        EXPECT_FALSE(m_errors.contains(QStringLiteral("SystemError"))) << qPrintable(m_errors);
    }
    EXPECT_EQ(run("print(len(ossa.graph().nodes()) > 0)"), 0);
    EXPECT_EQ(m_output, QStringLiteral("True\n"));
}

TEST_F(ScriptValues, aCallThatFitsNothingIsToldWhatThereIs)
{
    const struct
    {
        const char *line;
        const char *told;
    } cases[] = {
        {"g.node(None)", "None"},      {"g.node(n)", "Node"},
        {"g.node(1.5)", "float"},      {"g.node()", "node(name: str) -> Node"},
        {"g.select(5)", "list[Node]"}, {"n.bake('x', 1, 2)", "list[int]"},
        {"n.remove(1)", "remove()"},
    };

    for (const auto &c : cases) {
        EXPECT_EQ(run(c.line), 1) << c.line;
        EXPECT_TRUE(m_errors.contains(QStringLiteral("TypeError"))) << qPrintable(m_errors);
        EXPECT_TRUE(m_errors.contains(QString::fromUtf8(c.told))) << qPrintable(m_errors);
    }
    EXPECT_EQ(run("n.remove(1)"), 1);
    EXPECT_FALSE(m_errors.contains(QStringLiteral("remove() ->"))) << "it returns nothing";
}
