#include "GraphFixture.h"
#include "OssInterface/Popups/OssApplication.h"

#include <QMetaMethod>

namespace {

/// A view that shows nothing, as between two projects.
class NoNetwork : public GraphFixture
{};

TEST_F(NoNetwork, everyCommandOfAnEmptyViewIsHarmless)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    const bool popups = OssApplication::popupsAllowed();
    OssApplication::setPopupsAllowed(false);
    addAt("Filter/Blur", {0, 0})->setSelected(true);
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    OssShaderNetworkView view(nullptr);
    const QMetaObject &type = OssShaderNetworkView::staticMetaObject;
    int called = 0;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        if (method.methodType() != QMetaMethod::Slot || method.access() != QMetaMethod::Public
            || method.parameterCount() > 0)
            continue;
        SCOPED_TRACE(method.name().constData());
        method.invoke(&view, Qt::DirectConnection);
        EXPECT_EQ(OssUndoManager::instance()->count(), 0);
        ++called;
    }
    EXPECT_GT(called, 30);
    EXPECT_EQ(m_project->stateHash(), before);
    OssApplication::setPopupsAllowed(popups);
}

} // namespace
