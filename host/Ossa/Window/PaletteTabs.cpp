#include "Ossa/Window/PaletteTabs.h"

#include <qtadvanceddocking/DockAreaTabBar.h>
#include <qtadvanceddocking/DockAreaTitleBar.h>
#include <qtadvanceddocking/DockAreaWidget.h>
#include <qtadvanceddocking/DockWidgetTab.h>
#include <qtadvanceddocking/ElidingLabel.h>

#include <QAbstractButton>
#include <QEvent>
#include <QLayout>

namespace {

QLabel *nameOf(const ads::CDockWidgetTab *tab)
{
    return tab ? tab->findChild<ads::CElidingLabel *>() : nullptr;
}

int widthOfName(const ads::CDockWidgetTab *tab)
{
    constexpr int spare = 2; // an eliding label rounds down
    const QLabel *name = nameOf(tab);
    return name ? name->fontMetrics().horizontalAdvance(tab->text()) + spare : 0;
}

/// What the layout gives a tab apart from its name.
int widthWithoutName(const ads::CDockWidgetTab *tab)
{
    const QLabel *name = nameOf(tab);
    if (!name)
        return tab->sizeHint().width();
    const int given = name->sizeHint()
                          .expandedTo(name->minimumSizeHint())
                          .boundedTo(name->maximumSize())
                          .expandedTo(name->minimumSize())
                          .width();
    return tab->sizeHint().width() - given;
}

} // namespace

PaletteTabs::PaletteTabs(ads::CDockAreaWidget *area)
    : QObject(area)
    , m_area(area)
{
    // What is in the title is asked for its size again whenever a tab comes, goes or is renamed.
    area->titleBar()->installEventFilter(this);
    connect(area->titleBar()->tabBar(), &ads::CDockAreaTabBar::currentChanged, this,
            &PaletteTabs::fitSoon);
    fitSoon();
}

bool PaletteTabs::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest
        || event->type() == QEvent::Show)
        fitSoon();
    return QObject::eventFilter(watched, event);
}

/// Queued: tabs have their places after what is told.
void PaletteTabs::fitSoon()
{
    if (m_isFitting)
        return;
    m_isFitting = true;
    QMetaObject::invokeMethod(this, &PaletteTabs::fit, Qt::QueuedConnection);
}

void PaletteTabs::fit()
{
    m_isFitting = false;
    ads::CDockAreaTabBar *bar = m_area->titleBar()->tabBar();
    int wanted = 0;
    for (int i = 0; i < bar->count(); ++i) {
        const ads::CDockWidgetTab *tab = bar->tab(i);
        if (bar->isTabOpen(i))
            wanted += widthWithoutName(tab) + widthOfName(tab);
    }
    const bool haveRoom = wanted <= room();
    // The bar has none while a layout is being restored.
    ads::CDockWidgetTab *current = nullptr;
    if (bar->currentIndex() >= 0 && bar->currentIndex() < bar->count())
        current = bar->tab(bar->currentIndex());
    for (int i = 0; i < bar->count(); ++i) {
        const ads::CDockWidgetTab *tab = bar->tab(i);
        const bool inFront = tab == current;
        showName(tab, haveRoom || inFront || tab->icon().isNull(), inFront);
    }
    if (current) {
        bar->widget()->layout()->activate();
        bar->ensureWidgetVisible(current, 0, 0);
    }
}

/// Of the tabs: the title's, less its buttons.
int PaletteTabs::room() const
{
    const QLayout *title = m_area->titleBar()->layout();
    int room = 0;
    for (int i = 0; i < title->count(); ++i) {
        QLayoutItem *item = title->itemAt(i);
        if (!qobject_cast<QAbstractButton *>(item->widget()))
            room += item->geometry().width();
    }
    return room;
}

void PaletteTabs::showName(const ads::CDockWidgetTab *tab, bool shown, bool whole)
{
    QLabel *name = nameOf(tab);
    if (!name)
        return;
    name->setMinimumWidth(shown && whole ? widthOfName(tab) : 0);
    name->setMaximumWidth(shown ? QWIDGETSIZE_MAX : 0);
}
