#pragma once

#include <QString>
#include <QtPlugin>

/// What the host asks of a plug-in's object. The host reads the plug-in's metadata without running
/// code, takes the object once, calls initialize() once on the GUI thread when all managers exist,
/// and keeps plug-in and object for the life of the process.
class OssPluginInterface
{
public:
    /// False: the plug-in cannot be used; the host says so and goes on without it.
    virtual bool initialize() = 0;
    virtual bool uninitialize() = 0;
    virtual ~OssPluginInterface() = default;
    virtual QString name() = 0;
    virtual QString description() = 0;
    virtual QString authorName() = 0;
    virtual QString legalNotice() = 0;
    virtual int version() = 0;

    /// Lower numbers are initialised first.
    virtual int initializePriority() { return 0; }
};

#define OssPluginInterface_iid "com.halvern.ossa.pluginterface/1.0"
Q_DECLARE_INTERFACE(OssPluginInterface, OssPluginInterface_iid)
