#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QDialog>
#include <QList>

class OssSnBaseNode;

/// What a user asks of nodes: path, type, version, state, errors, what they take from and feed. The
/// text can be selected and copied. On a second tab stands what the manual tells of their types.
class OSSINTERFACE_EXPORT OssNodeInfoDialog : public QDialog
{
    Q_OBJECT

public:
    explicit OssNodeInfoDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent = nullptr);

    /// One block of "Name: value" lines for each node, with blank lines between them.
    static QString text(const QList<OssSnBaseNode *> &nodes);
};
