#include "Ossa/Palettes/ImagesPanel.h"

#include "Ossa/Palettes/DragList.h"
#include "Ossa/Palettes/ImageListModel.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/DialogAnswers.h"
#include "support/ModelFixture.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QDrag>
#include <QIcon>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

namespace {

class Images : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(needNodeTypes());
        OssProjectManager::instance()->newProject(QStringLiteral("Test"));
        for (const char *name : {"rust.1001.png", "rust.1002.png", "wood.png"}) {
            QImage picture(8, 4, QImage::Format_RGB32);
            picture.fill(Qt::red);
            ASSERT_TRUE(picture.save(path(name)));
        }
    }

    void TearDown() override { OssProjectManager::instance()->closeProject(); }

    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Images, comeAsOneStepWithTheirPicturesAndGoAsIds)
{
    ImageListModel model;
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    const QStringList reasons = ImageListModel::add(
        {path("wood.png"), path("rust.1002.png"), path("none.png")});
    ASSERT_EQ(reasons.size(), 1);
    EXPECT_TRUE(reasons.first().contains(QStringLiteral("none.png")));
    ASSERT_EQ(model.rowCount(), 2);
    EXPECT_EQ(OssUndoManager::instance()->count(), 1);
    EXPECT_TRUE(model.index(1).data().toString().contains(QStringLiteral("2 patches")));
    const auto isRed = [&model] {
        const auto icon = model.index(1).data(Qt::DecorationRole).value<QIcon>();
        return icon.pixmap(16).toImage().pixelColor(8, 4) == QColor(Qt::red);
    };
    EXPECT_TRUE(QTest::qWaitFor(isRed));
    EXPECT_FALSE(changed.isEmpty()) << "views are told of pictures that were read";
    const std::unique_ptr<QMimeData> data(model.mimeData({model.index(0), model.index(1)}));
    const auto ids = OssImageUniqueId::imageIdListFromString(
        QString::fromUtf8(data->data(OssImage::MimeType)));
    ASSERT_EQ(ids.size(), 2);
    EXPECT_EQ(OssImageManager::instance()->getImage(ids.last()), model.image(model.index(1)));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(model.rowCount(), 0);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(model.rowCount(), 2);
    OssProjectManager::instance()->closeProject();
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(Images, areDroppedAsFilesAndKnowThatTheyAreSelected)
{
    ImagesPanel panel;
    auto *list = panel.findChild<QListView *>();
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(m_folder.path())});
    ASSERT_TRUE(list->model()->dropMimeData(&files, Qt::CopyAction, -1, -1, {}));
    const QList<OssImage *> images = OssImageManager::instance()->images();
    ASSERT_EQ(images.size(), 2) << "a row of patches is one image";
    list->setCurrentIndex(list->model()->index(1, 0));
    EXPECT_FALSE(images.first()->selected());
    EXPECT_TRUE(images.last()->selected());
}

TEST_F(Images, areOpenedFromADialogAndWhatIsNoneIsNamed)
{
    QFile notes(path("notes.txt"));
    ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
    notes.write("no picture");
    notes.close();

    const struct
    {
        const char *file;
        int images;
        int boxes;
    } cases[] = {{"", 0, 0}, {"notes.txt", 0, 1}, {"wood.png", 1, 0}};

    ImagesPanel panel;
    const ExpectedLog unread("notes.txt", ExpectedLog::Possible);
    for (const auto &c : cases) {
        const DialogAnswers answers(*c.file ? path(c.file) : QString(), QMessageBox::Ok);
        panel.findChild<QPushButton *>()->click();
        EXPECT_EQ(answers.questions, 1) << c.file;
        EXPECT_EQ(answers.boxes.size(), c.boxes) << c.file;
        EXPECT_EQ(panel.findChild<QListView *>()->model()->rowCount(), c.images) << c.file;
    }
}

TEST_F(Images, onlyPicturesCanBeDropped)
{
    QFile notes(path("notes.txt"));
    ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
    const ImageListModel model;
    for (const char *name : {"notes.txt", "wood.png"}) {
        QMimeData files;
        files.setUrls({QUrl::fromLocalFile(path(name))});
        EXPECT_EQ(model.canDropMimeData(&files, Qt::CopyAction, -1, -1, {}),
                  QLatin1String(name) == QLatin1String("wood.png"));
    }
}

TEST_F(Images, offerTheirActionsUnderOneMenuEach)
{
    ImageListModel::add({path("wood.png")});
    ImagesPanel panel;
    panel.resize(300, 300);
    panel.show();
    auto *list = panel.findChild<QListView *>();
    QAction first(QStringLiteral("First"));
    QAction second(QStringLiteral("Second"));
    QAction third(QStringLiteral("Third"));
    auto gone = std::make_unique<QAction>(QStringLiteral("Gone"));
    auto *images = OssImageManager::instance();
    images->registerGlobalContextMenuAction(&first, QStringLiteral("Use"), {});
    images->registerGlobalContextMenuAction(gone.get(), QStringLiteral("Use"), {});
    images->registerGlobalContextMenuAction(&second, QStringLiteral("Other"), {});
    images->registerGlobalContextMenuAction(&third, QStringLiteral("Use"), {});
    gone.reset();
    QStringList offered;
    const auto open = [&](const QPoint &place) {
        offered.clear();
        QTimer::singleShot(0, [&offered] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (!menu)
                return;
            const QList<QAction *> entries = menu->actions();
            for (const QAction *entry : entries) {
                QStringList names;
                const QList<QAction *> actions = entry->menu()->actions();
                for (const QAction *action : actions)
                    names.append(action->text());
                offered.append(entry->text() + QLatin1Char(':') + names.join(QLatin1Char(',')));
            }
            menu->close();
        });
        Q_EMIT list->customContextMenuRequested(place);
        QCoreApplication::processEvents();
    };
    open(list->visualRect(list->model()->index(0, 0)).center());
    const QStringList wanted{QStringLiteral("Use:First,Third"), QStringLiteral("Other:Second")};
    for (const QString &menu : wanted)
        EXPECT_TRUE(offered.contains(menu)) << qPrintable(offered.join(QLatin1Char('\n')));
    open(list->viewport()->rect().bottomRight() - QPoint(3, 3));
    EXPECT_TRUE(offered.isEmpty()) << "there is no image";
}

TEST_F(Images, areDraggedAsIdsWithTheirPictures)
{
    struct List final : DragList
    {
        using DragList::startDrag;
    };

    ImageListModel::add({path("wood.png")});
    QStandardItemModel plain;
    plain.appendRow(new QStandardItem(QStringLiteral("Blur")));
    ImageListModel images;

    const struct
    {
        QAbstractItemModel *model;
        bool selected;
        bool picture;
    } cases[] = {{&images, false, false}, {&images, true, true}, {&plain, true, false}};

    for (const auto &c : cases) {
        List list;
        list.setModel(c.model);
        list.show();
        if (c.selected)
            list.selectionModel()->select(c.model->index(0, 0), QItemSelectionModel::Select);
        list.startDrag(Qt::CopyAction);
        const auto *drag = list.findChild<QDrag *>(); // there until events are handled
        ASSERT_EQ(drag != nullptr, c.selected) << &c - cases;
        if (!drag)
            continue;
        EXPECT_EQ(!drag->pixmap().isNull(), c.picture);
        EXPECT_FALSE(drag->mimeData()->formats().isEmpty());
    }
}
