#include "Ossa/Common/Theme.h"
#include "Ossa/Palettes/DragList.h"
#include "Ossa/Palettes/HistoryPanel.h"
#include "Ossa/Palettes/ImageListModel.h"
#include "Ossa/Palettes/ImagesPanel.h"
#include "Ossa/Palettes/LogModel.h"
#include "Ossa/Palettes/LogPanel.h"
#include "Ossa/Palettes/ProblemsPanel.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "support/DialogAnswers.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/OssaFiles.h"
#include "support/Text.h"

#include <QAction>
#include <QClipboard>
#include <QDrag>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <thread>

// The panels of images, of the history, of the log and of problems.

namespace {

QStringList column(const QAbstractItemModel *model)
{
    QStringList shown;
    for (int row = 0; row < model->rowCount(); ++row)
        shown.append(model->index(row, 0).data().toString());
    return shown;
}

/// Three pictures in a folder, two of them patches of one image, and notes.
class Images : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        QImage picture(8, 4, QImage::Format_RGB32);
        picture.fill(Qt::red);
        for (const char *name : {"rust.1001.png", "rust.1002.png", "wood.png"})
            ASSERT_TRUE(picture.save(path(name)));
        writeFile(path("notes.txt"), "no picture");
        OssUndoManager::instance()->clear();
    }

    QString path(const char *name) const { return m_folder.filePath(text(name)); }

    static std::unique_ptr<QMimeData> filesAt(const QString &path)
    {
        auto files = std::make_unique<QMimeData>();
        files->setUrls({QUrl::fromLocalFile(path)});
        return files;
    }

    QTemporaryDir m_folder;
};

/// The panel over a history of steps that change a number.
class History : public testing::Test
{
protected:
    History()
    {
        OssProjectManager::instance()->newProject(text("Test"));
        manager()->clear();
    }

    ~History() override { OssProjectManager::instance()->closeProject(); }

    static OssUndoManager *manager() { return OssUndoManager::instance(); }

    void step(const char *title, int to)
    {
        manager()->record(
            text(title), [this, to] { value = to - 1; }, [this, to] { value = to; });
        value = to;
    }

    int value = 0;
    HistoryPanel panel;
    QListView *list = panel.findChild<QListView *>();
};

class Log : public testing::Test
{
protected:
    Log()
    {
        OssDebugLog::instance()->clear();
        panel = std::make_unique<LogPanel>();
        view = panel->findChild<QListView *>();
    }

    int rows() const { return view->model()->rowCount(); }

    bool waitForRows(int count) const
    {
        return QTest::qWaitFor([this, count] { return rows() == count; }, 2000);
    }

    QString first() const { return view->model()->index(0, 0).data().toString(); }

    static void write(int count)
    {
        for (int i = 0; i < count; ++i)
            OssDebug(__FILE__, __LINE__, "line %d", i);
    }

    std::unique_ptr<LogPanel> panel;
    QListView *view = nullptr;
};

/// The panel over an open project.
class ProblemsList : public ModelFixture
{};

TEST_F(ProblemsList, listsWhatIsWrongAndLeadsThere)
{
    ProblemsPanel panel;
    const auto *list = panel.findChild<QTreeWidget *>();
    EXPECT_TRUE(list->isHidden());
    OssSnBaseNode *blur = add("Filter/Blur", "Salt & Pepper");
    OssProblems::instance()->report(blur, OssProblems::Evaluation, text("one\ntwo"));
    ASSERT_EQ(list->topLevelItemCount(), 1);
    EXPECT_FALSE(list->isHidden());
    EXPECT_EQ(list->topLevelItem(0)->text(0), text("Salt & Pepper"));
    EXPECT_EQ(list->topLevelItem(0)->text(1), text("one; two"));
    auto *networks = OssShaderNetworkManager::instance();
    m_project->addEntity(text("Other"));
    networks->setCurrentShaderNetwork(m_project->shadingGroups().last()->network());
    QSignalSpy focus(networks, &OssShaderNetworkManager::focusOnNodeRequest);
    QSignalSpy goes(blur, &OssSnBaseNode::gotoNode);
    Q_EMIT const_cast<QTreeWidget *>(list)->itemActivated(list->topLevelItem(0), 1);
    EXPECT_EQ(focus.size(), 1);
    EXPECT_EQ(goes.size(), 1);
    EXPECT_EQ(networks->currentShaderNetwork(), m_network);
    OssProblems::instance()->report(blur, OssProblems::Evaluation, {});
    EXPECT_TRUE(list->isHidden());
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Around"));
    OssSnBaseNode *inner = group->groupNetwork()->createNode(text("Filter/Blur"));
    OssProblems::instance()->report(inner, OssProblems::Evaluation, text("one"));
    ASSERT_EQ(list->topLevelItemCount(), 1);
    EXPECT_EQ(list->topLevelItem(0)->text(0), text("Around/Blur"));
}

} // namespace

TEST_F(Images, comeAsOneStepWithTheirPicturesAndGoAsIds)
{
    ImageListModel model;
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    const QStringList reasons = ImageListModel::add(
        {path("wood.png"), path("rust.1002.png"), path("none.png")});
    ASSERT_EQ(reasons.size(), 1);
    EXPECT_TRUE(reasons.first().contains(text("none.png")));
    ASSERT_EQ(model.rowCount(), 2);
    EXPECT_EQ(undoCount(), 1);
    EXPECT_TRUE(column(&model).at(1).contains(text("2 patches")));
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

TEST_F(Images, areDroppedAsFilesThatArePicturesAndKnowThatTheyAreSelected)
{
    ImagesPanel panel;
    auto *list = panel.findChild<QListView *>();
    const auto canDrop = [&](const char *name) {
        return list->model()->canDropMimeData(filesAt(path(name)).get(), Qt::CopyAction, -1, -1,
                                              {});
    };
    EXPECT_TRUE(canDrop("wood.png"));
    EXPECT_FALSE(canDrop("notes.txt"));
    ASSERT_TRUE(
        list->model()->dropMimeData(filesAt(m_folder.path()).get(), Qt::CopyAction, -1, -1, {}));
    const QList<OssImage *> images = OssImageManager::instance()->images();
    ASSERT_EQ(images.size(), 2) << "a row of patches is one image";
    list->setCurrentIndex(list->model()->index(1, 0));
    EXPECT_FALSE(images.first()->selected());
    EXPECT_TRUE(images.last()->selected());
}

TEST_F(Images, areOpenedFromADialogAndWhatIsNoneIsNamed)
{
    ImagesPanel panel;
    const ExpectedLog unread("notes.txt", ExpectedLog::Possible);
    const std::tuple<const char *, int, int> cases[] = {
        {"", 0, 0}, {"notes.txt", 0, 1}, {"wood.png", 1, 0}};
    for (const auto &[file, images, boxes] : cases) {
        const DialogAnswers answers(*file ? path(file) : QString(), QMessageBox::Ok);
        panel.findChild<QPushButton *>()->click();
        EXPECT_EQ(answers.questions, 1) << file;
        EXPECT_EQ(answers.boxes.size(), boxes) << file;
        EXPECT_EQ(panel.findChild<QListView *>()->model()->rowCount(), images) << file;
    }
}

TEST_F(Images, offerTheirActionsUnderOneMenuEach)
{
    ImageListModel::add({path("wood.png")});
    ImagesPanel panel;
    panel.resize(300, 300);
    panel.show();
    auto *list = panel.findChild<QListView *>();
    QAction first(text("First"));
    QAction second(text("Second"));
    QAction third(text("Third"));
    auto gone = std::make_unique<QAction>(text("Gone"));
    const std::pair<QAction *, const char *> registered[] = {
        {&first, "Use"}, {gone.get(), "Use"}, {&second, "Other"}, {&third, "Use"}};
    for (const auto &[action, menu] : registered)
        OssImageManager::instance()->registerGlobalContextMenuAction(action, text(menu), {});
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
    for (const char *menu : {"Use:First,Third", "Other:Second"})
        EXPECT_TRUE(offered.contains(text(menu))) << qPrintable(offered.join(QLatin1Char('\n')));
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
    plain.appendRow(new QStandardItem(text("Blur")));
    ImageListModel images;
    const std::tuple<QAbstractItemModel *, bool, bool> cases[] = {
        {&images, false, false}, {&images, true, true}, {&plain, true, false}};
    for (const auto &[model, isSelected, hasPicture] : cases) {
        List list;
        list.setModel(model);
        list.show();
        if (isSelected)
            list.selectionModel()->select(model->index(0, 0), QItemSelectionModel::Select);
        list.startDrag(Qt::CopyAction);
        const auto *drag = list.findChild<QDrag *>(); // there until events are handled
        ASSERT_EQ(drag != nullptr, isSelected);
        if (!drag)
            continue;
        EXPECT_EQ(!drag->pixmap().isNull(), hasPicture);
        EXPECT_FALSE(drag->mimeData()->formats().isEmpty());
    }
}

TEST_F(History, stepsAreListedAsTheyComeAndGo)
{
    EXPECT_EQ(column(list->model()), texts({"As Opened"}));
    QSignalSpy inserted(list->model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(list->model(), &QAbstractItemModel::rowsRemoved);
    step("One", 1);
    step("Two", 2);
    EXPECT_EQ(column(list->model()), texts({"As Opened", "One", "Two"}));
    EXPECT_EQ(inserted.size(), 2);
    EXPECT_TRUE(removed.isEmpty());
    EXPECT_EQ(list->currentIndex().row(), 2);
    manager()->undo();
    manager()->undo();
    EXPECT_EQ(list->currentIndex().row(), 0);
    step("Other", 1);
    EXPECT_EQ(column(list->model()), texts({"As Opened", "Other"}));
    EXPECT_EQ(removed.size(), 1);
    EXPECT_EQ(list->model()->rowCount(list->model()->index(0, 0)), 0);
    manager()->clear();
    EXPECT_EQ(column(list->model()), texts({"As Opened"}));
    OssProjectManager::instance()->closeProject();
    EXPECT_EQ(list->model()->rowCount(), 0) << "nothing is open";
    OssProjectManager::instance()->newProject(text("Next"));
    EXPECT_EQ(column(list->model()), texts({"As Opened"}));
}

TEST_F(History, aClickGoesToItsStepAndWhatIsUndoneIsDim)
{
    step("One", 1);
    step("Two", 2);
    step("Three", 3);
    for (const int chosen : {1, 0, 3, 2}) {
        list->setCurrentIndex(list->model()->index(chosen, 0));
        EXPECT_EQ(value, chosen);
        EXPECT_EQ(manager()->index(), chosen);
        for (int row = 0; row < 4; ++row)
            EXPECT_EQ(list->model()->index(row, 0).data(Qt::ForegroundRole).isValid(), row > chosen)
                << row;
        EXPECT_EQ(button(&panel, "Undo")->isEnabled(), chosen > 0) << chosen;
        EXPECT_EQ(button(&panel, "Redo")->isEnabled(), chosen < 3) << chosen;
    }
    press(&panel, "Undo");
    EXPECT_EQ(value, 1);
    press(&panel, "Redo");
    EXPECT_EQ(value, 2);
    EXPECT_EQ(panel.findChild<QLabel *>()->text(), text("Steps: 3"));
}

TEST_F(Log, linesArriveInBatchesFromEveryThread)
{
    QSignalSpy inserts(panel->findChild<LogModel *>(), &QAbstractItemModel::rowsInserted);
    write(1000);
    EXPECT_TRUE(waitForRows(1000));
    EXPECT_EQ(inserts.size(), 1);
    std::thread([] { write(1); }).join();
    EXPECT_TRUE(waitForRows(1001));
}

TEST_F(Log, objectsAreShownByTheirNames)
{
    OssDebugName(this, text("Wall"));
    OssDebugName(nullptr, text("(none)"));
    OssDebug(__FILE__, __LINE__, "from %p to %p", static_cast<void *>(this),
             static_cast<void *>(nullptr));
    OssDebug(__FILE__, __LINE__, "%p again", static_cast<void *>(this));
    ASSERT_TRUE(waitForRows(2));
    EXPECT_EQ(first(), text("from Wall to (none)"));
    EXPECT_TRUE(OssDebugLog::instance()->lines().first().text.contains(text("0x")));
    EXPECT_TRUE(OssDebugLog::instance()->lines().last().shown.contains(text("0x")))
        << "of one line only";
}

TEST_F(Log, theOldestGoWhenThereAreTooMany)
{
    write(OssDebugLog::Capacity + 10);
    EXPECT_TRUE(waitForRows(OssDebugLog::Capacity));
    EXPECT_EQ(first(), text("line 10"));
    write(1);
    EXPECT_TRUE(QTest::qWaitFor([this] { return first() == text("line 11"); }));
}

TEST_F(Log, kindsOfLinesDifferInColourAndAreFilteredByKindAndText)
{
    const ExpectedLog expected("brick is missing");
    OssDebug(__FILE__, __LINE__, "[ !! ] brick is missing");
    OssDebug(__FILE__, __LINE__, "[ -- ] brick is there");
    OssDebug(__FILE__, __LINE__, "stone");
    ASSERT_TRUE(waitForRows(3));
    const QColor wanted[] = {Theme::warningText(), Theme::mutedText(), QColor()};
    EXPECT_GT(wanted[0].red(), wanted[0].blue() + 40) << "a warning is red";
    EXPECT_LT(std::abs(wanted[1].red() - wanted[1].blue()), 40) << "what is less is grey";
    for (int row = 0; row < 3; ++row)
        EXPECT_EQ(view->model()->index(row, 0).data(Qt::ForegroundRole).value<QColor>(),
                  wanted[row]);
    QTest::keyClicks(panel->findChild<QLineEdit *>(), text("BRICK"));
    EXPECT_EQ(rows(), 2);
    press(panel.get(), "Notes");
    EXPECT_EQ(rows(), 1);
    EXPECT_TRUE(panel->textToCopy().endsWith(text("[ !! ] brick is missing")));
}

TEST_F(Log, dumpsTakeOneRowAndAreCopiedWhole)
{
    OssDebugTitle(__FILE__, __LINE__, "Dump", "%s", "first\nsecond");
    ASSERT_TRUE(waitForRows(1));
    EXPECT_FALSE(first().contains(QLatin1Char('\n')));
    EXPECT_TRUE(panel->textToCopy().endsWith(text("Dump\nfirst\nsecond")));
}

TEST_F(Log, followsTheEndUnlessTheUserHasScrolledAway)
{
    panel->resize(400, 200);
    panel->show();
    QScrollBar *bar = view->verticalScrollBar();
    const auto isAtEndAfter = [&](int lines) {
        const int before = rows();
        write(lines);
        EXPECT_TRUE(waitForRows(before + lines));
        QCoreApplication::processEvents();
        return bar->value() == bar->maximum();
    };
    EXPECT_TRUE(isAtEndAfter(200));
    ASSERT_GT(bar->maximum(), 0);
    EXPECT_TRUE(isAtEndAfter(10));
    bar->setValue(20);
    EXPECT_FALSE(isAtEndAfter(10));
    EXPECT_EQ(bar->value(), 20);
    bar->setValue(bar->maximum());
    EXPECT_TRUE(isAtEndAfter(10));
}

TEST_F(Log, whatIsSelectedIsCopiedAndClearingLeavesNothing)
{
    write(4);
    ASSERT_TRUE(waitForRows(4));
    const auto copied = [this] {
        press(panel.get(), "Copy");
        return QApplication::clipboard()->text().split(QLatin1Char('\n'));
    };
    EXPECT_EQ(copied().size(), 4) << "all when none is chosen";
    for (const int row : {3, 1})
        view->selectionModel()->select(view->model()->index(row, 0), QItemSelectionModel::Select);
    const QStringList two = copied();
    ASSERT_EQ(two.size(), 2);
    EXPECT_TRUE(two.first().endsWith(text("line 1"))) << "in their order";
    EXPECT_TRUE(two.last().endsWith(text("line 3")));
    press(panel.get(), "Clear");
    EXPECT_EQ(rows(), 0);
    EXPECT_TRUE(OssDebugLog::instance()->lines().isEmpty());
    EXPECT_TRUE(panel->textToCopy().isEmpty());
}
