#pragma once

#include "OssCore/OssClassFactoryManager.h"
#include "OssCore/OssObjectReferenceManager.h"
#include "OssCore/OssPreferenceManager.h"
#include "OssCore/OssStatusManager.h"
#include "OssCore/OssUndoManager.h"

/// The services of this library, in the order in which they need each other.
class OSSCORE_EXPORT OssCoreServices
{
public:
    OssCoreServices();
    ~OssCoreServices();
    OssCoreServices(const OssCoreServices &) = delete;
    OssCoreServices &operator=(const OssCoreServices &) = delete;

private:
    OssObjectReferenceManager m_references;
    OssClassFactoryManager m_factories;
    OssPreferenceManager m_preferences;
    OssStatusManager m_status;
    OssUndoManager m_undo;
};
