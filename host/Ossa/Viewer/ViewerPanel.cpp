#include "Ossa/Viewer/ViewerPanel.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/LightBar.h"
#include "Ossa/Viewer/MaterialDrop.h"
#include "Ossa/Viewer/ObjectView.h"
#include "Ossa/Viewer/PaintBar.h"
#include "Ossa/Viewer/UvView.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "Ossa/Viewer/ViewerSource.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QSignalBlocker>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QString modeKey = QStringLiteral("Viewer/mode");
const QString commandFolder = QStringLiteral("/Ossa/Viewer/");
constexpr double sizeStep = 1.2; // of the brush, from key to key
constexpr double hardnessStep = 0.1;
const QString screenKey = QStringLiteral("Viewer/screen");
const QString resolutionKey = QStringLiteral("Viewer/resolution");
constexpr int patience = 300; // milliseconds until a picture shows its progress
constexpr int usualResolution = 1024;
constexpr int widestDisplay = 180;

/// `command`: what does the same.
QToolButton *makeSwitch(const QString &text, const char *command, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setText(text);
    Commands::describe(button, {commandFolder + QLatin1String(command)});
    button->setCheckable(true);
    return button;
}

const std::pair<const char *, OssEvBrush::Tool> tools[] = {
    {"Toggle Eraser", OssEvBrush::Tool::Eraser}, {"Toggle Clone", OssEvBrush::Tool::Clone},
    {"Toggle Smear", OssEvBrush::Tool::Smear},   {"Toggle Blur", OssEvBrush::Tool::Blur},
    {"Toggle Fill", OssEvBrush::Tool::Fill},     {"Toggle Gradient", OssEvBrush::Tool::Gradient},
};

} // namespace

ViewerPanel::ViewerPanel(QWidget *parent)
    : QWidget(parent)
    , m_source(new ViewerSource(this))
    , m_pictures(new ViewerPictures(this))
    , m_session(new PaintSession(this))
    , m_paintBar(new PaintBar(m_session, m_source, this))
    , m_view(new UvView(m_pictures, m_session, this))
    , m_object(new ObjectView(m_pictures, this))
    , m_views(new QSplitter(this))
    , m_light(makeSwitch(tr("Light"), "Toggle Light", this))
    , m_lightBar(new LightBar(m_object, this))
    , m_paint(makeSwitch(tr("Paint"), "Toggle Painting", this))
    , m_compare(makeSwitch(tr("Compare"), "Compare", this))
    , m_name(new QLabel(this))
    , m_values(new QLabel(this))
    , m_pass(new QLabel(this))
    , m_progress(new QProgressBar(this))
    , m_channels(new QComboBox(this))
    , m_resolution(new QComboBox(this))
    , m_display(new QComboBox(this))
    , m_exposure(new QDoubleSpinBox(this))
    , m_gamma(new QDoubleSpinBox(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(6);
    layout->addWidget(makeControls());
    layout->addWidget(m_lightBar);
    layout->addWidget(m_paintBar);
    m_views->setChildrenCollapsible(false);
    m_views->addWidget(m_view);
    m_views->addWidget(m_object);
    layout->addWidget(m_views, 1);
    layout->addWidget(makeFoot());
    new MaterialDrop(m_view);
    new MaterialDrop(m_object, [this](const QPointF &place) { return m_object->objectAt(place); });
    follow();
    fileCommands();
    setPainting(false);
    setMode(Mode(OssSettings().value(modeKey, Patches).toInt()));
}

ViewerPanel::~ViewerPanel()
{
    // The view tells of its end when parts of this are gone.
    m_object->light()->disconnect(this);
}

QWidget *ViewerPanel::makeFoot()
{
    auto *bar = new QWidget(this);
    auto *foot = new QHBoxLayout(bar);
    foot->setContentsMargins(0, 0, 0, 0);
    m_progress->setMaximumWidth(120);
    m_progress->setMaximumHeight(8);
    m_progress->setTextVisible(false);
    m_progress->setRange(0, 1000);
    m_progress->setAccessibleName(tr("Progress of the picture"));
    m_progress->setToolTip(tr("How far the picture is; Esc stops it"));
    m_progress->hide();
    m_pass->setObjectName(QStringLiteral("Muted"));
    m_name->setTextFormat(Qt::PlainText);
    foot->addWidget(m_name);
    foot->addWidget(m_values, 1);
    foot->addWidget(m_pass);
    foot->addWidget(m_progress);
    m_values->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_values->setMinimumWidth(40);
    return bar;
}

void ViewerPanel::follow()
{
    connect(m_source, &ViewerSource::began, this,
            [this](const QList<int> &patches, const QString &node, const QString &problem) {
                showName(node);
                followPaint();
                m_pictures->setIncluded(m_isPaintSeen ? m_session->published() : nullptr);
                m_pictures->begin(patches, m_source->resolution(), problem);
                const OssGeoEntity *entity = m_source->entity();
                m_object->follow();
                m_object->setMesh(
                    entity ? OssMeshes::instance()->look(entity->source()).mesh : nullptr, entity);
                m_told = 0;
                m_patchesDone = patches.isEmpty() ? m_progress->maximum() : 0;
                m_progress->setValue(0);
                m_pass->clear();
                m_progress->hide();
                m_sinceBegin.start();
            });
    connect(m_source, &ViewerSource::renamed, this, &ViewerPanel::showName);
    connect(m_source, &ViewerSource::tileArrived, m_pictures, &ViewerPictures::setTile);
    followProgress();
    connect(m_view, &UvView::focusMoved, m_source, &ViewerSource::setFocus);
    connect(m_view, &UvView::pointed, m_values, &QLabel::setText);
    followStrokes();
    m_object->setCanvas(m_session);
    connect(m_view, &UvView::entered, this, [this] { welcomeBrush(m_view); });
    connect(m_object, &ObjectView::entered, this, [this] { welcomeBrush(m_object); });
    connect(m_paintBar, &PaintBar::chosen, this, [this] {
        QWidget *canvas = m_object->isVisible() ? static_cast<QWidget *>(m_object) : m_view;
        canvas->setFocus();
    });
    connect(m_paint, &QToolButton::toggled, this, &ViewerPanel::setPainting);
    connect(m_compare, &QToolButton::toggled, this, &ViewerPanel::setComparing);
    const OssProjectManager *projects = OssProjectManager::instance();
    connect(projects, &OssProjectManager::projectClosing, this, &ViewerPanel::forgetProject);
    connect(projects, &OssProjectManager::projectClosed, this, &ViewerPanel::followProject);
    connect(projects, &OssProjectManager::projectOpenCompleted, this, &ViewerPanel::followProject);
    connect(OssStatusManager::instance(), &OssStatusManager::stopAsked, this, [this] {
        if (!m_source->showsSolo()) // that ends first
            m_compare->setChecked(false);
    });
    m_light->setChecked(m_object->isLit());
    connect(m_light, &QToolButton::toggled, m_object, &ObjectView::setLit);
    connect(m_object, &ObjectView::litChanged, this, [this](bool lit) {
        m_light->setChecked(lit);
        showLightBar();
    });
    m_object->light()->setResolution(m_resolution->currentData().toInt());
    followProject();
    applyLook();
}

void ViewerPanel::followProgress()
{
    connect(m_source, &ViewerSource::progressed, this,
            [this](int thousandths, const QString &pass) {
                m_patchesDone = thousandths;
                // The first of a graph takes longer than those that a stroke asks for.
                if (thousandths == m_progress->maximum())
                    m_tookPicture = m_session->isPainting() ? int(m_sinceBegin.elapsed()) : 0;
                m_patchesPass = pass;
                showProgress();
            });
    connect(m_object->light(), &LitScene::progressed, this, [this](int thousandths) {
        m_materialDone = thousandths;
        showProgress();
    });
}

void ViewerPanel::showName(const QString &node)
{
    m_name->setText(node);
    m_view->setShownName(node);
    m_object->setShownName(node);
}

void ViewerPanel::showProgress()
{
    const int done = std::min(m_patchesDone, m_materialDone);
    const bool isRunning = done < m_progress->maximum();
    m_told = isRunning ? std::max(m_told, done) : 0;
    m_progress->setValue(isRunning ? m_told : done);
    const QString pass = m_patchesDone < m_progress->maximum() ? m_patchesPass : tr("material");
    // What is quick flickers under a hand that drags a value.
    m_progress->setVisible(isRunning && m_sinceBegin.elapsed() > patience);
    m_pass->setText(m_progress->isHidden() ? QString() : pass);
}

void ViewerPanel::addModes(QHBoxLayout *bar)
{
    auto *modes = new QButtonGroup(this);
    modes->addButton(makeSwitch(tr("2D"), "Show Patches", this), Patches);
    modes->addButton(makeSwitch(tr("3D"), "Show Object", this), Object);
    modes->addButton(makeSwitch(tr("Both"), "Show Patches and Object", this), Both);
    const QList<QAbstractButton *> buttons = modes->buttons();
    for (QAbstractButton *button : buttons)
        bar->addWidget(button);
    m_modes = modes;
    connect(modes, &QButtonGroup::idClicked, this, [this](int mode) { setMode(Mode(mode)); });
}

void ViewerPanel::fileCommands()
{
    const auto file = [this](const char *name, const auto &run) {
        Commands::file(this, commandFolder + QLatin1String(name), run);
    };
    OssShortcutManager::instance()->setScope(commandFolder, m_views);
    OssShortcutManager::instance()->setReach(QStringLiteral("/Ossa/NodeGraph/Look At"), this);
    file("Show Patches", [this] { setMode(Patches); });
    file("Show Object", [this] { setMode(Object); });
    file("Show Patches and Object", [this] { setMode(Both); });
    file("Frame Pictures", [this] { framePictures(); });
    file("Toggle Light", [this] { m_light->toggle(); });
    file("Compare", [this] { m_compare->toggle(); });
    file("Toggle Painting", [this] { m_paint->toggle(); });
    file("New Paint", [this] {
        m_paint->setChecked(true);
        m_paintBar->makeNode();
    });
    file("New Paint Layer", [this] {
        m_paint->setChecked(true);
        m_paintBar->makeLayer();
    });
    for (const auto &[name, tool] : tools)
        file(name, [tool = tool] { Brushes::instance()->toggleTool(tool); });
    file("Smaller Brush", [] { Brushes::instance()->scale(1.0 / sizeStep); });
    file("Larger Brush", [] { Brushes::instance()->scale(sizeStep); });
    file("Softer Brush", [] { Brushes::instance()->harden(-hardnessStep); });
    file("Harder Brush", [] { Brushes::instance()->harden(hardnessStep); });
    file("Mirror Paint X", [] { Brushes::instance()->toggleMirror(0); });
    file("Mirror Paint Y", [] { Brushes::instance()->toggleMirror(1); });
    file("Mirror Paint Z", [] { Brushes::instance()->toggleMirror(2); });
    file("Bake Paint", [this] { m_paintBar->bake(); });
    file("Clear Paint", [this] { m_session->clear(); });
}

void ViewerPanel::framePictures()
{
    // The one that the user works in; both that are shown, if it is none of them.
    if (m_view->isVisible() && !m_object->hasFocus())
        m_view->frameAll();
    if (m_object->isVisible() && !m_view->hasFocus())
        m_object->frameAll();
}

void ViewerPanel::setMode(Mode mode)
{
    if (!m_modes->button(mode))
        mode = Patches;
    m_modes->button(mode)->setChecked(true);
    m_view->setVisible(mode != Object);
    m_object->setVisible(mode != Patches);
    m_light->setVisible(mode != Patches);
    m_object->light()->setAlone(mode == Object);
    showLightBar();
    OssSettings settings;
    if (settings.value(modeKey, Patches).toInt() != mode) // the first time it comes from there
        settings.setValue(modeKey, int(mode));
}

QWidget *ViewerPanel::makeControls()
{
    auto *bar = new QWidget(this);
    auto *rows = new QVBoxLayout(bar);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(4);
    auto *top = new QHBoxLayout;
    top->setSpacing(2);
    addModes(top);
    for (QToolButton *button : {m_light, m_paint, m_compare})
        top->addWidget(button);
    top->addStretch(1);
    top->addWidget(m_resolution);
    rows->addLayout(top);
    auto *layout = new QHBoxLayout;
    layout->setSpacing(4);
    rows->addLayout(layout);
    m_channels->addItems({tr("Color"), tr("Red"), tr("Green"), tr("Blue"), tr("Alpha")});
    m_channels->setAccessibleName(tr("Channels"));
    for (const int size : {256, 512, 1024, 2048, 4096})
        m_resolution->addItem(QString::number(size), size);
    const int kept = m_resolution->findData(OssSettings().value(resolutionKey).toInt());
    m_resolution->setCurrentIndex(kept >= 0 ? kept : m_resolution->findData(usualResolution));
    m_source->setResolution(m_resolution->currentData().toInt());
    m_resolution->setAccessibleName(tr("Resolution of a patch"));
    m_exposure->setRange(-16.0, 16.0);
    m_exposure->setSingleStep(0.25);
    m_exposure->setPrefix(tr("Exposure "));
    m_exposure->setAccessibleName(tr("Exposure in stops"));
    m_gamma->setRange(0.1, 5.0);
    m_gamma->setValue(1.0);
    m_gamma->setSingleStep(0.05);
    m_gamma->setPrefix(tr("Gamma "));
    m_gamma->setAccessibleName(tr("Gamma"));
    for (QWidget *control :
         std::initializer_list<QWidget *>{m_channels, m_display, m_exposure, m_gamma})
        layout->addWidget(control);
    layout->addStretch(1);
    const auto changed = qOverload<int>(&QComboBox::currentIndexChanged);
    connect(m_channels, changed, this, &ViewerPanel::applyLook);
    connect(m_display, changed, this, &ViewerPanel::applyLook);
    makeScreens();
    connect(m_resolution, changed, this, [this] {
        m_source->setResolution(m_resolution->currentData().toInt());
        m_object->light()->setResolution(m_resolution->currentData().toInt());
        OssSettings().setValue(resolutionKey, m_resolution->currentData().toInt());
    });
    const auto edited = qOverload<double>(&QDoubleSpinBox::valueChanged);
    connect(m_exposure, edited, this, &ViewerPanel::applyLook);
    connect(m_gamma, edited, this, &ViewerPanel::applyLook);
    return bar;
}

void ViewerPanel::forgetProject()
{
    m_compare->setChecked(false);
    m_view->frameAll(); // the next one's picture is another
    m_values->clear();
}

void ViewerPanel::followProject()
{
    const bool hasProject = OssProjectManager::instance()->currentProject();
    for (QToolButton *button : {m_light, m_paint, m_compare})
        button->setEnabled(hasProject);
    OssCommandTable::setHolds(OssCommandTable::WithBrush, hasProject && m_paint->isChecked());
}

void ViewerPanel::showLightBar()
{
    m_lightBar->setVisible(m_light->isChecked() && m_modes->checkedId() != Patches);
}

void ViewerPanel::setComparing(bool on)
{
    if (!on) {
        m_view->dropKeptPicture();
        m_object->dropKeptPicture();
        return;
    }
    m_view->keepPicture();
    m_object->keepPicture();
    if (!m_view->isComparing() && !m_object->isComparing())
        m_compare->setChecked(false); // there is no picture to keep
    else if (m_modes->checkedId() == Object && !m_object->isComparing())
        setMode(Both);
}

void ViewerPanel::makeScreens()
{
    m_display->setAccessibleName(tr("Display"));
    m_display->setToolTip(tr("Display and view for which the picture is made"));
    m_display->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_display->setMaximumWidth(widestDisplay);
    fillScreens();
    connect(m_display, qOverload<int>(&QComboBox::activated), this,
            [this] { OssSettings().setValue(screenKey, m_display->currentText()); });
    connect(OssColorManagement::instance(), &OssColorManagement::changed, this, [this] {
        fillScreens();
        applyLook();
        m_source->refresh();
    });
    applyLook(); // as the last session did
}

void ViewerPanel::fillScreens()
{
    const QSignalBlocker quiet(m_display);
    m_screens = ViewerPixels::screens(*OssColorManagement::spaces());
    m_display->clear();
    for (const ViewerScreen &screen : qAsConst(m_screens))
        m_display->addItem(ViewerPixels::titleOf(screen, m_screens));
    m_display->addItem(tr("Raw"));
    // What another configuration has is kept for the day when it is there again.
    const int kept = m_display->findText(OssSettings().value(screenKey).toString());
    m_display->setCurrentIndex(std::max(kept, 0));
}

void ViewerPanel::applyLook()
{
    ViewerLook look;
    look.channels = ViewerLook::Channels(m_channels->currentIndex());
    look.exposure = m_exposure->value();
    look.gamma = m_gamma->value();
    look.raw = m_display->currentIndex() == m_display->count() - 1;
    if (m_display->currentIndex() > 0 && !look.raw)
        look.screen = m_screens.at(m_display->currentIndex());
    m_pictures->setLook(look);
    m_source->setLook(look);
    const ViewerScreen screen = m_screens.value(std::max(0, m_display->currentIndex()));
    m_object->setScreen({OssColorManagement::spaces(), screen.display, screen.view, look.exposure,
                         look.gamma, look.raw});
}

void ViewerPanel::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        OssStatusManager::instance()->askToStop();
    else
        QWidget::keyPressEvent(event);
}

void ViewerPanel::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_views->setOrientation(m_views->width() < m_views->height() ? Qt::Vertical : Qt::Horizontal);
}

void ViewerPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_source->setActive(true);
}

void ViewerPanel::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_source->setActive(false);
}
