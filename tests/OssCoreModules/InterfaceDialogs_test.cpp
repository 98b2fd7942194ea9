#include "OssCore/OssDebug.h"
#include "OssCore/OssSettings.h"
#include "OssCoreModules/Interface/OssApplication.h"
#include "OssCoreModules/Interface/OssFileDialog.h"
#include "OssCoreModules/Interface/OssMessageBox.h"
#include "OssCoreModules/Interface/OssPopupDialog.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDir>
#include <QInputDialog>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

namespace {

class WithoutUser : public testing::Test
{
protected:
    WithoutUser() { OssApplication::setPopupsAllowed(false); }

    ~WithoutUser() override { OssApplication::setPopupsAllowed(true); }

    static bool logHas(const char *text)
    {
        const auto lines = OssDebugLog::instance()->lines();
        return std::any_of(lines.cbegin(), lines.cend(), [text](const OssDebugLog::Line &line) {
            return line.text.contains(QLatin1String(text));
        });
    }
};

} // namespace

TEST_F(WithoutUser, boxesAnswerSafelyAtOnceAndReachLogAndStderr)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(OssMessageBox::warning(nullptr, QStringLiteral("T"), QStringLiteral("warned %s")),
              QMessageBox::Ok);
    EXPECT_EQ(OssMessageBox::question(nullptr, QStringLiteral("T"), QStringLiteral("asked")),
              QMessageBox::No);
    EXPECT_EQ(
        OssMessageBox::question(nullptr, QStringLiteral("T"), QStringLiteral("saved?"),
                                QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel),
        QMessageBox::Cancel);
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_NE(errors.find("T: warned %s\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("T: asked\n"), std::string::npos);
    EXPECT_TRUE(logHas("T: warned %s"));
}

TEST_F(WithoutUser, checkBoxKeepsItsState)
{
    bool checked = true;
    OssMessageBox::question(nullptr, QStringLiteral("T"), QStringLiteral("asked"),
                            QMessageBox::Yes | QMessageBox::No, QStringLiteral("Again?"), &checked);
    EXPECT_TRUE(checked);
}

TEST_F(WithoutUser, plainQtBoxesDoNotBlockEither)
{
    EXPECT_EQ(QMessageBox::warning(nullptr, QStringLiteral("T"), QStringLiteral("plain box")),
              QMessageBox::Ok);
    EXPECT_TRUE(logHas("plain box"));
    EXPECT_EQ(QMessageBox::question(nullptr, QStringLiteral("T"), QStringLiteral("sure?")),
              QMessageBox::No);
    bool accepted = true;
    QInputDialog::getItem(nullptr, QStringLiteral("Choose"), QStringLiteral("Port:"),
                          {QStringLiteral("A"), QStringLiteral("B")}, 0, false, &accepted);
    EXPECT_FALSE(accepted);
    QMenu menu;
    menu.addAction(QStringLiteral("Entry"));
    EXPECT_EQ(menu.exec(QPoint(0, 0)), nullptr);
    OssPopupDialog popup;
    EXPECT_EQ(popup.exec(), int(QDialog::Rejected));
}

TEST_F(WithoutUser, fileDialogsAnswerEmpty)
{
    const QString key = QStringLiteral("Key");
    const QString filter = QStringLiteral("*.ong");
    EXPECT_TRUE(OssFileDialog::getSaveFileName(QString(), filter, key).isEmpty());
    EXPECT_TRUE(OssFileDialog::getOpenFileNames(QString(), filter, key).isEmpty());
    EXPECT_TRUE(OssFileDialog::getExistingDirectory(QString(), key).isEmpty());
}

TEST(Dialogs, userAnswersAreHandedOn)
{
    QTimer::singleShot(0, [] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        box->checkBox()->setChecked(true);
        box->button(QMessageBox::Yes)->click();
    });
    bool checked = false;
    const auto answer = OssMessageBox::question(
        nullptr, QStringLiteral("T"), QStringLiteral("asked"), QMessageBox::Yes | QMessageBox::No,
        QStringLiteral("Don't show again"), &checked);
    EXPECT_EQ(answer, QMessageBox::Yes);
    EXPECT_TRUE(checked);
}

TEST(Dialogs, suffixIsAppendedOnlyWhenMissing)
{
    const auto with = [](const char *path, const char *filter) {
        return OssFileDialog::withSuffix(QString::fromLatin1(path), QString::fromLatin1(filter));
    };
    EXPECT_EQ(with("/a/wall", "*.ong"), QStringLiteral("/a/wall.ong"));
    EXPECT_EQ(with("/a/wall.ONG", "*.ong"), QStringLiteral("/a/wall.ONG"));
    EXPECT_EQ(with("/a/wall.v2", "Nodes (*.ong)"), QStringLiteral("/a/wall.v2.ong"));
    EXPECT_EQ(with("/a/wall.jpg", "Images (*.png *.jpg)"), QStringLiteral("/a/wall.jpg"));
    EXPECT_EQ(with("", "*.ong"), QString());
}

TEST(Dialogs, rememberedFolderIsHomeWhenItHasGone)
{
    const QString key = QStringLiteral("SomePath");
    {
        const QTemporaryDir folder;
        OssFileDialog::rememberFolder(key, folder.path());
        EXPECT_EQ(OssFileDialog::rememberedFolder(key), folder.path());
    }
    EXPECT_EQ(OssFileDialog::rememberedFolder(key), QDir::homePath());
}
