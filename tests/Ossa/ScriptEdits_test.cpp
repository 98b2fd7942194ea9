#include "ScriptSession.h"

#include <QTemporaryDir>

namespace {

/// Two blurs in a row, a color before them, a group beside them.
class ScriptEdits : public ScriptSession
{
protected:
    void SetUp() override
    {
        ScriptSession::SetUp();
        OssSnBaseNode *color = add("Procedural/Color", "Paint");
        OssSnBaseNode *first = add("Filter/Blur", "First");
        OssSnBaseNode *second = add("Filter/Blur", "Second");
        wire(color, first);
        wire(first, second);
        add("Misc/Group", "Around");
        for (OssSnBaseNode *node : m_network->nodes())
            node->setSelected(false);
        OssUndoManager::instance()->clear();
        run("import ossa\n"
            "g = ossa.graph()\n"
            "a, b, c, r = (g.node(n) for n in ('Paint', 'First', 'Second', 'Around'))");
    }
};

TEST_F(ScriptEdits, doWhatTheySayInAStepThatGoesBack)
{
    const struct
    {
        const char *script;
        const char *output;
    } cases[] = {
        {"b.enabled = False; b.enabled", "False\n"},
        {"b.enabled", "True\n"},
        {"b.bypassed = True; b.bypassed", "True\n"},
        {"b.bypassed", "False\n"},
        {"b.disconnectInput('Input'); b.inputNode('Input')", ""},
        {"b.inputNode('Input').name", "'Paint'\n"},
        {"c.connectInput('Input', a); c.inputNode('Input').name", "'Paint'\n"},
        {"g.extract([b]); c.inputNode('Input').name", "'Paint'\n"},
        {"g.remove([b]); [n.name for n in g.nodes() if n.name == 'First']", "[]\n"},
        {"b.remove(); g.node('First')", ""},
        {"n = g.group([b, c], 'Both'); sorted(x.name for x in n.inside().allNodes() if 'i' in "
         "x.type.lower() and x.type == 'Filter/Blur')",
         "['First', 'Second']\n"},
        {"sorted(n.name for n in g.duplicate([b, c]))", "['First 2', 'Second 2']\n"},
        {"[n.type for n in g.fromText(g.toText([b]))]", "['Filter/Blur']\n"},
        {"g.view(b); g.viewer().inputNode('1').name", "'First'\n"},
        {"b.setAttribute('Radius', 3); b.resetAttribute('Radius'); b.attribute('Radius') != 3",
         "True\n"},
    };

    const QByteArray start = m_project->stateHash();
    const int shown = m_network->viewerNodeCurrentEdge(); // saved, but not undone
    for (const auto &c : cases) {
        EXPECT_EQ(run(c.script), 0) << c.script << "\n" << qPrintable(m_errors);
        EXPECT_EQ(m_output.toStdString(), c.output) << c.script;
        while (OssUndoManager::instance()->canUndo())
            OssUndoManager::instance()->undo();
        m_network->setViewerNodeCurrentEdge(shown, true);
        EXPECT_TRUE(m_project->stateHash() == start) << c.script;
    }
}

TEST_F(ScriptEdits, selectWhatIsNamedAndNothingElse)
{
    EXPECT_EQ(run("g.select([a, c]); sorted(n.name for n in g.selectedNodes())"), 0);
    EXPECT_EQ(m_output, QStringLiteral("['Paint', 'Second']\n"));
    EXPECT_EQ(run("print(a.selected, b.selected)\na.selected = False\na.selected"), 0);
    EXPECT_EQ(m_output, QStringLiteral("True False\nFalse\n"));
}

TEST_F(ScriptEdits, whatCannotBeDoneIsRaisedInWordsAndChangesNothing)
{
    const QTemporaryDir folder;
    const QByteArray start = m_project->stateHash();
    const std::pair<QString, const char *> cases[] = {
        {QStringLiteral("g.view(r.inside().nodes()[0] if r.inside().nodes() else None)"), ""},
        {QStringLiteral("g.view(a, 99)"), "99"},
        {QStringLiteral("a.connectInput('No', b)"), "No"},
        {QStringLiteral("b.disconnectInput('No')"), "No"},
        {QStringLiteral("b.connectInput('Input', c)"), ""},
        {QStringLiteral("g.ungroup(a)"), ""},
        {QStringLiteral("g.exportNodes([a], '%1/none/x.ong')").arg(folder.path()), "none"},
        {QStringLiteral("g.importNodes('%1/none.ong')").arg(folder.path()), "none.ong"},
        {QStringLiteral("ossa.project().saveAs('/proc/x.ossa')"), "/proc"},
        {QStringLiteral("g.createNode('No/Such')"), "No/Such"},
    };
    for (const auto &[script, words] : cases) {
        const ExpectedLog possible("", ExpectedLog::Possible);
        EXPECT_EQ(run(script), 1) << qPrintable(script);
        EXPECT_TRUE(m_errors.contains(QLatin1String(words)))
            << qPrintable(script) << ": " << qPrintable(m_errors);
        EXPECT_TRUE(m_project->stateHash() == start) << qPrintable(script);
    }
}

} // namespace
