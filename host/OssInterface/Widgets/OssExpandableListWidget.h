#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QFrame>
#include <QPointer>

class OssExpandableListHeading;
class QVBoxLayout;

/// A panel whose content can be folded away below its heading. Panels nest. Style sheets can
/// select them by the property that bears the class's name.
class OSSINTERFACE_EXPORT OssExpandableListWidget : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(bool OssExpandableListWidget READ isExpandableListWidget CONSTANT)

public:
    /// Without a title there is no heading; such a panel is folded by its owner only.
    explicit OssExpandableListWidget(const QString &title = {}, QWidget *parent = nullptr);

    bool isExpandableListWidget() const { return true; }

    /// Null when the panel has none.
    OssExpandableListHeading *heading() const { return m_heading; }

    /// Takes the widget over; one that was there before is deleted.
    void setBody(QWidget *body);

    QWidget *body() const { return m_body; }

    bool isCollapsed() const { return m_collapsed; }

public Q_SLOTS:
    void collapse();
    void expand();
    void toggle();

Q_SIGNALS:
    void collapsedChanged(bool collapsed);

private:
    void setCollapsed(bool collapsed);

    OssExpandableListHeading *m_heading = nullptr;
    QVBoxLayout *m_layout;
    QPointer<QWidget> m_body;
    bool m_collapsed = false;
};
