#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QList>

class OssSnBakePointNode;
class QWidget;

/// Asks how large the images of bake points become, and how finely they keep values, where neither the
/// bake points say so nor images that they have.
namespace OssBakeDialog {

/// What is chosen becomes theirs, as one step. False when the user wants no bake after all; true without
/// a question where all of them say.
OSSINTERFACE_EXPORT bool ask(const QList<OssSnBakePointNode *> &nodes, QWidget *parent = nullptr);

} // namespace OssBakeDialog
