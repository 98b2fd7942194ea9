#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

class OssSnGroupNode;

/// Groups as types of nodes: what a type holds of a group, and nodes against the versions of it. A group
/// of such a type is a group as any other; what is inside is its own. GUI thread.
namespace OssPublishedGroup {

struct Form
{
    QString category; ///< "Walls" or "Walls/Old": where the type stands in menus
    QString name;
    QString toolTip;
    QStringList aliases = {}; ///< other words by which people look for it: "worn", "metal"
    bool isShipped =
        false; ///< part of the application: the version id is not that of a user's type

    /// "Walls/Rough Bricks"; what is blank, or cannot stand in a key, is left out.
    OSSMODEL_EXPORT QString pathKey() const;
};

/// Null where the group can become such a type; else why not.
OSSMODEL_EXPORT OssResult canPublish(const OssSnGroupNode *group, const Form &form);
/// The description of the type, with the whole group in it, as it is now.
OSSMODEL_EXPORT QByteArray describe(OssSnGroupNode *group, const Form &form);
/// Makes the group a node of the type that was published from it: nothing inside changes. One undo step.
OSSMODEL_EXPORT void adopt(OssSnGroupNode *group, const std::shared_ptr<const OssSnNodeType> &type);

/// What is inside a group, in lines: all that a change by hand would change, but for what knobs set.
QStringList inside(const OssSnGroupNode *group);
/// Gives the group what the type has inside, with its ports and knobs. Values of knobs and wires are kept
/// by name; `lost` gets a line for each that has no place any more. Part of the caller's step.
void renew(OssSnGroupNode *group, const std::shared_ptr<const OssSnNodeType> &type,
           QStringList *lost);

} // namespace OssPublishedGroup
