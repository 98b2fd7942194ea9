#pragma once

#include "Ossa/Painting/Brushes.h"
#include "OssCore/Values/OssResult.h"

#include <QString>
#include <QVector>

#include <optional>

/// Brushes that can be taken up: those of the program, and the user's own, which are readable files in
/// "Brushes" of the configuration folder.
namespace BrushPresets {

struct Entry
{
    QString name;
    Brush brush;
    bool isOwn = false;
    QString problem{}; ///< why it cannot be taken up; empty when it can
};

/// The program's, then the user's own by name.
QVector<Entry> all();

/// Keeps one as the user's own, in place of one of that name. A stamp stays where it is.
OssResult save(const QString &name, const Brush &brush);
/// Of the user's own.
OssResult remove(const QString &name);

/// Keeps the brush that the user has in hand, with its colours, for the next session.
OssResult keepInHand(const Brush &brush);
/// Nothing where none was kept, or where it cannot be used any more: what it reads may be gone.
std::optional<Brush> keptInHand();

/// Stamps that need no file: their names.
QStringList stamps();
/// One of these, or read from a file. An empty name is none.
OssResult readStamp(const QString &name, OssEvStamp::Pointer *stamp);
/// From a file, in the project's colours. An empty name is none.
OssResult readPicture(const QString &path, OssEvPaintPicture::Pointer *picture);

QString ownFolder();

} // namespace BrushPresets
