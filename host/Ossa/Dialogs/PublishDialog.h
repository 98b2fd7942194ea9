#pragma once

#include "OssModel/Graph/OssPublishedGroup.h"

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

/// Asks how a group is to be published: under which name, in which category, with which tool tip. It can
/// be accepted with what is possible only, and says why not.
class PublishDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PublishDialog(const OssSnGroupNode *group, QWidget *parent = nullptr);

    OssPublishedGroup::Form form() const;

private:
    void refresh();

    const OssSnGroupNode *m_group;
    QLineEdit *m_name;
    QComboBox *m_category;
    QPlainTextEdit *m_toolTip;
    QLineEdit *m_aliases;
    QLabel *m_told;
    QDialogButtonBox *m_buttons;
};
