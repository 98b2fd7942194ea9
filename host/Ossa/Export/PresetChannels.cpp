#include "Ossa/Export/PresetChannels.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>

namespace {

constexpr int decimals = 6;
constexpr double largest = 1e6;

/// What a preset from elsewhere names stays, though no material here has it.
void choose(QComboBox *box, const QString &name)
{
    if (box->findText(name) < 0)
        box->addItem(name);
    box->setCurrentText(name);
}

} // namespace

PresetChannels::PresetChannels(const QStringList &names, QWidget *parent)
    : QWidget(parent)
{
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);
    const QStringList titles{QString(), tr("From"), tr("Its"), tr("Value"), QString()};
    for (int column = 0; column < titles.size(); ++column)
        grid->addWidget(new QLabel(titles.at(column)), 0, column);
    const QStringList letters{tr("R"), tr("G"), tr("B"), tr("A")};
    for (int i = 0; i < letters.size(); ++i) {
        Row &row = m_rows[std::size_t(i)];
        row = {new QComboBox, new QComboBox, new QDoubleSpinBox, new QCheckBox(tr("Inverse"))};
        row.from->addItems(QStringList{tr("(none)"), tr("(constant)")} + names);
        row.from->setObjectName(QStringLiteral("From") + letters.at(i));
        row.from->setAccessibleName(tr("What goes into %1").arg(letters.at(i)));
        row.component->addItem(tr("Same"));
        row.component->addItems(OssExportPreset::components());
        row.component->setToolTip(tr("Which part of a color or vector"));
        row.component->setObjectName(QStringLiteral("Component") + letters.at(i));
        row.value->setDecimals(decimals);
        row.value->setRange(-largest, largest);
        row.value->setSingleStep(0.1);
        row.value->setToolTip(tr("The constant, or what is written where a material has no such "
                                 "channel"));
        row.value->setObjectName(QStringLiteral("Value") + letters.at(i));
        row.inverts->setObjectName(QStringLiteral("Inverse") + letters.at(i));
        grid->addWidget(new QLabel(letters.at(i)), i + 1, 0);
        grid->addWidget(row.from, i + 1, 1);
        grid->addWidget(row.component, i + 1, 2);
        grid->addWidget(row.value, i + 1, 3);
        grid->addWidget(row.inverts, i + 1, 4);
        connect(row.from, &QComboBox::currentTextChanged, this, &PresetChannels::refresh);
        connect(row.component, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                &PresetChannels::refresh);
        connect(row.value, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
                &PresetChannels::refresh);
        connect(row.inverts, &QCheckBox::toggled, this, &PresetChannels::refresh);
    }
}

void PresetChannels::setChannels(const Channels &channels)
{
    const QSignalBlocker blocker(this);
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const OssExportPreset::Channel &channel = channels[i];
        const Row &row = m_rows[i];
        if (channel.isUsed && !channel.from.isEmpty())
            choose(row.from, channel.from);
        else
            row.from->setCurrentIndex(channel.isUsed ? 1 : 0);
        row.component->setCurrentIndex(
            channel.component.isEmpty() ? 0 : row.component->findText(channel.component));
        row.value->setValue(channel.value);
        row.inverts->setChecked(channel.inverts);
    }
    refresh();
}

PresetChannels::Channels PresetChannels::channels() const
{
    Channels channels;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const Row &row = m_rows[i];
        const QString from = row.from->currentText().trimmed();
        OssExportPreset::Channel &channel = channels[i];
        channel.isUsed = !from.isEmpty() && from != row.from->itemText(0);
        if (!channel.isUsed)
            continue;
        channel.value = row.value->value();
        if (from == row.from->itemText(1))
            continue;
        channel.from = from;
        channel.inverts = row.inverts->isChecked();
        if (row.component->currentIndex() > 0)
            channel.component = row.component->currentText();
    }
    return channels;
}

void PresetChannels::refresh()
{
    const Channels now = channels();
    for (std::size_t i = 0; i < now.size(); ++i) {
        const bool isChannel = !now[i].from.isEmpty();
        m_rows[i].value->setEnabled(now[i].isUsed);
        m_rows[i].component->setEnabled(isChannel);
        m_rows[i].inverts->setEnabled(isChannel);
    }
    Q_EMIT changed();
}
