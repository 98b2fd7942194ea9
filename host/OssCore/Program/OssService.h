#pragma once

#include "OssCore/OssCore_export.h"

#include <QtGlobal>

/// Base of a class of which the process has one object, reached by T::instance(). Nobody makes it
/// by asking: it is a member of its library's services (OssCoreServices and those above), which
/// the start of the program makes and takes down in order. Before and afterwards there is none,
/// and instance() is null.
template <class T>
class OSSCORE_EXPORT OssService
{
public:
    static T *instance()
    {
        Q_ASSERT_X(s_object, "OssService",
                   "there is no such service before the start or after the end");
        return s_object;
    }

    OssService(const OssService &) = delete;
    OssService &operator=(const OssService &) = delete;

protected:
    OssService()
    {
        Q_ASSERT_X(!s_object, "OssService", "there is one already");
        s_object = static_cast<T *>(this);
    }

    ~OssService() { s_object = nullptr; }

private:
    inline static T *s_object = nullptr;
};
