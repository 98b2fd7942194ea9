#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QString>
#include <QStringList>

class QWidget;

/// File dialogs that start in the folder last used for the same purpose. The purpose is a path key
/// such as OssResourceInfo gives; the folder is kept in OssSettings, group "FileDialogs". Without
/// a user, and when the user cancels, the answer is empty.
///
/// `filter` is as for QFileDialog, "*.ong" or "Nodes (*.ong)". A null parent means the main window. A
/// `folder` that is there is begun with instead of the one used last.
class OSSINTERFACE_EXPORT OssFileDialog
{
public:
    /// With the filter's suffix, appended when the user left it out; replacing what is there was
    /// confirmed. A folder whose name ends in the suffix counts as a file of that kind.
    /// The dialog begins with `name`, whatever it has in it that no file name can have left out.
    static QString getSaveFileName(const QString &title, const QString &filter,
                                   const QString &pathKey, QWidget *parent = nullptr,
                                   const QString &name = {}, const QString &folder = {});
    static QString getOpenFileName(const QString &title, const QString &filter,
                                   const QString &pathKey, QWidget *parent = nullptr,
                                   const QString &folder = {});
    static QStringList getOpenFileNames(const QString &title, const QString &filter,
                                        const QString &pathKey, QWidget *parent = nullptr);
    static QString getExistingDirectory(const QString &title, const QString &pathKey,
                                        QWidget *parent = nullptr, const QString &folder = {});

    /// Where nothing is remembered, the folder in which the project lies; the user's own without one.
    static QString rememberedFolder(const QString &pathKey);
    static void rememberFolder(const QString &pathKey, const QString &folder);

    /// `path` with the first suffix of the filter, unless it ends in one of the filter's suffixes.
    static QString withSuffix(const QString &path, const QString &filter);
};
