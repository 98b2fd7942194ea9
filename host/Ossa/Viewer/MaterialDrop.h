#pragma once

#include <QObject>
#include <QPointF>

#include <functional>

class OssGeoEntity;
class QMimeData;

/// Lets a material be dropped on a view of the object: it becomes a node, and the object is seen with it.
/// Other things, and several at once, are left to the view.
class MaterialDrop : public QObject
{
    Q_OBJECT

public:
    /// Which object is at a place of the view; null: the one that the user works on.
    using ObjectAt = std::function<const OssGeoEntity *(const QPointF &place)>;

    /// Owned by the view.
    explicit MaterialDrop(QWidget *view, ObjectAt objectAt = {});

    /// The path key of the one material; empty where the data is something else.
    static QString materialIn(const QMimeData *data);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    ObjectAt m_objectAt;
};
