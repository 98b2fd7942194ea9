#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QToolButton;

/// The heading of an OssExpandableListWidget: an arrow that collapses and expands, the title, and
/// widgets of the owner's choice before and behind it. A click on the title does what the arrow does.
class OSSINTERFACE_EXPORT OssExpandableListHeading : public QWidget
{
    Q_OBJECT

public:
    explicit OssExpandableListHeading(const QString &text, QWidget *parent = nullptr);

    QString text() const;
    void setText(const QString &text);

    /// What the title's tool tip says besides the title.
    void setDescription(const QString &description);

    /// Before the title at a place counted from 0, or for an index below 0 at the end, at the right.
    /// The heading becomes the widget's parent.
    void insertWidget(int index, QWidget *widget);

    void setCollapsed(bool collapsed);

Q_SIGNALS:
    void toggled();

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void showToolTip();

    QString m_description;
    QToolButton *m_arrow;
    QLabel *m_label;
    QHBoxLayout *m_leading;
    QHBoxLayout *m_widgets;
};
