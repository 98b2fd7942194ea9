#include "OssInterface/OssInterfaceServices.h"

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenuManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssFocusReturn.h"
#include "OssInterface/Popups/OssMenuPress.h"
#include "OssInterface/Popups/OssPlainTexts.h"
#include "OssInterface/Popups/OssWorkDialog.h"
#include "OssModel/OssModelServices.h"
#include "OssModel/Project/OssProjectManager.h"

struct OssInterfaceServices::Services
{
    OssModelServices model;
    OssActionTreeManager actions;
    OssShortcutManager shortcuts;
    OssMenuManager menus;
    OssPaletteManager palettes;
    OssDragAndDropManager dragAndDrop;
    OssWorkDialog workDialog;
    OssFocusReturn focusReturn;
    OssMenuPress menuPress;
    OssPlainTexts plainTexts;
};

OssInterfaceServices::OssInterfaceServices()
    : m_services(std::make_unique<Services>())
{
}

OssInterfaceServices::~OssInterfaceServices()
{
    OssProjectManager::instance()->closeProject(); // while there is what shows it
}
