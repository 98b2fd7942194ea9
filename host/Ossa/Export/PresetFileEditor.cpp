#include "Ossa/Export/PresetFileEditor.h"

#include "Ossa/Export/PresetChannels.h"
#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssModel/Export/OssExportPlan.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSpinBox>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr int asAsked = OssExportOptions::EndlessPadding - 1; ///< padding that the export says
constexpr int largestPadding = 64;

QString latin(std::string_view text)
{
    return QString::fromLatin1(text.data(), int(text.size()));
}

const OssEvImageFormat *formatOf(const QString &suffix)
{
    return OssEvImageFormat::ofFile("a." + suffix.toStdString());
}

/// Chooses what has the data, or the first.
void choose(QComboBox *box, const QVariant &data)
{
    box->setCurrentIndex(std::max(0, box->findData(data)));
}

} // namespace

PresetFileEditor::PresetFileEditor(const QStringList &channels, QWidget *parent)
    : QWidget(parent)
    , m_name(new QLineEdit)
    , m_each(new QCheckBox(tr("One file for each channel")))
    , m_format(new QComboBox)
    , m_depth(new QComboBox)
    , m_dithers(new QCheckBox(tr("Dithered")))
    , m_compression(new QComboBox)
    , m_quality(new QSpinBox)
    , m_space(new QComboBox)
    , m_size(new QComboBox)
    , m_padding(new QSpinBox)
    , m_normal(new QComboBox)
    , m_channels(new PresetChannels(channels))
{
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    addFields(form);
    connect(m_format, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        fillByFormat();
        edited();
    });
    for (QComboBox *box : {m_depth, m_compression, m_space, m_size, m_normal})
        connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                &PresetFileEditor::edited);
    for (QSpinBox *box : {m_quality, m_padding})
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &PresetFileEditor::edited);
    for (QCheckBox *box : {m_each, m_dithers})
        connect(box, &QCheckBox::toggled, this, &PresetFileEditor::edited);
    connect(m_name, &QLineEdit::textChanged, this, &PresetFileEditor::edited);
    connect(m_channels, &PresetChannels::changed, this, &PresetFileEditor::edited);
}

void PresetFileEditor::addFields(QFormLayout *form)
{
    m_name->setObjectName(QStringLiteral("FileName"));
    m_name->setToolTip(
        tr("%1 stand for what is exported; what is in brackets is written only where it "
           "tells files apart")
            .arg(OssExportPreset::tokens().join(QStringLiteral(", "))));
    for (const OssEvImageFormat &format : OssEvImageFormat::all()) {
        if (format.writer)
            m_format->addItem(latin(format.name), latin(format.suffixes.front()));
    }
    m_format->setItemText(m_format->findData(QStringLiteral("tx")), tr("Texture with mip maps"));
    m_format->setObjectName(QStringLiteral("Format"));
    m_depth->setObjectName(QStringLiteral("Depth"));
    m_compression->setObjectName(QStringLiteral("Compression"));
    m_quality->setRange(0, 100);
    m_quality->setSpecialValueText(tr("Usual"));
    m_space->addItem(tr("Usual of the format"), QString());
    for (const std::string &space : OssEvColorSpaces::builtIn()->names())
        m_space->addItem(QString::fromStdString(space), QString::fromStdString(space));
    m_space->setToolTip(tr("Of colors; numbers are never encoded"));
    m_size->addItem(tr("As chosen for the export"), 0);
    for (int size = 256; size <= 16384; size *= 2)
        m_size->addItem(QString::number(size), size);
    m_size->setObjectName(QStringLiteral("Size"));
    m_padding->setRange(asAsked, largestPadding);
    m_padding->setSpecialValueText(tr("As chosen for the export"));
    m_padding->setToolTip(tr("How far colors go on beyond the mesh's charts; -1: everywhere"));
    m_padding->setObjectName(QStringLiteral("Padding"));
    m_normal->addItem(tr("+Y, green points up"), false);
    m_normal->addItem(tr("-Y, green points down"), true);
    m_normal->setObjectName(QStringLiteral("Normal"));
    form->addRow(tr("Name"), m_name);
    form->addRow(QString(), tokenButtons());
    form->addRow(QString(), m_each);
    form->addRow(tr("Channels"), m_channels);
    form->addRow(tr("Format"), m_format);
    form->addRow(tr("Depth"), m_depth);
    form->addRow(QString(), m_dithers);
    form->addRow(tr("Compression"), m_compression);
    form->addRow(tr("Quality"), m_quality);
    form->addRow(tr("Color Space"), m_space);
    form->addRow(tr("Size"), m_size);
    form->addRow(tr("Padding"), m_padding);
    form->addRow(tr("Normals"), m_normal);
}

/// Each puts its token where the name's cursor is.
QLayout *PresetFileEditor::tokenButtons()
{
    auto *tokens = new QHBoxLayout;
    tokens->setSpacing(2);
    const QStringList known = OssExportPreset::tokens();
    for (const QString &token : known) {
        auto *button = new QToolButton;
        button->setText(token);
        button->setFocusPolicy(Qt::TabFocus);
        connect(button, &QToolButton::clicked, m_name, [this, token] { m_name->insert(token); });
        tokens->addWidget(button);
    }
    tokens->addStretch();
    return tokens;
}

/// What was chosen stays where the format has it, too.
void PresetFileEditor::fillByFormat()
{
    const QSignalBlocker depths(m_depth);
    const QSignalBlocker compressions(m_compression);
    const QVariant depth = m_depth->currentData();
    const QVariant compression = m_compression->currentData();
    const OssEvImageFormat *format = formatOf(m_format->currentData().toString());
    m_depth->clear();
    for (const OssEvDepth one : format->depths)
        m_depth->addItem(latin(OssEvDepthNames[std::size_t(one)]), int(one));
    m_compression->clear();
    m_compression->addItem(tr("Usual"), QString());
    for (const std::string_view one : format->compressions)
        m_compression->addItem(latin(one), latin(one));
    choose(m_depth, depth);
    choose(m_compression, compression);
    m_compression->setEnabled(!format->compressions.empty());
    m_quality->setEnabled(format->losesDetail);
    if (!format->losesDetail)
        m_quality->setValue(0);
}

void PresetFileEditor::setFile(const OssExportPreset::File &file)
{
    m_isSetting = true;
    m_name->setText(file.name);
    m_each->setChecked(file.isEach);
    choose(m_format, file.format);
    fillByFormat();
    const OssEvImageFormat *format = formatOf(m_format->currentData().toString());
    choose(m_depth, int(file.form.depth.value_or(format->depths.front())));
    choose(m_compression, QString::fromStdString(file.form.compression));
    m_dithers->setChecked(file.form.dithers);
    m_quality->setValue(file.form.quality);
    choose(m_space, QString::fromStdString(file.form.space));
    if (m_size->findData(file.resolution) < 0)
        m_size->addItem(QString::number(file.resolution), file.resolution);
    choose(m_size, file.resolution);
    m_padding->setMaximum(std::max(largestPadding, file.padding.value_or(0)));
    m_padding->setValue(file.padding.value_or(asAsked));
    choose(m_normal, file.flipsNormals);
    m_channels->setChannels(file.channels);
    edited();
    m_isSetting = false;
}

OssExportPreset::File PresetFileEditor::file() const
{
    OssExportPreset::File file;
    file.name = m_name->text().trimmed();
    file.isEach = m_each->isChecked();
    file.format = m_format->currentData().toString();
    file.form.depth = OssEvDepth(m_depth->currentData().toInt());
    file.form.compression = m_compression->currentData().toString().toStdString();
    file.form.dithers = m_dithers->isChecked() && m_dithers->isEnabled();
    file.form.quality = m_quality->value();
    file.form.space = m_space->currentData().toString().toStdString();
    file.resolution = m_size->currentData().toInt();
    if (m_padding->value() > asAsked)
        file.padding = m_padding->value();
    file.flipsNormals = m_normal->currentData().toBool();
    if (!file.isEach)
        file.channels = m_channels->channels();
    return file;
}

void PresetFileEditor::edited()
{
    m_channels->setEnabled(!m_each->isChecked());
    m_dithers->setEnabled(OssEvDepth(m_depth->currentData().toInt()) == OssEvDepth::Byte);
    if (!m_isSetting)
        Q_EMIT changed();
}
