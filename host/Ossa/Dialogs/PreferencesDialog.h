#pragma once

#include "OssCore/Program/OssPreferenceManager.h"

#include <QDialog>
#include <QHash>
#include <QVector>

class PreferenceEditor;
class QFormLayout;
class QListWidget;
class QStackedWidget;
class QVBoxLayout;

/// All preferences that objects have registered, by page and group, in the order of registration.
/// Changes act while the dialog is open; Cancel takes them back, OK has the objects keep them.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PreferencesDialog(QWidget *parent = nullptr);

    void accept() override;
    void reject() override;

private:
    void addPreferences();
    QVBoxLayout *pageLayout(const OssPreferenceManager::Preference &preference);
    QFormLayout *groupLayout(const OssPreferenceManager::Preference &preference);
    void resetCurrentPage();

    QListWidget *m_pages;
    QStackedWidget *m_stack;
    QHash<QString, QVBoxLayout *> m_pageLayouts;
    QHash<QString, QFormLayout *> m_groupLayouts;
    QVector<PreferenceEditor *> m_editors;
};
