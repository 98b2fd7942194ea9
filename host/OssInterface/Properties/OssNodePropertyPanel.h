#pragma once

#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssPropertyPanelOptions.h"
#include "OssInterface/Widgets/OssExpandableListWidget.h"

#include <QHash>
#include <QPointer>
#include <QVector>

class OssFormLayout;
class OssPropertyRow;
class OssSnBaseNode;
class OssSnGroupNode;
class QAbstractButton;
class QLabel;
class QMenu;
class QVBoxLayout;

/// The property editor of a node: a row for each visible attribute, in a section for each group of
/// them. It follows the node's values, names and links; whoever shows it makes it anew when the
/// attributes are others. While the node is one of several selected ones of its type, an edit goes to
/// all of them. Of a locked node it shows only; pinned, whoever shows panels keeps it. Both are the
/// node's and outlive the panel.
class OSSINTERFACE_EXPORT OssNodePropertyPanel : public OssExpandableListWidget
{
    Q_OBJECT
    Q_PROPERTY(bool locked READ isLocked WRITE setLocked)
    Q_PROPERTY(bool pinned READ isPinned WRITE setPinned)

public:
    OssNodePropertyPanel(OssSnBaseNode *node, const OssPropertyPanelOptions &options,
                         QWidget *parent);
    ~OssNodePropertyPanel() override;

    /// Null once it is gone or let go of.
    OssSnBaseNode *node() const { return m_node; }

    /// Null when there is none of that name.
    OssPropertyRow *row(const QString &attribute) const { return m_rows.value(attribute); }

    /// The row that has the keyboard, or gets it back when a dialog before it closes; null when none has.
    OssPropertyRow *focusedRow() const;
    /// The same of whichever panel has the keyboard.
    static OssPropertyRow *rowWithKeyboard();

    /// The node leaves the document, and the panel will, too: nothing that is half typed becomes an
    /// edit.
    void letGo();

    bool isLocked() const;
    void setLocked(bool locked);
    bool isPinned() const;
    void setPinned(bool pinned);

    /// All values, as text that can be pasted into panels of any node: what has no namesake there,
    /// or no value of its type, is left out.
    void copyValues() const;
    void pasteValues();
    void resetValues();

Q_SIGNALS:
    /// The user is done with what had the keyboard here, or closes the panel while it has it.
    void left();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    struct Section
    {
        QString title;
        QVector<QString> attributes;
    };

    QVector<Section> sections(const OssPropertyPanelOptions &options) const;
    QWidget *makeBody(const OssPropertyPanelOptions &options);
    void addNodeSection(const OssPropertyPanelOptions &options, QVBoxLayout *layout);
    void addRow(const QString &attribute, OssFormLayout *form, QWidget *parent);
    bool isTouched(const Section &section) const;
    void makeHeading();
    QAbstractButton *makeButton(const QString &icon, const QString &toolTip, bool checked);
    void followNode(bool title);
    void followSelection();
    void describe();
    void showLock();
    /// In the event loop, once for many changes.
    void refreshLater();
    void refreshTargets();
    void refreshRow(const QString &attribute);
    void refreshRows();
    void refreshLinked(const OssSnGroupNode *group, const QString &knob);
    void openMenu(const QPoint &position);
    /// From the node to itself in the graph and to its neighbours.
    void addWays(QMenu *menu);

    QPointer<OssSnBaseNode> m_node;
    QHash<QString, OssPropertyRow *> m_rows;
    QLabel *m_others = nullptr;
    QPointer<QWidget> m_name;                    ///< where the node's name is edited, if it is
    QVector<QPointer<OssSnBaseNode>> m_followed; ///< what else is edited here
    bool m_refreshes = false;
    QAbstractButton *m_lock = nullptr;
    QAbstractButton *m_pin = nullptr;
};
