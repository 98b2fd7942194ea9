#pragma once

#include "OssCore/Values/OssResult.h"

#include <QByteArray>
#include <QList>
#include <QPointF>
#include <QString>
#include <QStringList>

#include <optional>

class OssShaderNetwork;
class OssSnBaseNode;
class QDropEvent;
class QMimeData;

/// Files of nodes that are put into a network, and how the user is told.
struct NodeFileKind
{
    QString macroTitle;
    QString errorTitle;
    OssResult (*import)(OssShaderNetwork *, const QString &path, QList<OssSnBaseNode *> *inserted);

    static NodeFileKind nodes();
    static NodeFileKind material();
    static NodeFileKind customProcedural();
};

/// Nodes that come in from several files in one go.
struct NodeImport
{
    std::optional<QPointF> place; ///< in the scene: where the corner of the next goes
    QList<OssSnBaseNode *> nodes;
    QString errorTitle; ///< of the first that was refused
    QStringList errors;

    void refuse(const QString &title, const QStringList &reasons);
    /// Shows the errors in one box; nothing when there are none.
    void tellErrors() const;
};

/// What the node graph makes of what is dragged to it. Files are looked for, not read; pictures are
/// told by their first bytes.
struct DropContents
{
    int nodeTypes = 0; ///< and whatever else OssDragAndDropManager takes
    int images = 0;
    QStringList materials;
    QStringList customProcedurals;
    QStringList nodeFiles;
    QByteArray nodesText;

    static DropContents of(const QMimeData *data);

    /// Things, not nodes: what is in files is not known yet. At 0 there is nothing to drop.
    int count() const;
    /// Text stays where it is dragged from, whatever that proposes.
    void accept(QDropEvent *event) const;
    /// Before it is dropped: "Drop: 2 images become nodes".
    QString inWords() const;
};
