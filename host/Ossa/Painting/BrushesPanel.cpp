#include "Ossa/Painting/BrushesPanel.h"

#include "Ossa/Painting/BrushFields.h"
#include "Ossa/Painting/BrushPicture.h"
#include "Ossa/Painting/BrushPresets.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Popups/OssMessageBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int pictureWidth = 112;
constexpr int pictureHeight = 40;
constexpr int cellHeight = 70;
constexpr int longestName = 60;
constexpr int shortestChoice = 6; ///< letters
constexpr int ownRole = Qt::UserRole;
const QString stampPathKey = QStringLiteral("brush_stamp");

using BrushFields::words;

/// A picture that a brush has.
struct PictureField
{
    const char *name;
    const char *tip;
    const char *none;
    bool hasShapes; ///< stamps of the program's own will do
    QString (*used)(const Brush &brush);
    OssResult (*take)(const QString &name, Brush *brush);
};

template <class Pointer>
QString nameOf(const Pointer &picture)
{
    return picture ? QString::fromStdString(picture->name()) : QString();
}

// clang-format off
const PictureField pictureFields[] = {
    {QT_TRANSLATE_NOOP("BrushesPanel", "Stamp"), QT_TRANSLATE_NOOP("BrushesPanel", "The shape of a dab: round, or as a picture says by its alpha or its ink"), QT_TRANSLATE_NOOP("BrushesPanel", "Round"), true, [](const Brush &b) { return nameOf(b.paint.stamp); }, [](const QString &name, Brush *b) { return BrushPresets::readStamp(name, &b->paint.stamp); }},
    {QT_TRANSLATE_NOOP("BrushesPanel", "Picture"), QT_TRANSLATE_NOOP("BrushesPanel", "A picture to paint with instead of the color"), QT_TRANSLATE_NOOP("BrushesPanel", "None"), false, [](const Brush &b) { return nameOf(b.paint.picture); }, [](const QString &name, Brush *b) { return BrushPresets::readPicture(name, &b->paint.picture); }},
    {QT_TRANSLATE_NOOP("BrushesPanel", "Stencil"), QT_TRANSLATE_NOOP("BrushesPanel", "A sheet on the screen to paint through, where a picture has alpha or ink. Ctrl+Shift and a drag moves it, the wheel makes it larger, the right button turns it"), QT_TRANSLATE_NOOP("BrushesPanel", "None"), true, [](const Brush &b) { return nameOf(b.paint.stencil); }, [](const QString &name, Brush *b) { return BrushPresets::readStamp(name, &b->paint.stencil); }},
};

// clang-format on

/// As narrow as the palette may be, however long the name of a file in it is.
QComboBox *makeBox()
{
    auto *box = new QComboBox;
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(shortestChoice);
    return box;
}

/// The one that the brush has among those that it may have.
void showPicture(QComboBox *box, const PictureField &field, const Brush &brush)
{
    const QString used = field.used(brush);
    box->clear();
    box->addItem(BrushesPanel::tr(field.none), QString());
    const QStringList names = field.hasShapes ? BrushPresets::stamps() : QStringList();
    for (const QString &name : names)
        box->addItem(QCoreApplication::translate("BrushPresets", qPrintable(name)), name);
    if (box->findData(used) < 0)
        box->addItem(QFileInfo(used).fileName(), used);
    box->setCurrentIndex(box->findData(used));
    box->addItem(BrushesPanel::tr("From file..."));
}

void tell(const OssResult &result)
{
    if (!result)
        OssStatusManager::instance()->showMessage(result.error());
}

} // namespace

BrushesPanel::BrushesPanel(QWidget *parent)
    : QWidget(parent)
    , m_shelf(new QListWidget(this))
    , m_name(new QLineEdit(this))
    , m_remove(new QToolButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(makeShelf(), 1);
    layout->addWidget(makeFields(), 1);
    connect(Brushes::instance(), &Brushes::changed, this, &BrushesPanel::showBrush);
}

void BrushesPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!m_isShown) // pictures take their time
        fillShelf();
    m_isShown = true;
    showBrush();
}

// --- kept brushes

QWidget *BrushesPanel::makeShelf()
{
    auto *side = new QWidget(this);
    auto *layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    m_shelf->setViewMode(QListView::IconMode);
    m_shelf->setMovement(QListView::Static);
    m_shelf->setResizeMode(QListView::Adjust);
    m_shelf->setUniformItemSizes(true);
    m_shelf->setIconSize({pictureWidth, pictureHeight});
    m_shelf->setGridSize({pictureWidth + 8, cellHeight});
    m_shelf->setAccessibleName(tr("Kept brushes"));
    connect(m_shelf, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { takeFromShelf(m_shelf->row(item)); });
    connect(m_shelf, &QListWidget::itemActivated, this,
            [this](QListWidgetItem *item) { takeFromShelf(m_shelf->row(item)); });
    connect(m_shelf, &QListWidget::currentItemChanged, this, [this](QListWidgetItem *item) {
        m_remove->setEnabled(item && item->data(ownRole).toBool());
    });
    auto *row = new QHBoxLayout;
    m_name->setMaxLength(longestName);
    m_name->setPlaceholderText(tr("Name for the brush in hand"));
    m_name->setAccessibleName(m_name->placeholderText());
    auto *keepIt = new QToolButton(this);
    keepIt->setText(tr("Keep"));
    keepIt->setToolTip(tr("Keep the brush in hand by that name, to take it up again"));
    connect(keepIt, &QToolButton::clicked, this, &BrushesPanel::keep);
    connect(m_name, &QLineEdit::returnPressed, this, &BrushesPanel::keep);
    m_remove->setText(tr("Remove"));
    m_remove->setToolTip(tr("Remove the chosen brush, if it is your own"));
    m_remove->setEnabled(false);
    connect(m_remove, &QToolButton::clicked, this, &BrushesPanel::removeKept);
    row->addWidget(m_name, 1);
    row->addWidget(keepIt);
    row->addWidget(m_remove);
    layout->addWidget(m_shelf, 1);
    layout->addLayout(row);
    return side;
}

void BrushesPanel::fillShelf()
{
    m_shelf->clear();
    const double ratio = devicePixelRatioF();
    const QVector<BrushPresets::Entry> kept = BrushPresets::all();
    for (const BrushPresets::Entry &entry : kept) {
        QImage picture = BrushPicture::make(entry.brush,
                                            (QSizeF(pictureWidth, pictureHeight) * ratio).toSize());
        picture.setDevicePixelRatio(ratio);
        auto *item = new QListWidgetItem(QIcon(QPixmap::fromImage(picture)), entry.name, m_shelf);
        item->setData(ownRole, entry.isOwn);
        item->setToolTip(entry.isOwn ? tr("%1, your own").arg(entry.name) : entry.name);
        if (entry.problem.isEmpty())
            continue;
        item->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
        item->setToolTip(entry.problem);
    }
}

void BrushesPanel::takeFromShelf(int row)
{
    const QVector<BrushPresets::Entry> kept = BrushPresets::all();
    const QListWidgetItem *item = m_shelf->item(row);
    for (const BrushPresets::Entry &entry : kept) {
        if (item && entry.name == item->text() && entry.isOwn == item->data(ownRole).toBool()) {
            if (entry.problem.isEmpty())
                Brushes::instance()->take(entry.brush);
            else
                OssStatusManager::instance()->showMessage(entry.problem);
            m_name->setText(entry.isOwn ? entry.name : QString());
            return;
        }
    }
    fillShelf(); // it has gone
}

void BrushesPanel::keep()
{
    const QString name = m_name->text().trimmed();
    const QVector<BrushPresets::Entry> all = BrushPresets::all();
    const bool isThere = std::any_of(all.cbegin(), all.cend(), [&](const auto &entry) {
        return entry.isOwn && entry.name == name;
    });
    if (isThere
        && OssMessageBox::question(this, tr("Keep Brush"),
                                   tr("There is a brush \"%1\" already. Replace it?").arg(name),
                                   QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
               != QMessageBox::Yes)
        return;
    const OssResult kept = BrushPresets::save(name, Brushes::instance()->current());
    tell(kept);
    if (kept)
        fillShelf();
}

void BrushesPanel::removeKept()
{
    if (const QListWidgetItem *item = m_shelf->currentItem())
        tell(BrushPresets::remove(item->text()));
    fillShelf();
}

// --- the brush in hand

QWidget *BrushesPanel::makeFields()
{
    auto *body = new QWidget(this);
    auto *form = new QFormLayout(body);
    addChoices(form);
    addPictures(form);
    addNumbers(form);
    addSwitches(form);
    auto *scroll = new QScrollArea(this);
    scroll->setFocusPolicy(
        Qt::NoFocus); // a click beside the fields leaves the keyboard where it is
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(body);
    // What is kept makes room for them.
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setMinimumWidth(body->minimumSizeHint().width()
                            + scroll->verticalScrollBar()->sizeHint().width());
    return scroll;
}

void BrushesPanel::addNumbers(QFormLayout *form)
{
    for (const BrushFields::Number &number : BrushFields::numbers()) {
        auto *field = new QDoubleSpinBox(this);
        field->setDecimals(number.decimals); // first: they round the range
        field->setRange(number.least, number.most);
        field->setSuffix(QString::fromUtf8(number.suffix));
        field->setAccessibleName(words(number.name));
        field->setToolTip(words(number.tip));
        form->addRow(words(number.name), field);
        connect(field, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
                [this, number](double value) {
                    edit([&](Brush &brush) { number.of(brush) = value / number.shown; });
                });
        m_show.append([field, number](Brush brush) {
            const QSignalBlocker blocker(field);
            field->setValue(number.of(brush) * number.shown);
        });
    }
}

void BrushesPanel::addSwitches(QFormLayout *form)
{
    for (const BrushFields::Switch &field : BrushFields::switches()) {
        auto *box = new QCheckBox(words(field.name), this);
        box->setToolTip(words(field.tip));
        form->addRow(box);
        connect(box, &QCheckBox::toggled, this,
                [this, field](bool on) { edit([&](Brush &brush) { field.of(brush) = on; }); });
        m_show.append([box, field](Brush brush) {
            const QSignalBlocker blocker(box);
            box->setChecked(field.of(brush));
        });
    }
}

void BrushesPanel::addChoices(QFormLayout *form)
{
    for (const BrushFields::Choice &choice : BrushFields::choices()) {
        auto *box = makeBox();
        box->addItems(BrushFields::words(choice.words));
        box->setAccessibleName(words(choice.name));
        box->setToolTip(words(choice.tip));
        form->addRow(words(choice.name), box);
        connect(box, qOverload<int>(&QComboBox::activated), this, [this, choice](int index) {
            edit([&](Brush &brush) { choice.set(brush, index); });
        });
        m_show.append(
            [box, choice](const Brush &brush) { box->setCurrentIndex(choice.get(brush)); });
    }
}

void BrushesPanel::addPictures(QFormLayout *form)
{
    for (const PictureField &field : pictureFields) {
        auto *box = makeBox();
        box->setAccessibleName(tr(field.name));
        box->setToolTip(tr(field.tip));
        form->addRow(tr(field.name), box);
        const auto show = [box, field](const Brush &brush) {
            showPicture(box, field, brush);
        };
        m_show.append(show);
        connect(
            box, qOverload<int>(&QComboBox::activated), this, [this, box, field, show](int index) {
                QString name = box->itemData(index).toString();
                if (index == box->count() - 1)
                    name = OssFileDialog::getOpenFileName(
                        tr(field.name),
                        tr("Pictures (*.png *.tif *.tiff *.exr *.jpg *.jpeg *.tga *.webp *.svg)"),
                        stampPathKey, this);
                Brush brush = Brushes::instance()->current();
                const bool isGivenUp = name.isEmpty() && index != 0;
                const OssResult read = isGivenUp ? OssResult() : field.take(name, &brush);
                tell(read);
                if (read && !isGivenUp)
                    Brushes::instance()->edit(brush);
                show(Brushes::instance()->current());
            });
    }
}

void BrushesPanel::edit(const std::function<void(Brush &)> &change)
{
    Brush brush = Brushes::instance()->current();
    change(brush);
    Brushes::instance()->edit(brush);
}

void BrushesPanel::showBrush()
{
    if (!isVisible())
        return;
    const Brush &brush = Brushes::instance()->current();
    for (const auto &show : m_show)
        show(brush);
}
