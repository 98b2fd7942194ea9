#pragma once

#include <QDialog>
#include <QPointer>
#include <QWidget>

class GroupInFront;
class OssGroupNodeKnobWidget;
class OssSnBaseNode;
class OssSnGroupNode;
class QDialogButtonBox;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

/// The window in which a group's knobs are managed. Every change is made at once; OK only closes.
class OssGroupNodeKnobDialog : public QDialog
{
    Q_OBJECT

public:
    /// Closes when the group is deleted.
    explicit OssGroupNodeKnobDialog(OssSnGroupNode *groupNode);
    ~OssGroupNodeKnobDialog() override;
};

/// The knobs of a group by section, and what can be done with them.
class OssGroupNodeKnobWidget : public QWidget
{
    Q_OBJECT

public:
    OssGroupNodeKnobWidget(OssSnGroupNode *groupNode, QWidget *parent);
    ~OssGroupNodeKnobWidget() override;

    QDialogButtonBox *buttonBox() const { return m_buttonBox; }

protected Q_SLOTS:
    virtual void showGizmoPropertySelection();
    /// Fills the tree anew and selects a knob, or a section where `CurrentKnobIsNode`.
    void refreshKnobList(QString CurrentKnobName = {}, bool CurrentKnobIsNode = false);
    void editKnob();
    void linkKnobs();
    void deleteKnob();
    void moveSelectedKnobUp();
    void moveSelectedKnobDown();
    void findNextPickItem();
    void findPreviousPickItem();
    void printInfoOfKnobItem();
    void itemSelectionChanged();

private:
    QPushButton *addButton(const QString &text, void (OssGroupNodeKnobWidget::*slot)());
    void addKnobItem(const QString &nodeAttribute, const QString &currentKnob, bool currentIsNode);
    QTreeWidgetItem *groupItem(const QString &group, bool current);
    /// Of knobs only.
    QList<QTreeWidgetItem *> selectedKnobs() const;
    bool isGroupSelected() const;
    bool askForKnobName(QString *name);
    void moveSelectedKnob(int step);
    void moveKnob(const QTreeWidgetItem *item, int step);
    void moveGroup(const QTreeWidgetItem *item, int step);
    void storeOrder(const QStringList &order, const QString &current, bool isNode);
    class QHBoxLayout *makeSearchRow(QLineEdit *search);
    void fillPickTree();
    bool isKnobAlready(const OssSnBaseNode *node, const QString &attribute) const;
    /// Lights up, in the group's graph, the nodes of what is picked and of the current item.
    void highlightPickedNodes();
    void createPickedKnobs();
    void findPickItem(int step);
    void openContextMenu(const QPoint &position);

    QPointer<OssSnGroupNode> m_groupNode;
    QTreeWidget *m_knobTree;
    QDialogButtonBox *m_buttonBox;
    QPushButton *m_edit;
    QPushButton *m_link;
    QPushButton *m_delete;
    QPushButton *m_up;
    QPushButton *m_down;
    // While the pick dialog is open.
    QTreeWidget *m_pickTree = nullptr;
    const GroupInFront *m_inFront = nullptr;
    QLineEdit *m_search = nullptr;
    QTreeWidgetItem *m_found = nullptr; ///< what the search picked and the user has not touched
};
