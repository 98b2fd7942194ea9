#include "Ossa/Dialogs/MeshPanel.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssInterface/Popups/OssFileDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

using Options = OssEvMeshFile::Options;

QString text(const std::string &from)
{
    return QString::fromStdString(from);
}

QString patchesInWords(const std::vector<int> &patches)
{
    constexpr std::size_t most = 8;
    QStringList numbers;
    for (std::size_t i = 0; i < std::min(most, patches.size()); ++i)
        numbers.append(QString::number(patches[i]));
    if (patches.size() > most)
        numbers.append(QStringLiteral("\u2026"));
    return numbers.join(QStringLiteral(", "));
}

} // namespace

QString MeshPanel::askForFile(const QString &title, QWidget *parent)
{
    QStringList patterns;
    for (const std::string &suffix : OssEvMeshFile::suffixes())
        patterns.append(QStringLiteral("*.") + text(suffix));
    return OssFileDialog::getOpenFileName(title,
                                          tr("Meshes (%1)").arg(patterns.join(QLatin1Char(' '))),
                                          QStringLiteral("MeshPath"), parent);
}

MeshPanel::MeshPanel(Purpose purpose, QWidget *parent)
    : QWidget(parent)
    , m_purpose(purpose)
    , m_reader(new OssMeshReader(this))
    , m_form(new QFormLayout)
    , m_split(new QComboBox(this))
    , m_take(new QComboBox(this))
    , m_uvSet(new QComboBox(this))
    , m_up(new QComboBox(this))
    , m_scale(new QDoubleSpinBox(this))
    , m_unwraps(new QCheckBox(tr("Unwrap automatically"), this))
    , m_contents(new QLabel(this))
    , m_findings(new QLabel(this))
    , m_unwrapNow(new QPushButton(tr("Unwrap Automatically"), this))
    , m_progress(new QProgressBar(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_form);
    makeFields();
    makeFoot();
    connect(m_reader, &OssMeshReader::progressed, m_progress, &QProgressBar::setValue);
    connect(m_reader, &OssMeshReader::finished, this, &MeshPanel::finish);
}

void MeshPanel::makeFields()
{
    m_split->addItems(
        {tr("Everything as one object"), tr("Each object of the file"), tr("Each material slot")});
    m_up->addItems({tr("As the file says"), tr("Y"), tr("Z")});
    m_scale->setDecimals(4);
    m_scale->setRange(0.0001, 10000.0);
    m_scale->setSingleStep(0.1);
    m_scale->setKeyboardTracking(false);
    m_unwraps->setToolTip(tr("Make texture coordinates anew: charts of faces that look about the "
                             "same way, side by side in one patch"));
    if (m_purpose == MakesObjects)
        m_form->addRow(tr("Objects:"), m_split);
    else
        m_form->addRow(tr("Take:"), m_take);
    m_split->setVisible(m_purpose == MakesObjects);
    m_take->setVisible(m_purpose == GivesShape);
    m_form->addRow(tr("UV set:"), m_uvSet);
    m_form->addRow(QString(), m_unwraps);
    m_form->addRow(tr("Up:"), m_up);
    m_form->addRow(tr("Scale:"), m_scale);
    for (QComboBox *box : {m_split, m_take, m_uvSet, m_up})
        connect(box, qOverload<int>(&QComboBox::activated), this, &MeshPanel::choose);
    connect(m_scale, qOverload<double>(&QDoubleSpinBox::valueChanged), this, &MeshPanel::choose);
    connect(m_unwraps, &QCheckBox::toggled, this, &MeshPanel::choose);
}

void MeshPanel::makeFoot()
{
    for (QLabel *label : {m_contents, m_findings}) {
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        layout()->addWidget(label);
    }
    m_contents->setObjectName(QStringLiteral("Muted"));
    m_findings->setAccessibleName(tr("What is wrong with the mesh"));
    layout()->addWidget(m_unwrapNow);
    layout()->addWidget(m_progress);
    m_progress->setRange(0, 1000);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(tr("Progress of reading"));
    m_progress->hide();
    m_unwrapNow->hide();
    connect(m_unwrapNow, &QPushButton::clicked, this, &MeshPanel::unwrap);
}

void MeshPanel::setSource(const OssGeometrySource &source)
{
    m_source = source;
    m_isFilling = true;
    m_split->setCurrentIndex(int(source.options.split));
    m_up->setCurrentIndex(int(source.options.up));
    m_scale->setValue(source.options.scale);
    m_unwraps->setChecked(source.options.unwraps);
    m_isFilling = false;
    begin();
}

OssGeometrySource MeshPanel::source() const
{
    return m_source;
}

void MeshPanel::choose()
{
    if (m_isFilling)
        return;
    OssGeometrySource wanted = m_source;
    wanted.options.up = Options::Up(m_up->currentIndex());
    wanted.options.scale = m_scale->value();
    wanted.options.unwraps = m_unwraps->isChecked();
    wanted.options.uvSet = m_uvSet->currentIndex() > 0 ? m_uvSet->currentText().toStdString()
                                                       : std::string();
    if (m_purpose == MakesObjects) {
        wanted.options.split = Options::Split(m_split->currentIndex());
    } else {
        const bool isAll = m_take->currentIndex() <= 0;
        wanted.part = isAll ? QString() : m_take->currentText();
        wanted.options.split = isAll ? Options::Split::One
                                     : Options::Split(m_take->currentData().toInt());
    }
    if (wanted == m_source)
        return;
    m_source = wanted;
    begin();
}

void MeshPanel::begin()
{
    if (!m_source.isFile())
        return;
    m_progress->setValue(0);
    m_progress->show();
    m_unwrapNow->hide();
    m_findings->clear();
    m_contents->setText(tr("The mesh is being read"));
    m_reader->start(m_source);
    Q_EMIT stateChanged();
}

void MeshPanel::stop()
{
    m_reader->cancel();
}

bool MeshPanel::isUsable() const
{
    const auto &parts = m_reader->reading().parts;
    if (m_reader->isRunning() || !m_reader->problem().isEmpty())
        return false;
    return std::any_of(parts.begin(), parts.end(), [this](const auto &part) {
        return part.mesh && (m_source.part.isEmpty() || text(part.name) == m_source.part);
    });
}

void MeshPanel::finish()
{
    m_progress->hide();
    if (m_reader->problem().isEmpty()) {
        m_isFilling = true;
        fillSets();
        fillTake();
        m_isFilling = false;
    }
    tell();
    Q_EMIT stateChanged();
}

void MeshPanel::fillSets()
{
    m_uvSet->clear();
    m_uvSet->addItem(tr("The first"));
    for (const std::string &name : m_reader->reading().uvSets)
        m_uvSet->addItem(text(name));
    m_uvSet->setCurrentIndex(m_source.options.uvSet.empty()
                                 ? 0
                                 : std::max(0, m_uvSet->findText(text(m_source.options.uvSet))));
    m_uvSet->setEnabled(!m_source.options.unwraps);
}

void MeshPanel::fillTake()
{
    m_take->clear();
    m_take->addItem(tr("Everything"));
    const OssEvMeshFile::Reading &reading = m_reader->reading();
    for (const std::string &name : reading.objects)
        m_take->addItem(text(name), int(Options::Split::Objects));
    for (const std::string &name : reading.materials) {
        if (!name.empty())
            m_take->addItem(text(name), int(Options::Split::Materials));
    }
    int current = 0;
    for (int i = 1; i < m_take->count(); ++i) {
        if (m_take->itemText(i) == m_source.part
            && m_take->itemData(i).toInt() == int(m_source.options.split))
            current = i;
    }
    m_take->setCurrentIndex(current);
}

/// What is in the file, and each fault once with what to do.
void MeshPanel::tell()
{
    const OssEvMeshFile::Reading &reading = m_reader->reading();
    if (!m_reader->problem().isEmpty()) {
        m_contents->clear();
        m_findings->setText(m_reader->problem());
        return;
    }
    std::vector<int> patches;
    QStringList faults;
    bool canUnwrap = false;
    for (const OssEvMeshFile::Part &part : reading.parts) {
        if (part.mesh)
            patches.insert(patches.end(), part.mesh->patches().begin(), part.mesh->patches().end());
        for (const OssEvMeshCheck::Finding &found : part.report) {
            const OssEvMeshCheck::Help &help = OssEvMeshCheck::help(found.kind);
            canUnwrap = canUnwrap || help.unwraps;
            const QString name = part.name.empty() ? QString() : text(part.name) + tr(": ");
            faults.append(QStringLiteral("\u2022 %1%2: %3")
                              .arg(name, text(found.text), QLatin1String(help.advice)));
        }
    }
    std::sort(patches.begin(), patches.end());
    patches.erase(std::unique(patches.begin(), patches.end()), patches.end());
    m_contents->setText(tr("Triangles: %1. Objects: %2. Material slots: %3. UDIM patches: %4.")
                            .arg(QLocale().toString(qulonglong(reading.faces)))
                            .arg(reading.objects.size())
                            .arg(reading.materials.size())
                            .arg(patches.empty() ? tr("none") : patchesInWords(patches)));
    constexpr int most = 6;
    if (faults.size() > most)
        faults = faults.mid(0, most) << tr("and %1 more").arg(faults.size() - most);
    m_findings->setText(faults.join(QLatin1Char('\n')));
    m_unwrapNow->setVisible(canUnwrap && !m_source.options.unwraps);
}

void MeshPanel::unwrap()
{
    m_unwraps->setFocus(); // the button hides, and the next one would be Cancel
    m_unwraps->setChecked(true);
}
