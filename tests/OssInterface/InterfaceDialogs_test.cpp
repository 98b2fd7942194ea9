#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssInterface/Popups/OssPopupDialog.h"
#include "OssInterface/Popups/OssWorkDialog.h"
#include "support/DialogAnswers.h"
#include "support/ExpectedLog.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QProgressDialog>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

namespace {

const QString T = text("T");

class WithoutUser : public testing::Test
{
protected:
    WithoutUser() { OssApplication::setPopupsAllowed(false); }

    ~WithoutUser() override { OssApplication::setPopupsAllowed(true); }
};

QMessageBox::StandardButton askToSave()
{
    return OssMessageBox::question(nullptr, T, text("saved?"),
                                   QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                   QMessageBox::Discard);
}

} // namespace

TEST_F(WithoutUser, boxesAnswerSafelyAtOnceAndReachLogAndStderr)
{
    const ExpectedLog expected[] = {ExpectedLog("T: warned %s"), ExpectedLog("T: asked"),
                                    ExpectedLog("T: saved?")};
    bool checked = true;
    testing::internal::CaptureStderr();
    EXPECT_EQ(OssMessageBox::warning(nullptr, T, text("warned %s")), QMessageBox::Ok);
    EXPECT_EQ(OssMessageBox::question(nullptr, T, text("asked"), QMessageBox::Yes | QMessageBox::No,
                                      text("Again?"), &checked),
              QMessageBox::No);
    EXPECT_EQ(askToSave(), QMessageBox::Cancel);
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_NE(errors.find("T: warned %s\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("T: asked\n"), std::string::npos);
    EXPECT_TRUE(checked) << "nobody unchecked it";
}

TEST_F(WithoutUser, plainQtBoxesDoNotBlockEither)
{
    const ExpectedLog expected[] = {ExpectedLog("plain box"), ExpectedLog("T: sure?"),
                                    ExpectedLog("Choose: Port:")};
    EXPECT_EQ(QMessageBox::warning(nullptr, T, text("plain box")), QMessageBox::Ok);
    EXPECT_EQ(QMessageBox::question(nullptr, T, text("sure?")), QMessageBox::No);
    bool accepted = true;
    QInputDialog::getItem(nullptr, text("Choose"), text("Port:"), texts({"A", "B"}), 0, false,
                          &accepted);
    EXPECT_FALSE(accepted);
    QMenu menu;
    menu.addAction(text("Entry"));
    EXPECT_EQ(menu.exec(QPoint(0, 0)), nullptr);
    OssPopupDialog popup;
    EXPECT_EQ(popup.exec(), int(QDialog::Rejected));
}

TEST_F(WithoutUser, fileDialogsAnswerEmpty)
{
    const QString key = text("Key");
    EXPECT_TRUE(OssFileDialog::getSaveFileName(QString(), text("*.ong"), key).isEmpty());
    EXPECT_TRUE(OssFileDialog::getOpenFileNames(QString(), text("*.ong"), key).isEmpty());
    EXPECT_TRUE(OssFileDialog::getExistingDirectory(QString(), key).isEmpty());
}

TEST(Dialogs, userAnswersAreHandedOn)
{
    whenOpen<QMessageBox>([](QMessageBox *box) {
        box->checkBox()->setChecked(true);
        box->button(QMessageBox::Yes)->click();
    });
    bool checked = false;
    EXPECT_EQ(OssMessageBox::question(nullptr, T, text("asked"), QMessageBox::Yes | QMessageBox::No,
                                      text("Don't show again"), &checked),
              QMessageBox::Yes);
    EXPECT_TRUE(checked);
}

TEST(Dialogs, suffixIsAppendedOnlyWhenMissing)
{
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {"/a/wall", "*.ong", "/a/wall.ong"},
        {"/a/wall.ONG", "*.ong", "/a/wall.ONG"},
        {"/a/wall.v2", "Nodes (*.ong)", "/a/wall.v2.ong"},
        {"/a/wall.jpg", "Images (*.png *.jpg)", "/a/wall.jpg"},
        {"", "*.ong", ""},
    };
    for (const auto &[path, filter, wanted] : cases)
        EXPECT_EQ(OssFileDialog::withSuffix(text(path), text(filter)), text(wanted));
}

TEST(Dialogs, rememberedFolderIsHomeWhenItHasGone)
{
    const QString key = text("SomePath");
    {
        const QTemporaryDir folder;
        OssFileDialog::rememberFolder(key, folder.path());
        EXPECT_EQ(OssFileDialog::rememberedFolder(key), folder.path());
    }
    EXPECT_EQ(OssFileDialog::rememberedFolder(key), QDir::homePath());
}

TEST(Dialogs, aFolderWithTheSuffixIsReplacedAfterAskingAndNotEntered)
{
    const QString key = text("FolderPath");
    const QTemporaryDir folder;
    const QString wall = folder.filePath(text("wall.ossa"));
    ASSERT_TRUE(QDir().mkpath(wall));
    OssFileDialog::rememberFolder(key, folder.path());
    const std::tuple<const char *, QMessageBox::StandardButton, QString, int> cases[] = {
        {"wall.ossa", QMessageBox::Yes, wall, 1},
        {"wall", QMessageBox::Yes, wall, 1},
        {"wall.ossa", QMessageBox::No, {}, 1},
        {"floor", QMessageBox::No, folder.filePath(text("floor.ossa")), 0},
    };
    for (const auto &one : cases) {
        int questions = 0;
        whenOpen<QFileDialog>([&](QFileDialog *dialog) {
            Q_EMIT dialog->directoryEntered(wall);
            EXPECT_EQ(dialog->directory().path(), folder.path());
            auto *edit = dialog->findChild<QLineEdit *>(text("fileNameEdit"));
            EXPECT_EQ(edit->text(), text("wall.ossa"));
            QApplication::setActiveWindow(dialog);
            edit->setFocus(); // without it Qt takes what is selected for the name
            edit->setText(text(std::get<0>(one)));
            // Where nothing is asked it goes with the dialog.
            QTimer::singleShot(0, dialog, [&] {
                if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                    ++questions;
                    box->button(std::get<1>(one))->click();
                }
            });
            QMetaObject::invokeMethod(dialog, "accept");
            if (dialog->isVisible())
                dialog->reject();
        });
        EXPECT_EQ(OssFileDialog::getSaveFileName(QString(), text("Projects (*.ossa)"), key),
                  std::get<2>(one));
        EXPECT_EQ(questions, std::get<3>(one)) << std::get<0>(one);
    }
}

TEST(Dialogs, savingBeginsWithAName)
{
    whenOpen<QFileDialog>([&](QFileDialog *dialog) {
        EXPECT_EQ(dialog->findChild<QLineEdit *>(text("fileNameEdit"))->text(),
                  text("a - b & c.v2.ossa"));
        dialog->reject();
    });
    OssFileDialog::getSaveFileName(QString(), text("Projects (*.ossa)"), text("Named"), nullptr,
                                   text("..a :/ b & c.v2"));
}

TEST(Dialogs, boxesLookLikeWhatTheySayAndReturnTakesWhatIsMeant)
{
    QImage icon;
    const auto pressNext = [&icon](Qt::Key key) {
        whenOpen<QMessageBox>([&icon, key](QMessageBox *box) {
            icon = box->iconPixmap().toImage();
            QPushButton *meant = box->defaultButton();
            QTest::keyClick(meant ? static_cast<QWidget *>(meant) : box, key);
            if (box->isVisible())
                box->close();
        });
    };
    pressNext(Qt::Key_Return);
    EXPECT_EQ(askToSave(), QMessageBox::Discard);
    pressNext(Qt::Key_Escape);
    EXPECT_EQ(askToSave(), QMessageBox::Cancel);
    const QImage question = icon;
    pressNext(Qt::Key_Escape);
    OssMessageBox::warning(nullptr, T, T);
    const QImage warning = icon;
    pressNext(Qt::Key_Escape);
    OssMessageBox::information(nullptr, T, T);
    const QImage information = icon;
    EXPECT_NE(warning, information);
    EXPECT_NE(information, question);
    const auto isYellow = [](const QImage &image) {
        const QColor edge = image.pixelColor(image.width() / 2, image.height() * 34 / 40);
        return edge.alpha() > 200 && edge.red() > edge.blue() + 60;
    };
    EXPECT_TRUE(isYellow(warning)) << "the sill of the triangle";
    EXPECT_FALSE(isYellow(information) || isYellow(question));
}

TEST(Dialogs, popupsStayOnTheScreen)
{
    const QRect room = QApplication::primaryScreen()->availableGeometry();
    const std::tuple<QPoint, QSize, QPoint> cases[] = {
        {room.topLeft() + QPoint(50, 60), {200, 100}, room.topLeft() + QPoint(50, 60)},
        {room.bottomRight() - QPoint(10, 10), {200, 100}, room.bottomRight() - QPoint(199, 99)},
        {room.topLeft(), {200, 100}, room.topLeft()},
        {room.center(), room.size() + QSize(100, 100), room.topLeft()},
    };
    for (const auto &[at, size, wanted] : cases) {
        OssPopupDialog popup;
        popup.resize(size);
        popup.move(at);
        popup.show();
        EXPECT_EQ(popup.pos(), wanted) << at.x() << " " << at.y();
    }
    OssPopupDialog beyond;
    beyond.move(room.bottomRight() + QPoint(5000, 5000));
    beyond.show();
    EXPECT_TRUE(beyond.isVisible()) << "on no screen";
}

TEST(WorkDialog, isThereForWorkThatBlocksAndItsButtonStopsIt)
{
    const auto shown = [] {
        QProgressDialog *found = nullptr;
        const QWidgetList all = QApplication::topLevelWidgets();
        for (QWidget *widget : all)
            found = qobject_cast<QProgressDialog *>(widget)
                        ? qobject_cast<QProgressDialog *>(widget)
                        : found;
        return found;
    };
    const bool popups = OssApplication::popupsAllowed();
    const OssWorkDialog dialog;
    const std::tuple<OssStatusManager::Kind, bool, bool> cases[] = {
        {OssStatusManager::Blocking, true, true},
        {OssStatusManager::Beside, true, false},
        {OssStatusManager::Blocking, false, false},
    };
    for (const auto &[kind, allowed, wanted] : cases) {
        OssApplication::setPopupsAllowed(allowed);
        OssStatusManager::Work work(text("Bake"), kind);
        work.setPart(text("1001"));
        work.setProgress(1, 4);
        QProgressDialog *bar = shown();
        ASSERT_EQ(bar != nullptr, wanted) << kind << allowed;
        if (!bar)
            continue;
        EXPECT_EQ(bar->windowTitle(), text("Bake"));
        EXPECT_EQ(bar->labelText(), text("1001"));
        EXPECT_EQ(bar->value(), bar->maximum() / 4);
        work.setProgress(0, 0);
        EXPECT_EQ(bar->value(), bar->maximum() / 4) << "of nothing";
        EXPECT_FALSE(work.isCancelled());
        bar->findChild<QPushButton *>()->click();
        EXPECT_TRUE(work.isCancelled());
        work.setProgress(2, 4);
        EXPECT_TRUE(bar->wasCanceled()) << "and stays so";
        EXPECT_TRUE(bar->isVisible()) << "until the work has ended";
        bar->close();
        EXPECT_TRUE(bar->isVisible());
    }
    EXPECT_EQ(shown(), nullptr);
    OssApplication::setPopupsAllowed(popups);
}

TEST(Dialogs, aNameTypedWholeBeforeTheSuffixHasItOnceAndFilesAreListedFromAToZ)
{
    const QTemporaryDir folder;
    for (const char *name : {"b", "a", "c"})
        ASSERT_TRUE(QDir(folder.path()).mkdir(text(name)));
    whenOpen<QFileDialog>([&](QFileDialog *dialog) {
        EXPECT_EQ(dialog->directory().path(), folder.path());
        const auto *list = dialog->findChild<QTreeView *>(text("treeView"));
        const auto names = [list] {
            QStringList found;
            for (int row = 0; row < list->model()->rowCount(list->rootIndex()); ++row)
                found.append(list->model()->index(row, 0, list->rootIndex()).data().toString());
            return found;
        };
        // They are read, and then sorted, on a thread.
        const QStringList wanted{text("a"), text("b"), text("c")};
        EXPECT_TRUE(QTest::qWaitFor([&] { return names() == wanted; }))
            << qPrintable(names().join(QLatin1Char(' ')));
        dialog->findChild<QLineEdit *>(text("fileNameEdit"))->setText(text("saved.ossa.ossa"));
        static_cast<QDialog *>(dialog)->accept();
    });
    EXPECT_EQ(OssFileDialog::getSaveFileName(QString(), text("Projects (*.ossa)"), text("Typed"),
                                             nullptr, text("wall"), folder.path()),
              folder.filePath(text("saved.ossa")));
}
