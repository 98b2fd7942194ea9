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
constexpr int ownRole = Qt::UserRole;
const QString stampPathKey = QStringLiteral("brush_stamp");

QString words(const char *text)
{
    return QCoreApplication::translate("BrushFields", text);
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
    , m_size(new QComboBox(this))
    , m_stamp(new QComboBox(this))
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
    m_size->addItems({tr("Texels"), tr("Pixels of the screen"), tr("The object's world")});
    m_size->setAccessibleName(tr("Size in"));
    m_size->setToolTip(tr("What the brush's size is counted in"));
    connect(m_size, qOverload<int>(&QComboBox::activated), this, &BrushesPanel::chooseSize);
    form->addRow(tr("Size in"), m_size);
    m_stamp->setAccessibleName(tr("Stamp"));
    m_stamp->setToolTip(
        tr("The shape of a dab: round, or as a picture says by its alpha or its ink"));
    connect(m_stamp, qOverload<int>(&QComboBox::activated), this, &BrushesPanel::chooseStamp);
    form->addRow(tr("Stamp"), m_stamp);
    addNumbers(form);
    addSwitches(form);
    auto *scroll = new QScrollArea(this);
    scroll->setFocusPolicy(
        Qt::NoFocus); // a click beside the fields leaves the keyboard where it is
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(body);
    return scroll;
}

void BrushesPanel::addNumbers(QFormLayout *form)
{
    for (const BrushFields::Number &number : BrushFields::numbers()) {
        auto *field = new QDoubleSpinBox(this);
        field->setRange(number.least, number.most);
        field->setDecimals(0);
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

void BrushesPanel::edit(const std::function<void(Brush &)> &change)
{
    Brush brush = Brushes::instance()->current();
    change(brush);
    Brushes::instance()->take(brush);
}

void BrushesPanel::chooseSize(int unit)
{
    edit([&](Brush &brush) { brush.paint.sizeIn = OssEvBrush::SizeIn(unit); });
}

void BrushesPanel::chooseStamp(int index)
{
    QString name = m_stamp->itemData(index).toString();
    if (index == m_stamp->count() - 1)
        name = OssFileDialog::getOpenFileName(
            tr("Stamp"), tr("Pictures (*.png *.tif *.tiff *.exr *.jpg *.jpeg *.tga *.webp)"),
            stampPathKey, this);
    OssEvStamp::Pointer stamp;
    const bool isGivenUp = name.isEmpty() && index != 0;
    const OssResult read = isGivenUp ? OssResult() : BrushPresets::readStamp(name, &stamp);
    tell(read);
    if (read && !isGivenUp)
        edit([&](Brush &brush) { brush.paint.stamp = stamp; });
    showStamp();
}

void BrushesPanel::showBrush()
{
    if (!isVisible())
        return;
    const Brush &brush = Brushes::instance()->current();
    for (const auto &show : m_show)
        show(brush);
    m_size->setCurrentIndex(int(brush.paint.sizeIn));
    showStamp();
}

void BrushesPanel::showStamp()
{
    const OssEvStamp::Pointer &stamp = Brushes::instance()->brush().stamp;
    const QString used = stamp ? QString::fromStdString(stamp->name()) : QString();
    m_stamp->clear();
    m_stamp->addItem(tr("Round"), QString());
    const QStringList names = BrushPresets::stamps();
    for (const QString &name : names)
        m_stamp->addItem(QCoreApplication::translate("BrushPresets", qPrintable(name)), name);
    if (m_stamp->findData(used) < 0)
        m_stamp->addItem(QFileInfo(used).fileName(), used);
    m_stamp->setCurrentIndex(m_stamp->findData(used));
    m_stamp->addItem(tr("From file..."));
}
