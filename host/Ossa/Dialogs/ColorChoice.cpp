#include "Ossa/Dialogs/ColorChoice.h"

#include "OssInterface/Popups/OssFileDialog.h"

#include <QComboBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>

namespace {

const QString pathKey = QStringLiteral("ColorConfigPath");
/// Stands for the entry that asks for a file.
const QString anyFile = QStringLiteral("?");

QString titleOf(const std::string &space, bool isBuiltIn)
{
    return isBuiltIn && space == OssEvColorSpaces::Light ? ColorChoice::tr("Linear (BT.709)")
                                                         : QString::fromStdString(space);
}

} // namespace

ColorChoice::ColorChoice(QFormLayout *form, QWidget *parent)
    : QObject(parent)
    , m_parent(parent)
    , m_config(new QComboBox(parent))
    , m_working(new QComboBox(parent))
    , m_problem(new QLabel(parent))
    , m_spaces(OssEvColorSpaces::builtIn())
{
    m_config->setToolTip(tr("Where color spaces, displays and views come from"));
    m_working->setToolTip(tr("In which all colors are computed"));
    m_problem->setWordWrap(true);
    m_problem->setObjectName(QStringLiteral("Warning"));
    form->addRow(tr("Color configuration:"), m_config);
    form->addRow(tr("Working space:"), m_working);
    form->addRow(m_problem);
    connect(m_config, qOverload<int>(&QComboBox::activated), this, &ColorChoice::chooseConfig);
    connect(m_working, qOverload<int>(&QComboBox::activated), this, [this] {
        m_settings.working = m_working->currentData().toString();
        look();
    });
    setSettings({});
}

void ColorChoice::setSettings(const OssColorSettings &settings)
{
    m_settings = settings;
    look();
}

void ColorChoice::chooseConfig(int index)
{
    const QString config = m_config->itemData(index).toString();
    if (config == anyFile)
        askForFile();
    else
        setConfig(config);
}

void ColorChoice::askForFile()
{
    const QString path = OssFileDialog::getOpenFileName(
        tr("Color Configuration"), tr("OpenColorIO configurations (*.ocio);;All files (*)"),
        pathKey, m_parent);
    if (path.isEmpty())
        fillConfigs(); // as it was
    else
        setFile(path);
}

void ColorChoice::setFile(const QString &path)
{
    setConfig(path);
}

void ColorChoice::setConfig(const QString &config)
{
    if (config != m_settings.config)
        m_settings.working.clear(); // it is a name of the other one
    m_settings.config = config;
    look();
}

void ColorChoice::look()
{
    const OssResult found = OssColorManagement::find(m_settings, &m_spaces);
    m_isUsable = found.ok();
    m_problem->setText(found.error());
    m_problem->setVisible(!m_isUsable);
    fillConfigs();
    fillSpaces();
    Q_EMIT changed();
}

void ColorChoice::fillConfigs()
{
    m_config->clear();
    QStringList configs{QString()};
    const bool isOther = !m_settings.config.isEmpty()
                         && m_settings.config != OssColorSettings::Environment;
    if (!qEnvironmentVariableIsEmpty(OssEvColorSpaces::Variable)
        || m_settings.config == OssColorSettings::Environment)
        configs.append(OssColorSettings::Environment);
    if (isOther)
        configs.append(m_settings.config);
    for (const QString &config : qAsConst(configs)) {
        const bool isFile = isOther && config == m_settings.config;
        m_config->addItem(
            isFile ? QFileInfo(config).fileName() : OssColorSettings::configTitle(config), config);
        m_config->setItemData(m_config->count() - 1, config, Qt::ToolTipRole);
    }
    m_config->addItem(tr("File..."), anyFile);
    m_config->setCurrentIndex(configs.indexOf(m_settings.config));
}

void ColorChoice::fillSpaces()
{
    m_working->clear();
    OssColorSettings usual;
    usual.config = m_settings.config;
    OssEvColorSpaces::Pointer spaces;
    (void)OssColorManagement::find(usual, &spaces); // told already
    const std::string own = spaces->working();
    for (const std::string &space : spaces->linearNames())
        m_working->addItem(titleOf(space, spaces->isBuiltIn()),
                           space == own ? QString() : QString::fromStdString(space));
    // What is gone is still the project's choice.
    if (m_working->findData(m_settings.working) < 0)
        m_working->addItem(m_settings.working, m_settings.working);
    m_working->setCurrentIndex(m_working->findData(m_settings.working));
}
