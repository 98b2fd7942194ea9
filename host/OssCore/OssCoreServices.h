#pragma once

#include "OssCore/Documents/OssObjectReferenceManager.h"
#include "OssCore/Program/OssClassFactoryManager.h"
#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"

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
