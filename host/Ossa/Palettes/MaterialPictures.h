#pragma once

#include "Ossa/Surfaces/MaterialBalls.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QStringList>
#include <QTimer>

class OssSnNodeType;

/// Balls in light of node types that make a material, as they are when they are made. Drawn one after the
/// other behind everything else, when they are first asked for, and kept in the user's folder from then on:
/// a changed type is drawn anew. Where nothing can be drawn there are none. GUI thread.
class MaterialPictures : public QObject
{
    Q_OBJECT

public:
    static constexpr int side = 96; ///< device-independent pixels

    explicit MaterialPictures(QObject *parent = nullptr);

    /// Null while it is being made, and where none can be.
    QImage picture(const QString &pathKey);

    /// Where the pictures are kept.
    static QString folderPath();

Q_SIGNALS:
    void made(const QString &pathKey);

private:
    struct Kept
    {
        QString type; ///< what the picture is of
        QImage picture;
    };

    void next();
    /// False where it has to be drawn.
    bool read(const QString &pathKey, const QString &type);
    void draw(const QString &pathKey, const QString &type);
    void take(const QString &pathKey, const QString &type, const QImage &picture);

    MaterialBalls m_balls;
    QHash<QString, Kept> m_pictures;
    QStringList m_asked;
    QTimer m_next;
    bool m_isDrawing = false;
};
