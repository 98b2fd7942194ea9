#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssWorkDialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QProgressDialog>
#include <QPushButton>

namespace {

QProgressDialog *shown()
{
    const QWidgetList all = QApplication::topLevelWidgets();
    for (QWidget *widget : all) {
        if (auto *dialog = qobject_cast<QProgressDialog *>(widget))
            return dialog;
    }
    return nullptr;
}

} // namespace

TEST(WorkDialog, isThereForWorkThatBlocksAndItsButtonStopsIt)
{
    using Work = OssStatusManager::Work;
    const bool popups = OssApplication::popupsAllowed();
    const OssWorkDialog dialog;

    const struct
    {
        OssStatusManager::Kind kind;
        bool popups;
        bool shown;
    } cases[] = {{OssStatusManager::Blocking, true, true},
                 {OssStatusManager::Beside, true, false},
                 {OssStatusManager::Blocking, false, false}};

    for (const auto &c : cases) {
        OssApplication::setPopupsAllowed(c.popups);
        Work work(QStringLiteral("Bake"), c.kind);
        work.setPart(QStringLiteral("1001"));
        work.setProgress(1, 4);
        QProgressDialog *bar = shown();
        ASSERT_EQ(bar != nullptr, c.shown) << &c - cases;
        if (!bar)
            continue;
        EXPECT_EQ(bar->windowTitle(), QStringLiteral("Bake"));
        EXPECT_EQ(bar->labelText(), QStringLiteral("1001"));
        EXPECT_EQ(bar->value(), bar->maximum() / 4);
        work.setProgress(0, 0);
        EXPECT_EQ(bar->value(), bar->maximum() / 4) << "of nothing";
        EXPECT_FALSE(work.isCancelled());
        bar->findChild<QPushButton *>()->click();
        EXPECT_TRUE(work.isCancelled());
        work.setProgress(2, 4);
        EXPECT_TRUE(bar->wasCanceled()) << "and stays so";
    }
    EXPECT_EQ(shown(), nullptr);
    OssApplication::setPopupsAllowed(popups);
}
