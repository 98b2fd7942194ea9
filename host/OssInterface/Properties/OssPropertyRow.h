#pragma once

#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssAttributeEdit.h"

#include <QLabel>

class OssPropertyEditor;
class QMenu;

/// One attribute in a property panel: its label with the marks of what was changed and what is
/// linked, its editor, and what can be done with its value.
class OSSINTERFACE_EXPORT OssPropertyRow : public QObject
{
    Q_OBJECT

public:
    /// Label and editor become children of `parent`, which must outlive the row or take it along.
    OssPropertyRow(OssSnBaseNode *node, const OssCustomAttribute &attribute, QWidget *parent);
    ~OssPropertyRow() override;

    QLabel *label() const { return m_label; }

    OssPropertyEditor *editor() const { return m_editor; }

    /// Shows the present value.
    void refresh();
    /// Shows the present value and whether the nodes edited together differ.
    void refreshTargets();
    void setLocked(bool locked);

    void reset();
    /// To the clipboard, exactly and as text.
    void copyValue() const;
    /// A value that was copied here, or text: also arithmetic for a number. Nothing happens when it
    /// is no value for this attribute.
    void pasteValue();
    void openMenu(const QPoint &globalPosition);

private:
    void showMarks(const OssCustomAttribute &attribute);
    QString toolTipFor(const OssCustomAttribute &attribute, bool *broken) const;
    QVariant clipboardValue() const;

    QPointer<OssSnBaseNode> m_node;
    QString m_name;
    OssAttributeEdit m_edit;
    QLabel *m_label;
    OssPropertyEditor *m_editor;
    bool m_mixed = false;
    bool m_locked = false;
};
