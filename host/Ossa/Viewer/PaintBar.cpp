#include "Ossa/Viewer/PaintBar.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/BrushFields.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/ViewerSource.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssColor.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssInterface/Widgets/OssFlowLayout.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

namespace {

constexpr double largestInWorld = 1e6;
const QString brushesPalette = QStringLiteral("brushes_palette");
constexpr int hundred = 100;
constexpr int swatchSize = 16;
constexpr int gap = 4; ///< pixels between controls

QString command(const char *name)
{
    return QStringLiteral("/Ossa/Viewer/") + QLatin1String(name);
}

OssColor toColor(const std::array<float, 3> &color)
{
    return {double(color[0]), double(color[1]), double(color[2])};
}

std::array<float, 3> toArray(const OssColor &color)
{
    return {float(color.red()), float(color.green()), float(color.blue())};
}

} // namespace

QIcon PaintBar::swatch(const QColor &color)
{
    QPixmap pixmap(swatchSize, swatchSize);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(QColor(0, 0, 0, 120));
    painter.drawRect(0, 0, swatchSize - 1, swatchSize - 1);
    return QIcon(pixmap);
}

bool PaintBar::isShown(const QDoubleSpinBox &field, double value)
{
    const double shown = std::pow(10.0, field.decimals());
    return std::lround(field.value() * shown) == std::lround(value * shown);
}

PaintBar::PaintBar(PaintSession *session, const ViewerSource *source, QWidget *parent)
    : QWidget(parent)
    , m_session(session)
    , m_source(source)
    , m_nodes(new QComboBox(this))
    , m_color(new QToolButton(this))
    , m_gradientTo(new QLabel(tr("Gradient to"), this))
    , m_second(new QToolButton(this))
    , m_size(new QDoubleSpinBox(this))
    , m_hardness(makeField(tr("Hard "), tr(" %"), 0, hundred, tr("Hardness of the edge")))
    , m_opacity(makeField(tr("Opacity "), tr(" %"), 1, hundred, tr("Opacity of a stroke")))
    , m_mask(new QToolButton(this))
    , m_clear(new QToolButton(this))
    , m_bake(new QToolButton(this))
    , m_hint(new QLabel(this))
    , m_along(new OssFlowLayout(gap))
    , m_alongEnd(new OssFlowLayout(gap))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gap);
    layout->addLayout(makeNodeRow());
    layout->addLayout(m_along);
    layout->addLayout(makeBrushRow());
    layout->addLayout(makeToolRow());
    layout->addLayout(makeGradientRow());
    layout->addLayout(m_alongEnd);
    m_hint->setObjectName(QStringLiteral("Muted"));
    m_hint->setWordWrap(true);
    layout->addWidget(m_hint);
    connect(Brushes::instance(), &Brushes::changed, this, &PaintBar::showBrush);
    connect(OssColorManagement::instance(), &OssColorManagement::changed, this,
            &PaintBar::keepColor);
    connect(session, &PaintSession::stateChanged, this, &PaintBar::showState);
    connect(source, &ViewerSource::began, this, &PaintBar::showState);
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &PaintBar::refresh);
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::currentShaderNetworkChanged, this, &PaintBar::refresh,
            Qt::QueuedConnection);
    // Many nodes may be selected one after the other.
    m_selectionSeen.setSingleShot(true);
    m_selectionSeen.setInterval(0);
    connect(&m_selectionSeen, &QTimer::timeout, this, [this] {
        if (!m_session
                 ->hasPaint()) // leaving it may be an edit: that waits until one comes to paint
            refresh();
    });
    showBrush();
    showState();
}

QHBoxLayout *PaintBar::makeNodeRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(gap);
    m_nodes->setAccessibleName(tr("Paint node"));
    m_nodes->setToolTip(
        tr("The node that strokes go to; selecting one in the graph does the same"));
    m_nodes->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(m_nodes, qOverload<int>(&QComboBox::activated), this, &PaintBar::chooseNode);
    auto *add = new QToolButton(this);
    add->setText(tr("New"));
    Commands::describe(add, {command("New Paint")});
    connect(add, &QToolButton::clicked, this, &PaintBar::makeNode);
    auto *layer = new QToolButton(this);
    layer->setText(tr("New Layer"));
    Commands::describe(layer, {command("New Paint Layer")});
    connect(layer, &QToolButton::clicked, this, &PaintBar::makeLayer);
    m_clear->setText(tr("Clear"));
    Commands::describe(m_clear, {command("Clear Paint")});
    connect(m_clear, &QToolButton::clicked, m_session, &PaintSession::clear);
    m_bake->setText(tr("Bake"));
    Commands::describe(m_bake, {command("Bake Paint")});
    connect(m_bake, &QToolButton::clicked, this, &PaintBar::bake);
    row->addWidget(m_nodes, 1);
    row->addWidget(add);
    row->addWidget(layer);
    row->addWidget(m_clear);
    row->addWidget(m_bake);
    return row;
}

OssFlowLayout *PaintBar::makeBrushRow()
{
    auto *row = new OssFlowLayout(gap);
    m_color->setToolTip(tr("Color of the brush (Ctrl and click picks one from the picture)"));
    m_color->setAccessibleName(tr("Color of the brush"));
    connect(m_color, &QToolButton::clicked, this, &PaintBar::pickColor);
    m_size->setPrefix(tr("Size "));
    m_size->setAccessibleName(tr("Across"));
    Commands::describe(m_size, {command("Smaller Brush"), command("Larger Brush")},
                       tr("How much the brush takes across"));
    connect(m_size, qOverload<double>(&QDoubleSpinBox::valueChanged), this, &PaintBar::applyBrush);
    auto *brushes = new QToolButton(this);
    brushes->setText(tr("Brushes"));
    brushes->setToolTip(tr("Show the palette of brushes: kept ones, and all that can be tuned"));
    connect(brushes, &QToolButton::clicked, this, [] {
        if (OssPalette *palette = OssPaletteManager::instance()->find(brushesPalette))
            palette->showBySidebar();
    });
    Commands::describe(m_hardness, {command("Softer Brush"), command("Harder Brush")},
                       m_hardness->accessibleName());
    row->addWidget(m_color);
    row->addWidget(m_size);
    for (QSpinBox *field : {m_hardness, m_opacity}) {
        row->addWidget(field);
        connect(field, qOverload<int>(&QSpinBox::valueChanged), this, &PaintBar::applyBrush);
    }
    row->addWidget(brushes);
    return row;
}

OssFlowLayout *PaintBar::makeToolRow()
{
    auto *row = new OssFlowLayout(gap);
    for (const auto at :
         {BrushFields::ToolChoice, BrushFields::BlendChoice, BrushFields::WithinChoice}) {
        QComboBox *box = makeChoice(at);
        if (at == BrushFields::ToolChoice)
            Commands::describe(box,
                               {command("Toggle Eraser"), command("Toggle Clone"),
                                command("Toggle Smear"), command("Toggle Blur"),
                                command("Toggle Fill"), command("Toggle Gradient")},
                               box->toolTip());
        row->addWidget(box);
    }
    makeMaskMenu();
    row->addWidget(m_mask);
    return row;
}

QComboBox *PaintBar::makeChoice(int at)
{
    const BrushFields::Choice &choice = BrushFields::choices().at(at);
    auto *box = new QComboBox(this);
    box->addItems(BrushFields::words(choice.words));
    box->setAccessibleName(BrushFields::words(choice.name));
    box->setToolTip(BrushFields::words(choice.tip));
    connect(box, qOverload<int>(&QComboBox::activated), this, [this, choice](int index) {
        Brush brush = Brushes::instance()->current();
        choice.set(brush, index);
        Brushes::instance()->edit(brush);
        Q_EMIT chosen();
    });
    m_showChoices.append(
        [box, choice] { box->setCurrentIndex(choice.get(Brushes::instance()->current())); });
    return box;
}

/// For the gradient alone.
OssFlowLayout *PaintBar::makeGradientRow()
{
    auto *row = new OssFlowLayout(gap);
    QComboBox *to = makeChoice(BrushFields::GradientChoice);
    m_second->setToolTip(tr("Color that gradients end with"));
    m_second->setAccessibleName(m_second->toolTip());
    connect(m_second, &QToolButton::clicked, this, &PaintBar::pickSecondColor);
    row->addWidget(m_gradientTo);
    row->addWidget(to);
    row->addWidget(m_second);
    m_showChoices.append([this, to] {
        const OssEvBrush &brush = Brushes::instance()->brush();
        const bool isWanted = brush.tool == OssEvBrush::Tool::Gradient;
        m_gradientTo->setVisible(isWanted);
        to->setVisible(isWanted);
        m_second->setVisible(brush.hasSecondColor());
    });
    return row;
}

QSpinBox *PaintBar::makeField(const QString &prefix, const QString &suffix, int least, int most,
                              const QString &name)
{
    auto *field = new QSpinBox(this);
    field->setRange(least, most);
    field->setPrefix(prefix);
    field->setSuffix(suffix);
    field->setToolTip(name);
    field->setAccessibleName(name);
    return field;
}

// --- what is painted on

void PaintBar::showState()
{
    OssSnImageSetNodeBase *node = m_session->node();
    m_nodes->setCurrentIndex(node ? m_choices.indexOf(node) : -1);
    const bool hasPaint = m_session->hasPaint();
    showAlong();
    m_clear->setEnabled(hasPaint);
    m_bake->setEnabled(hasPaint);
    QString hint;
    if (!OssProjectManager::instance()->currentProject())
        hint = tr("No project is open");
    else if (!node)
        hint = tr("There is nothing to paint on: \"New\" puts a paint node over what is shown.");
    else
        hint = whyUnseen();
    m_hint->setText(hint);
    m_hint->setVisible(!hint.isEmpty());
}

void PaintBar::bake()
{
    const OssResult baked = m_session->bake();
    if (!baked)
        OssMessageBox::warning(this, tr("Bake Paint"), baked.error());
}

// --- the brush

void PaintBar::showBrush()
{
    const OssEvBrush &brush = Brushes::instance()->brush();
    const QSignalBlocker blockers[] = {QSignalBlocker(m_hardness), QSignalBlocker(m_opacity)};
    showSize();
    m_hardness->setValue(int(std::lround(hundred * brush.hardness)));
    m_opacity->setValue(int(std::lround(hundred * brush.opacity)));
    for (const auto &show : m_showChoices)
        show();
    m_seen = OssDisplayColor::ofLinear(toColor(brush.color));
    m_color->setIcon(swatch(m_seen));
    m_secondSeen = OssDisplayColor::ofLinear(toColor(brush.secondColor));
    m_second->setIcon(swatch(m_secondSeen));
    if (m_showsSecond != brush.hasSecondColor())
        showAlong();
}

void PaintBar::showSize()
{
    const OssEvBrush &brush = Brushes::instance()->brush();
    const QSignalBlocker blocker(m_size);
    const bool isWorld = brush.sizeIn == OssEvBrush::SizeIn::World;
    const double size = 2.0 * (isWorld ? brush.worldRadius : brush.radius);
    // Whoever types a size is not to have it written anew at each digit.
    if (m_sizeIn == brush.sizeIn && isShown(*m_size, size))
        return;
    m_sizeIn = brush.sizeIn;
    m_size->setDecimals(isWorld ? 4 : 0);
    m_size->setSuffix(brush.sizeIn == OssEvBrush::SizeIn::Pixels ? tr(" px") : QString());
    m_size->setRange(isWorld ? 1.0 / largestInWorld : 2.0 * Brushes::smallestRadius,
                     isWorld ? largestInWorld : 2.0 * Brushes::largestRadius);
    m_size->setStepType(isWorld ? QAbstractSpinBox::AdaptiveDecimalStepType
                                : QAbstractSpinBox::DefaultStepType);
    m_size->setValue(size);
}

// The brush goes on painting what it was seen to paint.
void PaintBar::keepColor()
{
    if (!m_seen.isValid())
        return;
    OssEvBrush brush = Brushes::instance()->brush();
    brush.color = toArray(OssDisplayColor::toLinear(m_seen));
    brush.secondColor = toArray(OssDisplayColor::toLinear(m_secondSeen));
    Brushes::instance()->setBrush(brush);
}

void PaintBar::applyBrush()
{
    OssEvBrush brush = Brushes::instance()->brush();
    // The keys make sizes between those that are shown.
    double &radius = brush.sizeIn == OssEvBrush::SizeIn::World ? brush.worldRadius : brush.radius;
    if (!isShown(*m_size, 2.0 * radius))
        radius = m_size->value() / 2.0;
    brush.hardness = double(m_hardness->value()) / hundred;
    brush.opacity = double(m_opacity->value()) / hundred;
    Brushes::instance()->setBrush(brush);
}

void PaintBar::pickColor()
{
    OssEvBrush brush = Brushes::instance()->brush();
    const QColor picked = QColorDialog::getColor(OssDisplayColor::ofLinear(toColor(brush.color)),
                                                 this, tr("Color of the Brush"));
    if (!picked.isValid())
        return;
    brush.color = toArray(OssDisplayColor::toLinear(picked));
    if (brush.erases())
        brush.tool = OssEvBrush::Tool::Brush;
    Brushes::instance()->setBrush(brush);
}

void PaintBar::pickSecondColor()
{
    OssEvBrush brush = Brushes::instance()->brush();
    const QColor picked = QColorDialog::getColor(
        OssDisplayColor::ofLinear(toColor(brush.secondColor)), this,
        tr("Color of the Gradient's End"));
    if (!picked.isValid())
        return;
    brush.secondColor = toArray(OssDisplayColor::toLinear(picked));
    Brushes::instance()->setBrush(brush);
}
