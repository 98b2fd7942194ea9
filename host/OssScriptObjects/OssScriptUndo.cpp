#include "OssScriptObjects/OssScriptUndo.h"

#include "OssScriptObjects/OssScriptManager.h"

void OssScriptUndo::start(const QString &title)
{
    finish();
    m_title = title;
    m_running = true;
    m_whole = std::make_unique<OssUndoManager::AutoMacro>(title);
}

void OssScriptUndo::finish()
{
    while (closeMacro()) {}
    m_whole.reset();
    m_running = false;
}

void OssScriptUndo::openMacro(const QString &title)
{
    m_whole.reset();
    m_own.push_back(std::make_unique<OssUndoManager::AutoMacro>(title));
}

bool OssScriptUndo::closeMacro()
{
    if (m_own.empty())
        return false;
    m_own.pop_back();
    if (m_own.empty() && m_running)
        m_whole = std::make_unique<OssUndoManager::AutoMacro>(m_title);
    return true;
}

OssScriptUndo::Interruption::Interruption()
{
    OssScriptManager::instance()->undo().m_whole.reset();
}

OssScriptUndo::Interruption::~Interruption()
{
    OssScriptUndo &undo = OssScriptManager::instance()->undo();
    if (undo.m_running && undo.m_own.empty())
        undo.m_whole = std::make_unique<OssUndoManager::AutoMacro>(undo.m_title);
}
