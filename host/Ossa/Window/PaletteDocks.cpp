#include "Ossa/Window/PaletteDocks.h"

#include "Ossa/Window/HostPalettes.h"
#include "Ossa/Window/PaletteTabs.h"
#include "OssCore/Program/OssIcon.h"
#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"

#include <qtadvanceddocking/DockAreaWidget.h>
#include <qtadvanceddocking/DockManager.h>
#include <qtadvanceddocking/DockWidget.h>
#include <qtadvanceddocking/DockWidgetTab.h>
#include <qtadvanceddocking/IconProvider.h>

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QSplitter>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <numeric>

namespace {

const QString stateKey = QStringLiteral("MainWindow/docks");
const QString stateNamesKey = QStringLiteral("MainWindow/dockedPalettes");
// The last layout that knew palettes which that one does not.
const QString fullerStateKey = QStringLiteral("MainWindow/fullerDocks");
const QString fullerNamesKey = QStringLiteral("MainWindow/fullerDockedPalettes");
const QString paletteFolder = QStringLiteral("/Ossa/Palettes/");
const QString panelFolder = QStringLiteral("/Ossa/Properties/");
const QString graphFolder = QStringLiteral("/Ossa/NodeGraph/");
constexpr int stateVersion = 1;
constexpr int graphShare = 70;      // percent of the window, in both directions
constexpr int propertiesShare = 45; // of what stands above and below each other
constexpr int mostShare = 55;       // that a dock which is shown takes of the height
constexpr int leastShare = 15;      // a dock that opens smaller than this gets room

using HostPalettes::Place;

Place placeOf(const OssPalette *palette)
{
    for (const Place &place : HostPalettes::places()) {
        if (palette->contextHelpKey() == QLatin1String(place.helpKey))
            return place;
    }
    return {"", ads::CenterDockWidgetArea, "node_properties_palette"};
}

void configure()
{
    using Manager = ads::CDockManager;
    Manager::setConfigFlags(
        Manager::DockAreaHasCloseButton | Manager::DockAreaHasTabsMenuButton
        | Manager::DockAreaCloseButtonClosesTab | Manager::DockAreaDynamicTabsMenuButtonVisibility
        | Manager::DockAreaHideDisabledButtons | Manager::OpaqueSplitterResize
        | Manager::XmlCompressionEnabled | Manager::FloatingContainerHasWidgetTitle
        | Manager::FloatingContainerHasWidgetIcon | Manager::DragPreviewShowsContentPixmap
        | Manager::FocusHighlighting);
    auto &icons = Manager::iconProvider();
    icons.registerCustomIcon(ads::DockAreaCloseIcon,
                             OssIcon::createIconFromFilename(QStringLiteral("Close.png")));
    icons.registerCustomIcon(ads::TabCloseIcon,
                             OssIcon::createIconFromFilename(QStringLiteral("Close.png")));
    icons.registerCustomIcon(ads::DockAreaMenuIcon,
                             OssIcon::createIconFromFilename(QStringLiteral("Down.png")));
}

bool containsAll(const QStringList &names, const QStringList &wanted)
{
    return std::all_of(wanted.cbegin(), wanted.cend(),
                       [&names](const QString &name) { return names.contains(name); });
}

/// Gives the part at `index` so many percent of the room if there is one other part.
void share(QSplitter *splitter, int index, int percent)
{
    if (splitter->count() != 2)
        return;
    const bool wide = splitter->orientation() == Qt::Horizontal;
    const int room = wide ? splitter->width() : splitter->height();
    const int part = room * percent / 100;
    splitter->setSizes(index == 0 ? QList<int>{part, room - part} : QList<int>{room - part, part});
}

/// Calls `visit` with each splitter around the dock, inner ones first, and the part it is in.
void forEachSplitter(const ads::CDockWidget *dock,
                     const std::function<void(QSplitter *, int)> &visit)
{
    QWidget *part = dock->dockAreaWidget();
    while (part && part->parentWidget()) {
        if (auto *splitter = qobject_cast<QSplitter *>(part->parentWidget()))
            visit(splitter, splitter->indexOf(part));
        part = part->parentWidget();
    }
}

ads::CDockManager *createManager(QMainWindow *window)
{
    configure();
    auto *manager = new ads::CDockManager(window);
    manager->setStyleSheet(QString()); // the application's own rules apply
    return manager;
}

} // namespace

PaletteDocks::PaletteDocks(QMainWindow *window)
    : QObject(window)
    , m_window(window)
    , m_manager(createManager(window))
{
    connect(m_manager, &ads::CDockManager::dockAreaCreated, this,
            [](ads::CDockAreaWidget *area) { new PaletteTabs(area); }); // the area's
    const QVector<OssPalette *> palettes = OssPaletteManager::instance()->palettes();
    for (OssPalette *palette : palettes)
        dock(palette);
    resetLayout();
    m_window->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { noteKeyboard(now); });
    connect(OssPaletteManager::instance(), &OssPaletteManager::paletteRegistered, this,
            [this](OssPalette *palette) {
                dock(palette);
                place(palette, m_docks.value(palette));
                if (m_stateNames.contains(palette->identity()))
                    applyState();
            });
}

PaletteDocks::~PaletteDocks()
{
    releaseCover();
    // Palettes are the palette manager's: they leave the docks before the docks go.
    for (auto entry = m_docks.cbegin(); entry != m_docks.cend(); ++entry) {
        disconnect(entry.key(), nullptr, this, nullptr);
        entry.value()->takeWidget();
    }
}

void PaletteDocks::restoreLayout()
{
    const OssSettings settings;
    m_state = settings.value(stateKey).toByteArray();
    m_stateNames = settings.value(stateNamesKey).toStringList();
    const QStringList fuller = settings.value(fullerNamesKey).toStringList();
    // A plug-in that was missing is back.
    if (!containsAll(m_stateNames, dockNames()) && containsAll(fuller, dockNames())) {
        m_state = settings.value(fullerStateKey).toByteArray();
        m_stateNames = fuller;
    }
    if (!m_state.isEmpty())
        applyState();
}

void PaletteDocks::applyState()
{
    // Windows of palettes that were closed while they floated are shown for a moment, and would take the keyboard with
    // them for good.
    ads::CDockManager::setConfigFlag(ads::CDockManager::FocusHighlighting, false);
    m_manager->restoreState(m_state, stateVersion);
    ads::CDockManager::setConfigFlag(ads::CDockManager::FocusHighlighting, true);
    // Palettes that the state does not know were taken out of the layout.
    const QVector<OssPalette *> palettes = OssPaletteManager::instance()->palettes();
    for (OssPalette *palette : palettes) {
        if (m_docks.contains(palette) && !m_stateNames.contains(palette->identity()))
            place(palette, m_docks.value(palette));
    }
}

QStringList PaletteDocks::dockNames() const
{
    QStringList names;
    for (const ads::CDockWidget *dock : m_docks)
        names.append(dock->objectName());
    names.sort();
    return names;
}

void PaletteDocks::saveLayout() const
{
    const QStringList names = dockNames();
    OssSettings settings;
    const QStringList before = settings.value(stateNamesKey).toStringList();
    if (containsAll(names, settings.value(fullerNamesKey).toStringList())) {
        settings.remove(fullerStateKey);
        settings.remove(fullerNamesKey);
    }
    // Without a plug-in its palettes have no place in the state; the session before knew them.
    if (!containsAll(names, before)) {
        settings.setValue(fullerStateKey, settings.value(stateKey));
        settings.setValue(fullerNamesKey, before);
    }
    settings.setValue(stateKey, m_manager->saveState(stateVersion));
    settings.setValue(stateNamesKey, names);
}

void PaletteDocks::resetLayout()
{
    // What holds a title goes on moving its dock, which may be another's by then.
    constexpr int pause = 50; // milliseconds
    if (QGuiApplication::mouseButtons() != Qt::NoButton) {
        QTimer::singleShot(pause, this, &PaletteDocks::resetLayout);
        return;
    }
    m_state.clear();
    m_stateNames.clear();
    const QVector<OssPalette *> palettes = OssPaletteManager::instance()->palettes();
    for (OssPalette *palette : palettes) {
        if (ads::CDockWidget *dock = m_docks.value(palette); dock && dock->dockAreaWidget())
            m_manager->removeDockWidget(dock);
    }
    // In the order of the table: later places refer to earlier ones.
    for (const Place &entry : HostPalettes::places()) {
        OssPalette *palette = OssPaletteManager::instance()->find(
            QString::fromLatin1(entry.helpKey));
        if (palette && m_docks.contains(palette))
            place(palette, m_docks.value(palette));
    }
    for (OssPalette *palette : palettes) {
        if (m_docks.contains(palette) && !m_docks.value(palette)->dockAreaWidget())
            place(palette, m_docks.value(palette));
    }
    sizeAreas();
}

void PaletteDocks::coverGraph(QWidget *cover, bool on)
{
    m_cover = cover;
    m_isCovered = on;
    placeCover();
}

ads::CDockWidget *PaletteDocks::graphDock() const
{
    return m_docks.value(OssPaletteManager::instance()->find(
        QString::fromLatin1(HostPalettes::places().front().helpKey), false));
}

void PaletteDocks::placeCover()
{
    ads::CDockWidget *dock = graphDock();
    if (!m_cover || !dock)
        return;
    QWidget *graph = dock->widget();
    QWidget *shown = m_isCovered ? m_cover.data() : graph;
    const QWidget *hidden = m_isCovered ? graph : m_cover.data();
    // The window's own, which nobody else knows while it gets active again behind a dialog.
    const bool movesFocus = hidden->isAncestorOf(hidden->window()->focusWidget());
    graph->setEnabled(!m_isCovered);
    graph->installEventFilter(this);
    if (m_cover->parentWidget() != dock)
        m_cover->setParent(dock);
    m_cover->setGeometry(graph->geometry());
    m_cover->setVisible(m_isCovered);
    m_cover->raise();
    if (movesFocus)
        shown->setFocus();
}

void PaletteDocks::releaseCover()
{
    if (!m_cover)
        return;
    m_cover->hide();
    m_cover->setParent(m_window);
    if (OssPalette *graph = OssPaletteManager::instance()->find(
            QString::fromLatin1(HostPalettes::places().front().helpKey), false))
        graph->setEnabled(true);
}

void PaletteDocks::noteKeyboard(const QWidget *focus)
{
    // As a dock closes, its tab goes first, and Qt hands the keyboard to whatever comes next.
    if (m_keyboard && m_keyboard->tabWidget()->isHidden())
        return;
    for (const QWidget *widget = focus; widget; widget = widget->parentWidget()) {
        for (ads::CDockWidget *dock : qAsConst(m_docks)) {
            if (dock == widget)
                m_keyboard = dock;
        }
    }
}

void PaletteDocks::giveKeyboardBack(const ads::CDockWidget *closed)
{
    if (m_keyboard != closed)
        return;
    m_keyboard = nullptr;
    if (ads::CDockWidget *graph = graphDock(); graph && !graph->isClosed())
        (m_isCovered && m_cover ? m_cover.data() : graph->widget())->setFocus();
}

bool PaletteDocks::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_window && (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        && m_cover)
        m_cover->setGeometry(static_cast<QWidget *>(watched)->geometry());
    // Shares hold once the window has its size.
    if (watched == m_window && event->type() == QEvent::Show && m_state.isEmpty())
        QMetaObject::invokeMethod(this, &PaletteDocks::sizeAreas, Qt::QueuedConnection);
    if (watched == m_window && event->type() == QEvent::Show)
        m_window->removeEventFilter(this);
    return QObject::eventFilter(watched, event);
}

void PaletteDocks::dock(OssPalette *palette)
{
    auto *dock = new ads::CDockWidget(palette->windowTitle()); // owned by the manager
    dock->setObjectName(palette->identity());
    dock->setIcon(QIcon(OssPaletteManager::instance()->iconPath(palette)));
    dock->setMinimumSizeHintMode(ads::CDockWidget::MinimumSizeHintFromContent);
    dock->setWidget(palette, ads::CDockWidget::ForceNoScrollArea);
    // Docks take the focus when something in them is clicked that wants none, and keys would be dead.
    dock->setFocusProxy(palette);
    m_docks.insert(palette, dock);
    connect(palette, &OssPalette::showRequested, this, [this, palette] { showPalette(palette); });
    dock->setTabToolTip(palette->windowTitle());
    connect(palette, &QWidget::windowTitleChanged, dock, [dock](const QString &title) {
        dock->setWindowTitle(title);
        dock->setTabToolTip(title);
    });
    connect(palette, &QObject::destroyed, this, &PaletteDocks::removeDock);

    // Queued: the areas get their sizes after the signal.
    connect(
        dock, &ads::CDockWidget::viewToggled, this,
        [this, dock](bool open) {
            if (open && !dock->isClosed() && m_window->isVisible())
                makeRoom(dock);
            else if (!open && dock->isClosed())
                giveKeyboardBack(dock);
        },
        Qt::QueuedConnection);

    QAction *toggle = dock->toggleViewAction();
    toggle->setMenuRole(QAction::NoRole);
    OssActionTreeManager::setName(toggle, palette->identity());
    OssActionTreeManager::instance()->registerAction(paletteFolder, toggle);
    if (palette->contextHelpKey() == QLatin1String(HostPalettes::places().front().helpKey)) {
        OssShortcutManager::instance()->setScope(graphFolder, palette);
        placeCover();
    }
    if (palette->contextHelpKey() == QLatin1String("node_properties_palette"))
        OssShortcutManager::instance()->setScope(panelFolder, palette);
}

void PaletteDocks::place(OssPalette *palette, ads::CDockWidget *dock)
{
    const Place place = placeOf(palette);
    ads::CDockAreaWidget *beside = nullptr;
    if (place.besideHelpKey) {
        const OssPalette *other = OssPaletteManager::instance()->find(
            QString::fromLatin1(place.besideHelpKey));
        if (const ads::CDockWidget *otherDock = m_docks.value(other))
            beside = otherDock->dockAreaWidget();
    }
    // Without the neighbour it names, a palette goes to the right rather than on top of the rest.
    const bool alone = place.besideHelpKey && !beside;
    m_manager->addDockWidget(alone ? ads::RightDockWidgetArea : place.area, dock, beside);
    const bool open = OssPaletteManager::instance()->shownAtFirst(palette);
    if (!open && dock->isClosed())
        dock->toggleView(true); // what counts as closed would keep the tab that it just got
    dock->toggleView(open);
}

void PaletteDocks::sizeAreas()
{
    const OssPalette *graph = OssPaletteManager::instance()->find(
        QString::fromLatin1(HostPalettes::places().front().helpKey));
    if (const ads::CDockWidget *dock = m_docks.value(graph))
        forEachSplitter(dock,
                        [](QSplitter *splitter, int index) { share(splitter, index, graphShare); });
    // A panel of properties that shows only its heading is of no use.
    const OssPalette *properties = OssPaletteManager::instance()->find(
        QStringLiteral("node_properties_palette"));
    if (const ads::CDockWidget *dock = m_docks.value(properties))
        forEachSplitter(dock, [](QSplitter *splitter, int index) {
            if (splitter->orientation() == Qt::Vertical)
                share(splitter, index, propertiesShare);
        });
}

void PaletteDocks::makeRoom(const ads::CDockWidget *dock)
{
    const int wanted = dock->widget()->sizeHint().height();
    forEachSplitter(dock, [wanted](QSplitter *splitter, int index) {
        const QList<int> sizes = splitter->sizes();
        const int room = std::accumulate(sizes.cbegin(), sizes.cend(), 0);
        if (sizes.at(index) < room * leastShare / 100)
            share(splitter, index, 100 - graphShare);
        const int tall = room > 0 ? std::min(100 * wanted / room, mostShare) : 0;
        if (splitter->orientation() == Qt::Vertical
            && splitter->sizes().at(index) < room * tall / 100)
            share(splitter, index, tall);
    });
}

void PaletteDocks::showPalette(const OssPalette *palette)
{
    ads::CDockWidget *dock = m_docks.value(palette);
    if (!dock)
        return;
    if (dock->isClosed())
        dock->toggleView(true);
    dock->setAsCurrentTab();
    if (dock->isFloating())
        dock->raise();
}

void PaletteDocks::removeDock(QObject *palette)
{
    if (ads::CDockWidget *dock = m_docks.take(palette)) {
        if (m_cover && m_cover->parentWidget() == dock)
            releaseCover();
        m_manager->removeDockWidget(dock);
        dock->deleteLater();
    }
}
