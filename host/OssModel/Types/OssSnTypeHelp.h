#pragma once

#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnDataKind.h"

#include <QString>
#include <QStringList>
#include <QVector>

class OssSnNodeType;

/// What people are told of node types: the same in tool tips, the info dialog and the manual.
///
/// What a type does, its ports and attributes stand in its description. When one uses it stands beside
/// the descriptions, in files "Help.md" of the same folders, so that a better text leaves what is hashed
/// of a project alone:
///
///     ## Filter/Blur
///     For soft masks, ... (Markdown, as much as it takes)
///     See: Filter/Median, Filter/Bilateral
///
/// The files are read once, when the first text is asked for. GUI thread.
namespace OssSnTypeHelp {

/// Keys for which a text was written, sorted.
OSSMODEL_EXPORT QStringList writtenKeys();

/// When one uses the type: Markdown. Empty where nobody has written it.
OSSMODEL_EXPORT QString whenOf(const QString &pathKey);

/// Keys of types to look at as well.
OSSMODEL_EXPORT QStringList seeAlso(const QString &pathKey);

/// What flows through a port, for people.
OSSMODEL_EXPORT QString wordsOf(OssSnDataKind kind);

/// Name of a type's page among the pages of the manual: "node-filter-blur.html".
OSSMODEL_EXPORT QString pageName(const QString &pathKey);

/// A picture of what a type makes, and what was set for it; without captions: its defaults.
struct Picture
{
    QString file; ///< name within the folder
    QString caption;
};

/// Where the pictures of node types lie in a manual's folder: "pictures/nodes".
OSSMODEL_EXPORT QString pictureFolder();

/// Those that were drawn into a manual's folder, the defaults first.
OSSMODEL_EXPORT QVector<Picture> pictures(const OssSnNodeType &type, const QString &manual);

/// Name, what it does and when one uses it, with a picture where there is one: a tool tip in HTML.
OSSMODEL_EXPORT QString brief(const OssSnNodeType &type);

/// Everything that is known of the type: HTML without a frame around it. Links lead to pages of the
/// manual, pictures lie in its folder, and both are named relative to that.
OSSMODEL_EXPORT QString page(const OssSnNodeType &type, const QString &manual);

} // namespace OssSnTypeHelp
