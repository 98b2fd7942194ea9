#pragma once

#include "OssInterface/Actions/OssCommandTable.h"

#include <QString>

/// How commands are called where one reads about them.
namespace CommandNames {

/// "Node Graph > Select", the first menu that it stands in, shown with angles; empty for one that
/// stands in none.
QString menu(const OssCommandTable::Row &row);

/// "Ctrl+Shift+Z, Ctrl+Y", as they are now; empty for none.
QString keys(const OssCommandTable::Row &row);

/// Of the folder that it is filed in: "Node Graph".
QString folder(const OssCommandTable::Row &row);

/// Menu, name and keys, as a sentence has them.
QString asMarkdown(const OssCommandTable::Row &row);

} // namespace CommandNames
