#include <OssCore/Program/OssPluginInterface.h>
#include <OssInterface/Actions/OssActionTreeManager.h>
#include <OssInterface/Palettes/OssPalette.h>
#include <OssInterface/Palettes/OssPaletteManager.h>

#include <QAction>
#include <QLabel>

/// What a plug-in needs at least, and what most want: a command in the Ossa menu, and a palette.
class SamplePlugin
    : public QObject
    , public OssPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OssPluginInterface_iid)
    Q_INTERFACES(OssPluginInterface)

public:
    bool initialize() override
    {
        auto *action = new QAction(tr("Greet"), this);
        connect(action, &QAction::triggered, this, [this] { m_label->setText(tr("Greeted")); });
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/Sample"), action);

        auto *palette = new OssPalette;
        palette->setObjectName(tr("Sample"));
        palette->setContextHelpKey(QStringLiteral("sample_palette"));
        m_label = new QLabel(tr("A palette of a plug-in"), palette);
        palette->setBodyWidget(m_label);
        return OssPaletteManager::instance()->registerPalette(palette, true, {});
    }

    bool uninitialize() override { return true; }

    QString name() override { return tr("Sample"); }

    QString description() override { return tr("Shows how a plug-in is made"); }

    QString authorName() override { return QStringLiteral("The Ossa developers"); }

    QString legalNotice() override { return QStringLiteral("BSD-3-Clause"); }

    int version() override { return 1; }

private:
    QLabel *m_label = nullptr; ///< lives with the palette
};

#include "SamplePlugin.moc"
