#include "Ossa/Dialogs/PreferencesDialog.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Dialogs/PreferenceEditor.h"
#include "OssInterface/Actions/OssTabOrder.h"
#include "OssInterface/Widgets/OssFormLayout.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>

namespace {

/// The page as preferences name it.
constexpr int pageRole = Qt::UserRole;

} // namespace

PreferencesDialog::PreferencesDialog(QWidget *parent)
    : QDialog(parent)
    , m_pages(new QListWidget(this))
    , m_stack(new QStackedWidget(this))
{
    setWindowTitle(tr("Preferences"));
    m_pages->setAccessibleName(tr("Pages"));
    m_pages->setFixedWidth(160);
    connect(m_pages, &QListWidget::currentRowChanged, m_stack, &QStackedWidget::setCurrentIndex);

    auto *buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::RestoreDefaults, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferencesDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PreferencesDialog::reject);
    QPushButton *resetButton = buttons->button(QDialogButtonBox::RestoreDefaults);
    resetButton->setText(tr("Reset to Defaults"));
    resetButton->setToolTip(tr("Reset all preferences of this page"));
    connect(resetButton, &QPushButton::clicked, this, &PreferencesDialog::resetCurrentPage);

    auto *columns = new QHBoxLayout;
    columns->addWidget(m_pages);
    columns->addWidget(m_stack, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addWidget(buttons);

    addPreferences();
    OssFormLayout::alignLabels(m_stack);
    m_pages->setCurrentRow(0);
    OssTabOrder::followLayout(this);
    resize(Theme::fitting({780, 620}));
}

void PreferencesDialog::accept()
{
    OssPreferenceManager::instance()->savePreferences();
    QDialog::accept();
}

void PreferencesDialog::reject()
{
    for (PreferenceEditor *editor : qAsConst(m_editors))
        editor->restore();
    QDialog::reject();
}

void PreferencesDialog::addPreferences()
{
    const auto preferences = OssPreferenceManager::instance()->preferences();
    for (const OssPreferenceManager::Preference &preference : preferences) {
        auto *editor = new PreferenceEditor(preference, this);
        m_editors.append(editor);
        QWidget *widget = editor->createWidget();
        auto *label = new QLabel(OssPreferenceManager::label(preference));
        label->setToolTip(widget->toolTip());
        label->setBuddy(widget);
        groupLayout(preference)->addRow(label, widget);
    }
    for (QVBoxLayout *page : qAsConst(m_pageLayouts))
        page->addStretch(1);
}

QVBoxLayout *PreferencesDialog::pageLayout(const OssPreferenceManager::Preference &preference)
{
    if (QVBoxLayout *known = m_pageLayouts.value(preference.page))
        return known;
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    auto *scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(content);
    m_stack->addWidget(scroll);
    auto *item = new QListWidgetItem(OssPreferenceManager::pageTitle(preference), m_pages);
    item->setData(pageRole, preference.page);
    m_pageLayouts.insert(preference.page, layout);
    return layout;
}

QFormLayout *PreferencesDialog::groupLayout(const OssPreferenceManager::Preference &preference)
{
    const QString key = preference.page + QLatin1Char('/') + preference.group;
    if (QFormLayout *known = m_groupLayouts.value(key))
        return known;
    auto *box = new QGroupBox(OssPreferenceManager::groupTitle(preference));
    auto *form = new OssFormLayout(box);
    pageLayout(preference)->addWidget(box);
    m_groupLayouts.insert(key, form);
    return form;
}

void PreferencesDialog::resetCurrentPage()
{
    const QListWidgetItem *item = m_pages->currentItem();
    const QString page = item ? item->data(pageRole).toString() : QString();
    for (PreferenceEditor *editor : qAsConst(m_editors)) {
        if (editor->preference().page == page)
            editor->reset();
    }
}
