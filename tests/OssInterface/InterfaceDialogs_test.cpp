#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssInterface/Popups/OssPopupDialog.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

class WithoutUser : public testing::Test
{
protected:
    WithoutUser() { OssApplication::setPopupsAllowed(false); }

    ~WithoutUser() override { OssApplication::setPopupsAllowed(true); }

    static bool logHas(const char *text)
    {
        ExpectedLog::takePast(QString::fromUtf8(text));
        const auto lines = OssDebugLog::instance()->lines();
        return std::any_of(lines.cbegin(), lines.cend(), [text](const OssDebugLog::Line &line) {
            return line.text.contains(QLatin1String(text));
        });
    }
};

} // namespace

TEST_F(WithoutUser, boxesAnswerSafelyAtOnceAndReachLogAndStderr)
{
    const ExpectedLog expected[] = {ExpectedLog("T: asked"), ExpectedLog("T: saved?")};
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
    const ExpectedLog expected("T: asked");
    bool checked = true;
    OssMessageBox::question(nullptr, QStringLiteral("T"), QStringLiteral("asked"),
                            QMessageBox::Yes | QMessageBox::No, QStringLiteral("Again?"), &checked);
    EXPECT_TRUE(checked);
}

TEST_F(WithoutUser, plainQtBoxesDoNotBlockEither)
{
    const ExpectedLog expected[] = {ExpectedLog("T: sure?"), ExpectedLog("Choose: Port:")};
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

TEST(Dialogs, aFolderWithTheSuffixIsReplacedAfterAskingAndNotEntered)
{
    const QString key = QStringLiteral("FolderPath");
    const QTemporaryDir folder;
    const QString wall = folder.filePath(QStringLiteral("wall.ossa"));
    ASSERT_TRUE(QDir().mkpath(wall));
    OssFileDialog::rememberFolder(key, folder.path());
    const auto save = [&](const QString &name, QMessageBox::StandardButton answer) {
        int questions = 0;
        QTimer::singleShot(0, [&] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            Q_EMIT dialog->directoryEntered(wall);
            EXPECT_EQ(dialog->directory().path(), folder.path());
            auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
            EXPECT_EQ(edit->text(), QStringLiteral("wall.ossa"));
            QApplication::setActiveWindow(dialog);
            edit->setFocus(); // without it Qt takes what is selected for the name
            edit->setText(name);
            // Where nothing is asked it goes with the dialog.
            QTimer::singleShot(0, dialog, [&] {
                if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                    ++questions;
                    box->button(answer)->click();
                }
            });
            QMetaObject::invokeMethod(dialog, "accept");
            if (dialog->isVisible())
                dialog->reject();
        });
        const QString path = OssFileDialog::getSaveFileName(
            QString(), QStringLiteral("Projects (*.ossa)"), key);
        return std::make_pair(path, questions);
    };
    const QString name = QStringLiteral("wall.ossa");
    EXPECT_EQ(save(name, QMessageBox::Yes), std::make_pair(wall, 1));
    EXPECT_EQ(save(QStringLiteral("wall"), QMessageBox::Yes), std::make_pair(wall, 1));
    EXPECT_EQ(save(name, QMessageBox::No), std::make_pair(QString(), 1));
    EXPECT_EQ(save(QStringLiteral("floor"), QMessageBox::No),
              std::make_pair(folder.filePath(QStringLiteral("floor.ossa")), 0));
}

TEST(Dialogs, boxesLookLikeWhatTheySayAndReturnTakesWhatIsMeant)
{
    struct Seen
    {
        QImage icon;
        QMessageBox::StandardButton answer = QMessageBox::NoButton;
    };

    const auto ask = [](const std::function<QMessageBox::StandardButton()> &box, Qt::Key key) {
        Seen seen;

        QTimer::singleShot(0, [&] {
            auto *open = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            seen.icon = open->iconPixmap().toImage();

            QTest::keyClick(
                open->defaultButton() ? static_cast<QWidget *>(open->defaultButton()) : open, key);
            if (open->isVisible())
                open->close();
        });
        seen.answer = box();
        return seen;
    };
    const QString text = QStringLiteral("T");
    const auto warning = [&] {
        return OssMessageBox::warning(nullptr, text, text);
    };
    const auto information = [&] {
        return OssMessageBox::information(nullptr, text, text);
    };
    const auto question = [&] {
        return OssMessageBox::question(
            nullptr, text, text, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
            QMessageBox::Discard);
    };
    EXPECT_EQ(ask(question, Qt::Key_Return).answer, QMessageBox::Discard);
    EXPECT_EQ(ask(question, Qt::Key_Escape).answer, QMessageBox::Cancel);
    const QImage icons[] = {ask(warning, Qt::Key_Escape).icon,
                            ask(information, Qt::Key_Escape).icon,
                            ask(question, Qt::Key_Escape).icon};
    EXPECT_NE(icons[0], icons[1]);
    EXPECT_NE(icons[1], icons[2]);
    const auto isYellow = [](const QImage &icon) {
        const QColor edge = icon.pixelColor(icon.width() / 2, icon.height() * 34 / 40);
        return edge.alpha() > 200 && edge.red() > edge.blue() + 60;
    };
    EXPECT_TRUE(isYellow(icons[0])) << "the sill of the triangle";
    EXPECT_FALSE(isYellow(icons[1]) || isYellow(icons[2]));
}

TEST(Dialogs, popupsStayOnTheScreen)
{
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();

    const struct
    {
        QPoint at;
        QPoint place;
    } cases[] = {
        {room.topLeft() + QPoint(50, 60), room.topLeft() + QPoint(50, 60)},
        {room.bottomRight() - QPoint(10, 10), room.bottomRight() - QPoint(199, 99)},
        {room.topLeft(), room.topLeft()},
    };

    for (const auto &c : cases) {
        OssPopupDialog popup;
        popup.resize(200, 100);
        popup.move(c.at);
        popup.show();
        EXPECT_EQ(popup.pos(), c.place) << &c - cases;
    }
    OssPopupDialog large;
    large.resize(room.size() + QSize(100, 100));
    large.move(room.center());
    large.show();
    EXPECT_EQ(large.pos(), room.topLeft());
    OssPopupDialog beyond;
    beyond.move(room.bottomRight() + QPoint(5000, 5000));
    beyond.show();
    EXPECT_TRUE(beyond.isVisible()) << "on no screen";
}
