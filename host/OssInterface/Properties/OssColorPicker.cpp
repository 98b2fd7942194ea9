#include "OssInterface/Properties/OssColorPicker.h"

#include "OssInterface/Properties/OssNumberField.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssDisplayColor.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>

#include <algorithm>

namespace {

constexpr QSize SwatchSize(54, 24);
const QVector<int> Rgb{0, 1, 2};

/// A display colour as it is without its alpha.
void paintSwatch(QPushButton *button, QColor color)
{
    color.setAlpha(255);
    QPixmap pixmap(SwatchSize);
    pixmap.fill(color);
    button->setIcon(pixmap);
}

} // namespace

QColor OssColorPicker::shown(const OssColor &color, bool isDisplay)
{
    return isDisplay ? color.toQColor() : OssDisplayColor::ofLinear(color);
}

OssColorPicker::OssColorPicker(const Space &space, const OssColor &color, QWidget *parent)
    : QDialog(parent, Qt::Tool)
    , m_space(space)
    , m_start(color)
    , m_plane(new OssColorPlane(this))
    , m_code(new QLineEdit(this))
    , m_before(new QPushButton(this))
    , m_now(new QPushButton(this))
{
    auto *column = new QVBoxLayout(this);
    auto *grid = new QGridLayout;
    column->addWidget(m_plane, 1);
    column->addLayout(grid);
    column->addLayout(makeButtons());
    makeFields(grid);
    makeBrightness(grid);
    connect(m_plane, &OssColorPlane::dragBegun, this, &OssColorPicker::dragBegun);
    connect(m_plane, &OssColorPlane::dragEnded, this, &OssColorPicker::dragEnded);
    connect(m_plane, &OssColorPlane::dragged, this, [this] {
        takePlane();
        tell(&OssColorPicker::dragged, Rgb);
    });
    connect(m_plane, &OssColorPlane::stepped, this, [this] {
        takePlane();
        tell(&OssColorPicker::stepped, Rgb);
    });
    setColor(color);
    paintSwatch(m_before, shown(m_start, m_space.isDisplay));
    // In another working space the numbers that it began with are another colour.
    if (!m_space.isDisplay)
        connect(OssColorManagement::instance(), &OssColorManagement::changed, this,
                &QDialog::accept);
}

OssColorPicker::~OssColorPicker() = default;

// --- making

void OssColorPicker::makeFields(QGridLayout *grid)
{
    const QString names[] = {tr("Red"), tr("Green"), tr("Blue"), tr("Alpha")};
    for (int i = 0; i < Channels; ++i) {
        OssNumberField *field = m_fields[i] = new OssNumberField(this);
        OssNumberField::Range range;
        range.softMinimum = 0.0;
        range.softMaximum = 1.0;
        range.minimum = i == 3 ? std::optional<double>(0.0) : m_space.minimum;
        range.maximum = i == 3 ? std::optional<double>(1.0) : m_space.maximum;
        field->setRange(range);
        field->setAccessibleName(names[i]);
        grid->addWidget(new QLabel(names[i], this), i, 0);
        grid->addWidget(field, i, 1);
        const auto take = [this, i](double) {
            m_color = {m_fields[0]->value(), m_fields[1]->value(), m_fields[2]->value(),
                       m_fields[3]->value()};
            setColor(m_color);
            return QVector<int>{i};
        };
        connect(field, &OssNumberField::edited, this,
                [=](double value) { tell(&OssColorPicker::edited, take(value)); });
        connect(field, &OssNumberField::stepped, this,
                [=](double value) { tell(&OssColorPicker::stepped, take(value)); });
        connect(field, &OssNumberField::dragged, this,
                [=](double value) { tell(&OssColorPicker::dragged, take(value)); });
        connect(field, &OssNumberField::dragBegun, this, &OssColorPicker::dragBegun);
        connect(field, &OssNumberField::dragEnded, this, &OssColorPicker::dragEnded);
    }
}

void OssColorPicker::makeBrightness(QGridLayout *grid)
{
    m_brightness = new OssNumberField(this);
    OssNumberField::Range range;
    range.minimum = range.softMinimum = 0.0;
    range.softMaximum = 1.0;
    range.maximum = m_space.maximum;
    m_brightness->setRange(range);
    m_brightness->setAccessibleName(tr("Brightness"));
    m_brightness->setToolTip(tr("The brightest channel; the others keep their share"));
    grid->addWidget(new QLabel(tr("Brightness"), this), Channels, 0);
    grid->addWidget(m_brightness, Channels, 1);
    const auto passOn = [this](void (OssNumberField::*from)(double), Signal to) {
        connect(m_brightness, from, this, [this, to](double value) {
            takeBrightness(value);
            tell(to, Rgb);
        });
    };
    passOn(&OssNumberField::edited, &OssColorPicker::edited);
    passOn(&OssNumberField::stepped, &OssColorPicker::stepped);
    passOn(&OssNumberField::dragged, &OssColorPicker::dragged);
    connect(m_brightness, &OssNumberField::dragBegun, this, &OssColorPicker::dragBegun);
    connect(m_brightness, &OssNumberField::dragEnded, this, &OssColorPicker::dragEnded);

    m_code->setAccessibleName(tr("Display code"));
    m_code->setToolTip(tr("What a display is sent, such as #c08040"));
    grid->addWidget(new QLabel(tr("Display"), this), Channels + 1, 0);
    grid->addWidget(m_code, Channels + 1, 1);
    connect(m_code, &QLineEdit::editingFinished, this, &OssColorPicker::takeCode);
}

QHBoxLayout *OssColorPicker::makeButtons()
{
    auto *row = new QHBoxLayout;
    for (QPushButton *swatch : {m_before, m_now}) {
        swatch->setFlat(true);
        swatch->setIconSize(SwatchSize);
        swatch->setFixedSize(SwatchSize + QSize(4, 4));
        swatch->setStyleSheet(QStringLiteral("padding: 0; border-width: 1px;"));
        swatch->setAutoDefault(false);
        row->addWidget(swatch);
    }
    m_now->setFocusPolicy(Qt::NoFocus);
    m_now->setToolTip(tr("The colour as it is now"));
    m_before->setToolTip(tr("Back to the colour that was there"));
    m_before->setAccessibleName(m_before->toolTip());
    connect(m_before, &QPushButton::clicked, this, [this] {
        setColor(m_start);
        tell(&OssColorPicker::edited, OssAttributeEdit::changedParts());
    });
    auto *screen = new QPushButton(tr("Pick from Screen"), this);
    screen->setAutoDefault(false);
    screen->setToolTip(tr("The next click takes the colour under the pointer; Escape leaves it"));
    connect(screen, &QPushButton::clicked, this, &OssColorPicker::pickFromScreen);
    auto *close = new QPushButton(tr("Close"), this);
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    row->addStretch();
    row->addWidget(screen);
    row->addWidget(close);
    return row;
}

// --- the colour

double OssColorPicker::brightness() const
{
    return std::max({m_color.red(), m_color.green(), m_color.blue(), 0.0});
}

OssColor OssColorPicker::bounded(const OssColor &color) const
{
    const auto within = [this](double channel) {
        if (m_space.minimum)
            channel = std::max(channel, *m_space.minimum);
        return m_space.maximum ? std::min(channel, *m_space.maximum) : channel;
    };
    return {within(color.red()), within(color.green()), within(color.blue()), color.alpha()};
}

void OssColorPicker::setColor(const OssColor &color)
{
    m_color = color;
    m_top = std::max(brightness(), 1.0);
    showColor();
}

void OssColorPicker::setMixed(const OssMixed &mixed)
{
    for (int i = 0; i < Channels; ++i)
        m_fields[i]->setMixed(mixed.at(i));
    m_brightness->setMixed(mixed.at(0) || mixed.at(1) || mixed.at(2));
}

void OssColorPicker::showColor()
{
    const OssColor &color = m_color;
    const double channels[Channels] = {color.red(), color.green(), color.blue(), color.alpha()};
    for (int i = 0; i < Channels; ++i)
        m_fields[i]->setValue(channels[i]);
    m_brightness->setValue(brightness());
    const QColor seen = shown({color.red() / m_top, color.green() / m_top, color.blue() / m_top},
                              m_space.isDisplay);
    // Greys have no hue, and black no saturation either: those of before stay in hand.
    OssColorPlane::Hsv hsv = m_plane->color();
    const OssColorPlane::Hsv now{seen.hsvHueF(), seen.hsvSaturationF(), seen.valueF()};
    const QColor held = QColor::fromHsvF(std::min(hsv.hue, 0.9999), hsv.saturation, hsv.value);
    if (held.toRgb().rgb() != seen.rgb()) {
        hsv.hue = now.hue >= 0.0 ? now.hue : hsv.hue;
        hsv.saturation = now.value > 0.0 ? now.saturation : hsv.saturation;
        hsv.value = now.value;
        m_plane->setColor(hsv);
    }
    paintSwatch(m_now, shown(color, m_space.isDisplay));
    if (!m_code->isModified() || !m_code->hasFocus())
        m_code->setText(
            shown({color.red(), color.green(), color.blue()}, m_space.isDisplay).name());
}

void OssColorPicker::tell(Signal signal, const QVector<int> &parts)
{
    Q_EMIT(this->*signal)(m_color, parts);
}

void OssColorPicker::takePlane()
{
    const OssColorPlane::Hsv &hsv = m_plane->color();
    const QColor seen = QColor::fromHsvF(std::min(hsv.hue, 0.9999), hsv.saturation, hsv.value);
    const OssColor color = m_space.isDisplay ? OssColor(seen) : OssDisplayColor::toLinear(seen);
    m_color = bounded(
        {color.red() * m_top, color.green() * m_top, color.blue() * m_top, m_color.alpha()});
    showColor();
}

void OssColorPicker::takeBrightness(double brightness)
{
    const double before = this->brightness();
    const double times = before > 0.0 ? brightness / before : 1.0;
    const OssColor scaled = before > 0.0
                                ? OssColor(m_color.red() * times, m_color.green() * times,
                                           m_color.blue() * times, m_color.alpha())
                                : OssColor(brightness, brightness, brightness, m_color.alpha());
    setColor(bounded(scaled));
}

void OssColorPicker::takeCode()
{
    if (!m_code->isModified())
        return;
    m_code->setModified(false);
    bool good = false;
    const OssColor code = OssColor::fromString(m_code->text().trimmed(), &good);
    if (good && m_code->text().trimmed().startsWith(QLatin1Char('#'))) {
        OssColor color = m_space.isDisplay ? code : OssDisplayColor::toLinear(code.toQColor());
        setColor(bounded({color.red(), color.green(), color.blue(), m_color.alpha()}));
        tell(&OssColorPicker::edited, Rgb);
    } else {
        setColor(m_color);
    }
}

// --- from the screen

void OssColorPicker::pickFromScreen()
{
    if (m_picking)
        return;
    m_picking = true;
    setMouseTracking(true);
    grabMouse(Qt::CrossCursor);
    grabKeyboard();
}

void OssColorPicker::endScreenPick()
{
    if (!m_picking)
        return;
    m_picking = false;
    setMouseTracking(false);
    releaseMouse();
    releaseKeyboard();
    paintSwatch(m_now, shown(m_color, m_space.isDisplay));
}

std::optional<OssColor> OssColorPicker::colorAt(const QPoint &global) const
{
    QWidget *widget = QApplication::widgetAt(global);
    if (widget && widget->metaObject()->indexOfMethod("sceneColorAt(QPoint)") >= 0) {
        QVariant found;
        QMetaObject::invokeMethod(widget, "sceneColorAt", Qt::DirectConnection,
                                  Q_RETURN_ARG(QVariant, found),
                                  Q_ARG(QPoint, widget->mapFromGlobal(global)));
        if (found.isValid()) {
            const auto color = found.value<OssColor>();
            return m_space.isDisplay ? OssColor(OssDisplayColor::ofLinear(color)) : color;
        }
    }
    QScreen *screen = QGuiApplication::screenAt(global);
    if (!screen)
        return std::nullopt;
    const QPoint at = global - screen->geometry().topLeft();
    const QImage pixel = screen->grabWindow(0, at.x(), at.y(), 1, 1).toImage();
    if (pixel.isNull())
        return std::nullopt;
    const QColor seen = pixel.pixelColor(0, 0);
    return m_space.isDisplay ? OssColor(seen) : OssDisplayColor::toLinear(seen);
}

bool OssColorPicker::event(QEvent *event)
{
    if (event->type() == QEvent::Hide || event->type() == QEvent::UngrabMouse)
        endScreenPick();
    return QDialog::event(event);
}

void OssColorPicker::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_picking)
        return;
    if (const auto color = colorAt(event->globalPos()))
        paintSwatch(m_now, shown(*color, m_space.isDisplay));
}

void OssColorPicker::mousePressEvent(QMouseEvent *event)
{
    if (!m_picking) {
        QDialog::mousePressEvent(event);
        return;
    }
    const auto color = event->button() == Qt::LeftButton ? colorAt(event->globalPos())
                                                         : std::nullopt;
    endScreenPick();
    if (!color)
        return;
    setColor(bounded({color->red(), color->green(), color->blue(), m_color.alpha()}));
    tell(&OssColorPicker::edited, Rgb);
}

void OssColorPicker::closeEvent(QCloseEvent *)
{
    accept();
}

void OssColorPicker::keyPressEvent(QKeyEvent *event)
{
    if (m_picking) {
        if (event->key() == Qt::Key_Escape)
            endScreenPick();
        return;
    }
    QDialog::keyPressEvent(event);
}
