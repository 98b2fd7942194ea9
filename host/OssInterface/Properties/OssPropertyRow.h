#pragma once

#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssAttributeEdit.h"

#include <QLabel>

class OssPropertyEditor;
class OssSnGroupNode;
class QKeyEvent;
class QMenu;

/// One attribute in a property panel: its label with the marks of what was changed and what is
/// linked, its editor, and what can be done with its value. Escape and the key of Undo take back what is dragged
/// in the editor; the pointer moves nothing any more then until its button is let go.
class OSSINTERFACE_EXPORT OssPropertyRow : public QObject
{
    Q_OBJECT

public:
    /// Label and editor become children of `parent`, which must outlive the row or take it along.
    OssPropertyRow(OssSnBaseNode *node, const OssCustomAttribute &attribute, QWidget *parent);
    ~OssPropertyRow() override;

    QString name() const { return m_name; }

    QLabel *label() const { return m_label; }

    OssPropertyEditor *editor() const { return m_editor; }

    /// Shows the present value, whether the nodes edited together differ, and whether it is locked.
    void refresh();

    /// See OssNodePropertyPanel.
    void letGo();

    void reset();
    /// To the clipboard, exactly and as text.
    void copyValue() const;
    /// A value that was copied here, or text: also arithmetic for a number. Nothing happens when it
    /// is no value for this attribute.
    void pasteValue();
    /// The commands of the menu, as the command table knows them.
    static QStringList commandPaths();
    /// False for other commands, and those that are not for this row.
    bool run(const QString &path);
    /// The same by their keys.
    bool takeKey(const QKeyEvent *event);
    void openMenu(const QPoint &globalPosition);

Q_SIGNALS:
    /// See OssPropertyEditor.
    void left();

protected:
    /// Of the application, during a drag.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Command;

    static const QVector<Command> &commands();
    bool canEdit() const;
    bool canReset() const;
    bool canPaste() const;
    /// Null where the row is no knob.
    OssSnGroupNode *knobGroup() const;
    /// Asks for another name.
    void renameKnob();
    void showMarks(const OssCustomAttribute &attribute, const QString &lock);
    QString toolTipFor(const OssCustomAttribute &attribute, bool *broken) const;
    QVariant clipboardValue() const;

    QPointer<OssSnBaseNode> m_node;
    QString m_name;
    OssAttributeEdit m_edit;
    QLabel *m_label;
    OssPropertyEditor *m_editor;
};
