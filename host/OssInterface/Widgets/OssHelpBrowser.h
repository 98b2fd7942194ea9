#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QTextBrowser>

/// Shows pages of help in the look of the program. A link is told by anchorClicked() and opens nothing
/// by itself.
class OSSINTERFACE_EXPORT OssHelpBrowser : public QTextBrowser
{
    Q_OBJECT

public:
    explicit OssHelpBrowser(QWidget *parent = nullptr);

    /// HTML without a frame around it. Pictures are looked for in `folder`.
    void showPage(const QString &body, const QString &folder);
};
