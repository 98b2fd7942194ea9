#include "support/ExpectedLog.h"

#include "OssCore/Program/OssDebug.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <QtGlobal>

TEST(ExpectedLog, failsOnlyWhereANeededLineDoesNotCome)
{
    EXPECT_NONFATAL_FAILURE({ const ExpectedLog none("of this"); }, "of this");
    const ExpectedLog perhaps("of this", ExpectedLog::Possible);
    const ExpectedLog ours("from the log");
    const ExpectedLog theirs("Qt: from Qt");
    OssDebug("Here", __LINE__, "[ !! ] a line from the log");
    OssDebug("Here", __LINE__, "[ -- ] no warning");
    qWarning("from Qt");
}

TEST(ExpectedLog, takesWhatATestLookedForAfterwards)
{
    OssDebug("Here", __LINE__, "[ !! ] looked for");
    ExpectedLog::takePast(QStringLiteral("looked for"));
}
