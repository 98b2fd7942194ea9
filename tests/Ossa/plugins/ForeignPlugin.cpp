#include <QCoreApplication>
#include <QObject>
#include <QtPlugin>
#include <QVariant>

/// Made for another program. None of its code may run.
class ForeignPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.example.other/2.0")

public:
    ForeignPlugin() { qApp->setProperty("foreignCodeRan", true); }
};

#include "ForeignPlugin.moc"
