#include "OssInterface/Actions/OssDefaultShortcuts.h"

#include <QHash>
#include <QStringList>

namespace {

struct Row
{
    const char *path;
    const char *keys; ///< portable text; alternatives are separated by a blank
};

// clang-format off
const Row table[] = {
    {"/Ossa/File/New", "Ctrl+N"},
    {"/Ossa/File/Open...", "Ctrl+O"},
    {"/Ossa/File/Save", "Ctrl+S"},
    {"/Ossa/File/Save As...", "Ctrl+Shift+S"},
    {"/Ossa/File/Close", "Ctrl+W"},
    {"/Ossa/File/Quit", "Ctrl+Q"},
    {"/Ossa/Edit/Undo", "Ctrl+Z"},
    {"/Ossa/Edit/Redo", "Ctrl+Shift+Z Ctrl+Y"},
    {"/Ossa/Edit/Preferences...", "Ctrl+,"},
    {"/Ossa/Edit/Keyboard Shortcuts...", "Ctrl+Alt+K"},
    {"/Ossa/View/Full Screen", "F11"},
    {"/Ossa/Help/Find Command...", "Ctrl+Shift+P"},

    {"/Ossa/NodeGraph/Quick Create", "Tab"},
    {"/Ossa/NodeGraph/Focus Selection", "F"},
    {"/Ossa/NodeGraph/Frame Nodes", "A"},
    {"/Ossa/NodeGraph/Search Node", "Ctrl+F"},
    {"/Ossa/NodeGraph/Disable", "D"},
    {"/Ossa/NodeGraph/Bypass", "B"},
    {"/Ossa/NodeGraph/Autoplace", "L"},
    {"/Ossa/NodeGraph/Cut", "Ctrl+X"},
    {"/Ossa/NodeGraph/Copy", "Ctrl+C"},
    {"/Ossa/NodeGraph/Paste", "Ctrl+V"},
    {"/Ossa/NodeGraph/Duplicate", "Ctrl+D"},
    {"/Ossa/NodeGraph/Delete", "Del Backspace"},
    {"/Ossa/NodeGraph/Select All", "Ctrl+A"},
    {"/Ossa/NodeGraph/Rename Node", "F2"},
    {"/Ossa/NodeGraph/Extract", "Ctrl+Shift+X"},
    {"/Ossa/NodeGraph/Swap Inputs", "Shift+X"},
    {"/Ossa/NodeGraph/Toggle Edge Sever Mode", "Y"},
    {"/Ossa/NodeGraph/Pick Up Edge Under Mouse", "E"},
    {"/Ossa/NodeGraph/Toggle Snap to Grid", "G"},
    {"/Ossa/NodeGraph/Toggle Port List", "P"},
    {"/Ossa/NodeGraph/Cycle Port List Mode", "Shift+P"},
    {"/Ossa/NodeGraph/Open Group Node Subgraph", "Ctrl+Return Ctrl+Enter"},
    {"/Ossa/NodeGraph/Group Selected Nodes", "Ctrl+G"},
    {"/Ossa/NodeGraph/Ungroup", "Ctrl+Shift+G"},
    {"/Ossa/NodeGraph/Open Node Properties", "Return Enter"},
    {"/Ossa/NodeGraph/Info Viewer", "I"},

    {"/Ossa/NodeGraph/Connect Selected Node to Viewer", "1"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer2", "2"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer3", "3"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer4", "4"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer5", "5"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer6", "6"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer7", "7"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer8", "8"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer9", "9"},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer0", "0"},
    {"/Ossa/NodeGraph/Move Viewer to Cursor", "V"},

    {"/Ossa/NodeGraph/Select Previous Upstream", "Ctrl+Left"},
    {"/Ossa/NodeGraph/Select Next Downstream", "Ctrl+Right"},
    {"/Ossa/NodeGraph/Select Previous Sibling", "Ctrl+Up"},
    {"/Ossa/NodeGraph/Select Next Sibling", "Ctrl+Down"},
    {"/Ossa/NodeGraph/Add Select Previous Upstream", "Ctrl+Shift+Left"},
    {"/Ossa/NodeGraph/Add Select Next Downstream", "Ctrl+Shift+Right"},
    {"/Ossa/NodeGraph/Add Select Previous Sibling", "Ctrl+Shift+Up"},
    {"/Ossa/NodeGraph/Add Select Next Sibling", "Ctrl+Shift+Down"},
    {"/Ossa/NodeGraph/Select All Upstream", "U"},
    {"/Ossa/NodeGraph/Select All Downstream", "Shift+U"},
    {"/Ossa/NodeGraph/Select Stream Upstream", "Ctrl+U"},
    {"/Ossa/NodeGraph/Select Stream Downstream", "Ctrl+Shift+U"},
    {"/Ossa/NodeGraph/Select Between", "Shift+B"},

    {"/Ossa/NodeGraph/Zoom In", "+ ="},
    {"/Ossa/NodeGraph/Zoom Out", "-"},
    {"/Ossa/NodeGraph/Pan Left", "Left"},
    {"/Ossa/NodeGraph/Pan Right", "Right"},
    {"/Ossa/NodeGraph/Pan Up", "Up"},
    {"/Ossa/NodeGraph/Pan Down", "Down"},

    {"/Ossa/NodeGraph/Smart Bake And Update", "Ctrl+B"},
};

// clang-format on

QHash<QString, QList<QKeySequence>> readTable()
{
    QHash<QString, QList<QKeySequence>> keysByPath;
    for (const Row &row : table) {
        QList<QKeySequence> keys;
        const QStringList texts = QString::fromLatin1(row.keys).split(QLatin1Char(' '));
        for (const QString &text : texts)
            keys.append(QKeySequence::fromString(text, QKeySequence::PortableText));
        keysByPath.insert(QString::fromLatin1(row.path), keys);
    }
    return keysByPath;
}

} // namespace

QList<QKeySequence> OssDefaultShortcuts::keys(const QString &path)
{
    static const QHash<QString, QList<QKeySequence>> keysByPath = readTable();
    return keysByPath.value(path);
}
