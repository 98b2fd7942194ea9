#include "Ossa/Viewer/LightBar.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Viewer/ObjectView.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssRender/Light/OssRdEnvironment.h"

#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMenu>
#include <QSignalBlocker>
#include <QToolButton>

#include <array>

namespace {

using Shows = OssRdView::Shows;

const QString surroundingsKey = QStringLiteral("Viewer/surroundings");
const QString intensityKey = QStringLiteral("Viewer/intensity");
const QString turnKey = QStringLiteral("Viewer/turn"); // radians
constexpr double mostIntensity = 20.0;
const QString behindKey = QStringLiteral("Viewer/behind");
const QString commandFolder = QStringLiteral("/Ossa/Viewer/");

struct Choice
{
    const char *title;
    const char *command;
};

/// In the order of OssRdView::Shows.
constexpr std::array<Choice, 13> choices{
    {{QT_TRANSLATE_NOOP("LightBar", "Lit"), "Show Lit"},
     {QT_TRANSLATE_NOOP("LightBar", "Base Color"), "Show Base Color"},
     {QT_TRANSLATE_NOOP("LightBar", "Metallic"), "Show Metallic"},
     {QT_TRANSLATE_NOOP("LightBar", "Roughness"), "Show Roughness"},
     {QT_TRANSLATE_NOOP("LightBar", "Normal"), "Show Normal"},
     {QT_TRANSLATE_NOOP("LightBar", "Displacement"), "Show Displacement"},
     {QT_TRANSLATE_NOOP("LightBar", "Emission"), "Show Emission"},
     {QT_TRANSLATE_NOOP("LightBar", "Opacity"), "Show Opacity"},
     {QT_TRANSLATE_NOOP("LightBar", "Occlusion"), "Show Occlusion"},
     {QT_TRANSLATE_NOOP("LightBar", "Clear Coat"), "Show Clear Coat"},
     {QT_TRANSLATE_NOOP("LightBar", "UV Checker"), "Show UV Checker"},
     {QT_TRANSLATE_NOOP("LightBar", "Matcap"), "Show Matcap"},
     {QT_TRANSLATE_NOOP("LightBar", "Shape"), "Show Shape"}}};

} // namespace

LightBar::LightBar(ObjectView *view, QWidget *parent)
    : QWidget(parent)
    , m_view(view)
    , m_shows(new QComboBox(this))
    , m_surroundings(new QComboBox(this))
    , m_intensity(new QDoubleSpinBox(this))
    , m_more(new QToolButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    m_shows->setAccessibleName(tr("What of the material is shown"));
    m_surroundings->setAccessibleName(tr("Surroundings"));
    m_more->setText(tr("More"));
    m_more->setPopupMode(QToolButton::InstantPopup);
    m_more->setMenu(new QMenu(m_more));
    layout->addWidget(m_shows);
    layout->addWidget(m_surroundings);
    layout->addWidget(m_intensity);
    layout->addWidget(m_more);
    layout->addStretch(1);
    fileShows();
    fileLight();
    followLight();
    connect(m_view->light(), &LitScene::refused, this, [this](const QString &reason) {
        OssStatusManager::instance()->showMessage(reason);
        setSurroundings(m_view->light()->surroundings());
    });
    setSurroundings(OssSettings().value(surroundingsKey).toString());
    setBehind(OssSettings().value(behindKey, int(OssRdView::Behind::Plain)).toInt());
}

void LightBar::fileShows()
{
    for (std::size_t i = 0; i < choices.size(); ++i) {
        m_shows->addItem(tr(choices[i].title));
        Commands::file(this, commandFolder + QLatin1String(choices[i].command),
                       [this, i] { m_shows->setCurrentIndex(int(i)); });
    }
    connect(m_shows, qOverload<int>(&QComboBox::currentIndexChanged), this, &LightBar::choose);
}

void LightBar::choose(int shows)
{
    OssRdView look = m_view->look();
    look.shows = Shows(shows);
    m_view->setLook(look);
    m_view->setLit(true);
}

void LightBar::fileLight()
{
    connect(m_surroundings, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        const QString chosen = m_surroundings->itemData(index).toString();
        if (chosen.isEmpty())
            chooseFile();
        else
            setSurroundings(chosen);
    });
    const auto file = [this](const char *name, const auto &run) {
        QAction *action = Commands::file(this, commandFolder + QLatin1String(name), run);
        m_more->menu()->addAction(action);
    };
    file("Next Surroundings", [this] { nextSurroundings(); });
    file("Surroundings from File...", [this] { chooseFile(); });
    file("Next Background", [this] { setBehind((int(m_view->look().behind) + 1) % 3); });
    m_more->menu()->addSeparator();
    addSwitch("Toggle Key Light", "Viewer/keyLight", true,
              [this](bool on) { m_view->light()->setKeyLight(on); });
    const auto ofLook = [this](bool OssRdView::*part) {
        return [this, part](bool on) {
            OssRdView look = m_view->look();
            look.*part = on;
            m_view->setLook(look);
        };
    };
    addSwitch("Toggle Other Objects", "Viewer/otherObjects", true,
              [this](bool on) { m_view->light()->setCompany(on); });
    addSwitch("Displace Surfaces", "Viewer/displaced", false,
              [this](bool on) { m_view->light()->setDisplaced(on); });
    addSwitch("Toggle Ground Shadow", "Viewer/groundShadow", true,
              ofLook(&OssRdView::hasGroundShadow));
    addSwitch("Toggle Wireframe", "Viewer/wireframe", false, ofLook(&OssRdView::hasWires));
    addSwitch("Hide Back Faces", "Viewer/hideBackFaces", false, ofLook(&OssRdView::hidesBackFaces));
}

/// How bright the surroundings are, and how they are turned.
void LightBar::followLight()
{
    m_intensity->setRange(0.0, mostIntensity);
    m_intensity->setSingleStep(0.1);
    m_intensity->setPrefix(tr("Light "));
    m_intensity->setToolTip(tr("How bright the surroundings are; Shift and a drag turns them"));
    m_intensity->setAccessibleName(tr("Brightness of the surroundings"));
    m_intensity->setValue(OssSettings().value(intensityKey, 1.0).toDouble());
    LitScene *light = m_view->light();
    light->setIntensity(float(m_intensity->value()));
    connect(m_intensity, qOverload<double>(&QDoubleSpinBox::valueChanged), light,
            [light](double value) {
                light->setIntensity(float(value));
                OssSettings().setValue(intensityKey, value);
            });
    light->setTurn(float(OssSettings().value(turnKey, 0.0).toDouble()));
    connect(m_view, &ObjectView::surroundingsTurned, this,
            [light] { OssSettings().setValue(turnKey, double(light->turn())); });
}

void LightBar::addSwitch(const char *command, const char *key, bool usual,
                         const std::function<void(bool)> &set)
{
    QAction *action = Commands::file(this, commandFolder + QLatin1String(command), [] {});
    action->setCheckable(true);
    m_more->menu()->addAction(action);
    const QString kept = QString::fromLatin1(key);
    action->setChecked(OssSettings().value(kept, usual).toBool());
    set(action->isChecked());
    connect(action, &QAction::toggled, this, [set, kept](bool on) {
        set(on);
        OssSettings().setValue(kept, on);
    });
}

// --- surroundings

void LightBar::fillSurroundings()
{
    const QSignalBlocker quiet(m_surroundings);
    m_surroundings->clear();
    for (const std::string &name : OssRdEnvironment::names()) {
        const QString own = QString::fromStdString(name);
        m_surroundings->addItem(own, own);
    }
    const QString chosen = m_view->light()->surroundings();
    if (!chosen.isEmpty() && m_surroundings->findData(chosen) < 0)
        m_surroundings->addItem(QFileInfo(chosen).fileName(), chosen);
    m_surroundings->addItem(tr("From File..."), QString());
    m_surroundings->setCurrentIndex(
        chosen.isEmpty() ? 0 : std::max(0, m_surroundings->findData(chosen)));
}

void LightBar::setSurroundings(const QString &nameOrFile)
{
    if (nameOrFile != m_view->light()->surroundings()) {
        m_view->light()->setSurroundings(nameOrFile);
        OssSettings().setValue(surroundingsKey, nameOrFile);
    }
    fillSurroundings();
}

void LightBar::nextSurroundings()
{
    const int count = m_surroundings->count() - 1; // the last one asks for a file
    setSurroundings(
        m_surroundings->itemData((m_surroundings->currentIndex() + 1) % count).toString());
}

void LightBar::chooseFile()
{
    const QString path = OssFileDialog::getOpenFileName(
        tr("Surroundings from File"), tr("Pictures of longitude and latitude (*.hdr *.exr)"),
        QStringLiteral("SurroundingsPath"), this);
    if (path.isEmpty())
        fillSurroundings();
    else
        setSurroundings(path);
}

void LightBar::setBehind(int behind)
{
    OssRdView look = m_view->look();
    look.behind = OssRdView::Behind(std::clamp(behind, 0, int(OssRdView::Behind::Blurred)));
    m_view->setLook(look);
    OssSettings settings;
    if (settings.value(behindKey, 0).toInt()
        != int(look.behind)) // the first time it comes from there
        settings.setValue(behindKey, int(look.behind));
}
