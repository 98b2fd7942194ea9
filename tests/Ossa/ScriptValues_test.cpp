#include "ScriptSession.h"

#include <QTemporaryDir>

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

/// Two blurs in a row, a color before them, a group beside them.
class ScriptEdits : public ScriptSession
{
protected:
    void SetUp() override
    {
        ScriptSession::SetUp();
        OssSnBaseNode *first = add("Filter/Blur", "First");
        wire(add("Procedural/Color", "Paint"), first);
        wire(first, add("Filter/Blur", "Second"));
        add("Misc/Group", "Around");
        run("import ossa\n"
            "g = ossa.graph()\n"
            "a, b, c, r = (g.node(n) for n in ('Paint', 'First', 'Second', 'Around'))\n"
            "g.select([])");
        OssUndoManager::instance()->clear();
    }
};

} // namespace

TEST_F(ScriptValues, arriveAsTheyWereGivenInEveryFormThatTheyMayHave)
{
    const ExpectedLog expected[] = {ExpectedLog("pixels wide, not 0"),
                                    ExpectedLog("is no value for")};
    const std::pair<const char *, const char *> cases[] = {
        // without output: refused
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
    for (const auto &[lines, output] : cases) {
        if (output)
            EXPECT_EQ(printed(lines), output) << lines;
        else
            expectRaised(lines, "");
    }
}

TEST_F(ScriptValues, ofOtherLibrariesAreNumbersWhenTheySaySo)
{
    EXPECT_EQ(printed("n, a = found(float)\n"
                      "class Whole:\n    def __index__(self): return 1\n\n"
                      "class Real:\n    def __float__(self): return 0.25\n\n"
                      "class Broken:\n    def __index__(self): raise RuntimeError('mine')\n\n"
                      "class Text:\n    def __float__(self): return 'x'\n"),
              "");
    EXPECT_EQ(printed("n.setAttribute(a, Whole()); print(n.attribute(a))"), "1.0");
    EXPECT_EQ(printed("n.setAttribute(a, Real()); print(n.attribute(a))"), "0.25");
    expectRaised("n.setAttribute(a, Broken())", "mine");
    expectRaised("n.setAttribute(a, Text())", "TypeError");
    EXPECT_EQ(printed("print(n.attribute(a))"), "0.25");
}

TEST_F(ScriptValues, coloursGoBothWays)
{
    const ExpectedLog expected("is no value for");
    EXPECT_EQ(printed("n, a = found(ossa.Color)\n"
                      "n.setAttribute(a, ossa.Color(0.25, 0.5, 2, 1))\n"
                      "c = n.attribute(a); print(c.red, c.green, c.blue, c.alpha)"),
              "0.25 0.5 2.0 1.0");
    expectRaised("c.red = 'x'\nn.setAttribute(a, c)", "");
    expectRaised("n.setAttribute(a, 'no colour')", "");
    EXPECT_EQ(printed("c = n.attribute(a); print(c.red)"), "0.25");
}

TEST_F(ScriptValues, ofObjectsThatAreGoneAreRefusedWhereverTheyStand)
{
    const ExpectedLog expected("object not valid");
    ASSERT_EQ(run("p = ossa.project()"), 0);
    m_project = OssProjectManager::instance()->newProject(text("Other"));
    for (const char *lines : {"n.name", "n.name = 'x'", "n.remove()", "g.nodes()", "p.save()",
                              "ossa.graph().select([n])", "ossa.graph().connect(n, n)",
                              "ossa.graph().remove([[n]])", "n.renamed.connect(print)"})
        expectRaised(lines, "");
    EXPECT_EQ(printed("print(len(ossa.graph().nodes()) > 0)"), "True");
}

TEST_F(ScriptValues, aCallThatFitsNothingIsToldWhatThereIs)
{
    const std::pair<const char *, const char *> cases[] = {
        {"g.node(None)", "None"},      {"g.node(n)", "Node"},
        {"g.node(1.5)", "float"},      {"g.node()", "node(name: str) -> Node"},
        {"g.select(5)", "list[Node]"}, {"n.bake('x', 1, 2)", "list[int]"},
        {"n.remove(1)", "remove()"},
    };
    for (const auto &[line, told] : cases) {
        expectRaised(line, told);
        EXPECT_TRUE(m_errors.contains(text("TypeError"))) << qPrintable(m_errors);
    }
    EXPECT_FALSE(m_errors.contains(text("remove() ->"))) << "it returns nothing";
}

TEST_F(ScriptEdits, doWhatTheySayInAStepThatGoesBack)
{
    const std::pair<const char *, const char *> cases[] = {
        {"b.enabled = False; b.enabled", "False"},
        {"b.enabled", "True"},
        {"b.bypassed = True; b.bypassed", "True"},
        {"b.bypassed", "False"},
        {"b.disconnectInput('Input'); b.inputNode('Input')", ""},
        {"b.inputNode('Input').name", "'Paint'"},
        {"c.connectInput('Input', a); c.inputNode('Input').name", "'Paint'"},
        {"g.extract([b]); c.inputNode('Input').name", "'Paint'"},
        {"g.remove([b]); [n.name for n in g.nodes() if n.name == 'First']", "[]"},
        {"b.remove(); g.node('First')", ""},
        {"n = g.group([b, c], 'Both'); sorted(x.name for x in n.inside().allNodes() if 'i' in "
         "x.type.lower() and x.type == 'Filter/Blur')",
         "['First', 'Second']"},
        {"sorted(n.name for n in g.duplicate([b, c]))", "['First 2', 'Second 2']"},
        {"[n.type for n in g.fromText(g.toText([b]))]", "['Filter/Blur']"},
        {"g.view(b); g.viewer().inputNode('1').name", "'First'"},
        {"b.setAttribute('Radius', 3); b.resetAttribute('Radius'); b.attribute('Radius') != 3",
         "True"},
    };
    const QByteArray start = m_project->stateHash();
    const int shown = m_network->viewerNodeCurrentEdge(); // saved, but not undone
    for (const auto &[script, output] : cases) {
        EXPECT_EQ(printed(script), output) << script;
        while (OssUndoManager::instance()->canUndo())
            OssUndoManager::instance()->undo();
        m_network->setViewerNodeCurrentEdge(shown, true);
        EXPECT_TRUE(m_project->stateHash() == start) << script;
    }
    EXPECT_EQ(printed("g.select([a, c]); sorted(n.name for n in g.selectedNodes())"),
              "['Paint', 'Second']");
    EXPECT_EQ(printed("print(a.selected, b.selected)\na.selected = False\na.selected"),
              "True False\nFalse");
}

TEST_F(ScriptEdits, whatCannotBeDoneIsRaisedInWordsAndChangesNothing)
{
    const QTemporaryDir folder;
    const QByteArray start = m_project->stateHash();
    const ExpectedLog possible("", ExpectedLog::Possible);
    const std::pair<QString, const char *> cases[] = {
        {text("g.view(r.inside().nodes()[0] if r.inside().nodes() else None)"), ""},
        {text("g.view(a, 99)"), "99"},
        {text("a.connectInput('No', b)"), "No"},
        {text("b.disconnectInput('No')"), "No"},
        {text("b.connectInput('Input', c)"), ""},
        {text("g.ungroup(a)"), ""},
        {text("g.exportNodes([a], '%1/none/x.ong')").arg(folder.path()), "none"},
        {text("g.importNodes('%1/none.ong')").arg(folder.path()), "none.ong"},
        {text("ossa.project().saveAs('/proc/x.ossa')"), "/proc"},
        {text("g.createNode('No/Such')"), "No/Such"},
    };
    for (const auto &[script, words] : cases) {
        expectRaised(script, words);
        EXPECT_TRUE(m_project->stateHash() == start) << qPrintable(script);
    }
}
