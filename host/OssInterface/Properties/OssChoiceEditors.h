#pragma once

#include "OssCore/Values/OssUserEnum.h"
#include "OssInterface/Properties/OssPropertyEditor.h"

class QCheckBox;
class QComboBox;

/// Edits a choice from a list.
class OssChoiceEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssChoiceEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;
    void explainChoice(const QString &choice, const QString &meaning) override;

private:
    QComboBox *m_list;
    OssUserEnum m_value;
};

/// Chooses one of the colour spaces of the project's configuration, or none: automatic.
class OssColorSpaceEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssColorSpaceEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;
    void explainChoice(const QString &choice, const QString &meaning) override;

private:
    QComboBox *m_list;
};

/// Edits a yes or no.
class OssFlagEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssFlagEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;

private:
    QCheckBox *m_box;
};

/// Chooses one of the project's images; images and picture files may also be dropped, several at
/// once. Files become images of the project in the same step.
class OssImagesEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssImagesEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void fillList();

    QComboBox *m_list;
    QStringList m_ids;
};
