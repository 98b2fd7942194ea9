#include "OssInterface/Properties/OssColorEditor.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Properties/OssColorPicker.h"
#include "OssInterface/Properties/OssNumberField.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QUuid>

namespace {

constexpr QSize SwatchSize(26, 20);
constexpr int Square = 5;
constexpr int Beside = 120; ///< room for labels

} // namespace

OssColorEditor::OssColorEditor(QWidget *parent)
    : OssPropertyEditor(parent)
    , m_swatch(new QPushButton(this))
{
    QHBoxLayout *row = makeRow();
    row->setSpacing(2);
    m_swatch->setFlat(true);
    m_swatch->setFocusPolicy(Qt::TabFocus);
    m_swatch->setIconSize(SwatchSize);
    m_swatch->setFixedSize(SwatchSize + QSize(6, 6));
    m_swatch->setStyleSheet(QStringLiteral("padding: 0; border-width: 1px;"));
    m_swatch->setToolTip(tr("Pick a colour"));
    row->addWidget(m_swatch);
    connect(m_swatch, &QPushButton::clicked, this, &OssColorEditor::openPicker);
    const char *const names[Channels] = {"R", "G", "B", "A"};
    for (int i = 0; i < Channels; ++i) {
        OssNumberField *field = m_fields[i] = new OssNumberField(this);
        field->setPrefix(QLatin1String(names[i]));
        row->addWidget(field);
        passOn(
            field,
            [this](double) {
                paintSwatch();
                return QVariant::fromValue(color());
            },
            always({i}));
    }
    setFocusProxy(m_swatch);
}

OssColorEditor::~OssColorEditor()
{
    // It would tell of its end when this is no editor any more.
    if (m_picker)
        m_picker->disconnect(this);
}

OssColor OssColorEditor::color() const
{
    return {m_fields[0]->value(), m_fields[1]->value(), m_fields[2]->value(), m_fields[3]->value()};
}

void OssColorEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    const auto value = attribute.value().value<OssColor>();
    const double channels[Channels] = {value.red(), value.green(), value.blue(), value.alpha()};
    m_display = attribute.definition().editor == QLatin1String("displaycolor");
    m_mixed = mixed;
    const auto bound = [](const QVariant &number) {
        return number.isValid() ? std::optional<double>(number.toDouble()) : std::nullopt;
    };
    m_minimum = bound(attribute.definition().minimum);
    m_maximum = bound(attribute.definition().maximum);
    const char *const names[Channels] = {"red", "green", "blue", "alpha"};
    for (int i = 0; i < Channels; ++i) {
        OssNumberField::Range range;
        range.softMinimum = 0.0;
        range.softMaximum = 1.0;
        range.minimum = i == 3 ? std::optional<double>(0.0) : m_minimum;
        range.maximum = i == 3 ? std::optional<double>(1.0) : m_maximum;
        m_fields[i]->setRange(range);
        m_fields[i]->setValue(channels[i]);
        m_fields[i]->setMixed(mixed.at(i));
        m_fields[i]->setAccessibleName(attribute.prettyName() + QLatin1Char(' ')
                                       + QLatin1String(names[i]));
    }
    m_swatch->setAccessibleName(attribute.prettyName());
    m_swatch->setAccessibleDescription(mixed.any ? tr("mixed") : value.toString());
    paintSwatch();
    if (m_picker && m_picker->color() != value)
        m_picker->setColor(value);
    if (m_picker)
        m_picker->setMixed(mixed);
}

void OssColorEditor::paintSwatch()
{
    const qreal ratio = devicePixelRatioF();
    QPixmap pixmap(SwatchSize * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const QRect box({0, 0}, SwatchSize);
    const QRect right = box.adjusted(box.width() / 2, 0, 0, 0);
    // The left half without alpha, the right half over squares.
    for (int y = 0; y < box.height(); y += Square) {
        for (int x = right.left(); x < box.width(); x += Square)
            painter.fillRect(x, y, Square, Square,
                             ((x - right.left()) / Square + y / Square) % 2 ? QColor(150, 150, 150)
                                                                            : QColor(90, 90, 90));
    }
    QColor opaque = OssColorPicker::shown(color(), m_display);
    if (m_mixed.any) {
        painter.fillRect(box, QBrush(palette().color(QPalette::PlaceholderText), Qt::BDiagPattern));
    } else {
        painter.fillRect(right, opaque);
        opaque.setAlphaF(1.0);
        painter.fillRect(box.adjusted(0, 0, -box.width() / 2, 0), opaque);
    }
    painter.end();
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Disabled); // a colour that cannot be edited is still that colour
    m_swatch->setIcon(icon);
}

// --- picker

QString OssColorEditor::joinKey() const
{
    return m_telling ? m_session : QString();
}

void OssColorEditor::tell(const std::function<void()> &what)
{
    m_telling = true;
    what();
    m_telling = false;
    m_lastStep = OssUndoManager::instance()->index();
}

void OssColorEditor::openPicker()
{
    if (!OssApplication::popupsAllowed())
        return;
    if (m_picker) {
        m_picker->raise();
        m_picker->activateWindow();
        return;
    }
    const OssColor start = color();
    m_picker = new OssColorPicker({m_display, m_minimum, m_maximum}, start, this); // deletes itself
    m_picker->setAttribute(Qt::WA_DeleteOnClose);
    m_picker->setWindowTitle(m_swatch->accessibleName());
    m_picker->setMixed(m_mixed);
    m_session = QUuid::createUuid().toString();
    m_lastStep = OssUndoManager::instance()->index();
    const auto passOn = [this](auto from, auto to) {
        connect(m_picker, from, this, [this, to](const OssColor &color, const QVector<int> &parts) {
            tell([&] { Q_EMIT(this->*to)(QVariant::fromValue(color), parts); });
        });
    };
    passOn(&OssColorPicker::edited, &OssPropertyEditor::edited);
    passOn(&OssColorPicker::stepped, &OssPropertyEditor::edited);
    passOn(&OssColorPicker::dragged, &OssPropertyEditor::dragged);
    connect(m_picker, &OssColorPicker::dragBegun, this,
            [this] { tell([this] { Q_EMIT dragBegun(); }); });
    connect(m_picker, &OssColorPicker::dragEnded, this,
            [this] { tell([this] { Q_EMIT dragEnded(); }); });
    connect(m_picker, &QDialog::finished, this,
            [this, start, first = m_lastStep](int result) { closed(result, start, first); });
    for (QObject *other :
         {static_cast<QObject *>(window()), static_cast<QObject *>(OssApplication::mainWindow())}) {
        if (other)
            other->installEventFilter(this);
    }
    m_picker->show();
    // Beside the panel, as near as the screen allows: what is edited stays in view.
    const QRect room = m_picker->screen()->availableGeometry();
    const QSize size = m_picker->frameGeometry().size();
    const QPoint at = mapToGlobal({-size.width() - Beside, -size.height() / 2});
    m_picker->move(qBound(room.left(), at.x(), qMax(room.left(), room.right() - size.width())),
                   qBound(room.top(), at.y(), qMax(room.top(), room.bottom() - size.height())));
    m_picker->activateWindow(); // so that Escape is its
}

void OssColorEditor::closed(int result, const OssColor &start, int firstStep)
{
    const OssColor last = m_picker->color();
    m_picker = nullptr;
    if (result == QDialog::Accepted || last == start)
        return;
    OssUndoManager *history = OssUndoManager::instance();
    // When nothing came after what was picked, it is as if it had not been.
    if (m_lastStep == firstStep + 1 && history->index() == m_lastStep)
        history->undo();
    else
        tell([&] { Q_EMIT edited(QVariant::fromValue(start), OssAttributeEdit::changedParts()); });
}

/// Escape that nobody has a use for, in the windows beside the picker. Who went on working there wants
/// to keep what was picked.
bool OssColorEditor::eventFilter(QObject *watched, QEvent *event)
{
    const bool escape = event->type() == QEvent::KeyPress
                        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape;
    if (!escape || !m_picker || OssStatusManager::instance()->inProgress())
        return OssPropertyEditor::eventFilter(watched, event);
    m_picker->accept();
    return true;
}

void OssColorEditor::changeEvent(QEvent *event)
{
    // A window of its own is not disabled along.
    if (event->type() == QEvent::EnabledChange && !isEnabled() && m_picker)
        m_picker->accept();
    OssPropertyEditor::changeEvent(event);
}
