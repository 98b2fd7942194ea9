#include "Ossa/Palettes/HistoryPanel.h"

#include "OssCore/Undo/OssUndoManager.h"

#include <gtest/gtest.h>

#include <QBrush>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>

#include <functional>

namespace {

/// The panel over a history of steps that change a number.
class History : public testing::Test
{
protected:
    History()
    {
        manager()->clear();
        list = panel.findChild<QListView *>();
    }

    ~History() override { manager()->clear(); }

    static OssUndoManager *manager() { return OssUndoManager::instance(); }

    void step(const char *title, int to)
    {
        manager()->record(
            QLatin1String(title), [this, to] { value = to - 1; }, [this, to] { value = to; });
        value = to;
    }

    QStringList shown() const
    {
        QStringList texts;
        for (int row = 0; row < list->model()->rowCount(); ++row)
            texts.append(list->model()->index(row, 0).data().toString());
        return texts;
    }

    bool isDim(int row) const
    {
        return list->model()->index(row, 0).data(Qt::ForegroundRole).isValid();
    }

    QPushButton *button(const char *text) const
    {
        const auto buttons = panel.findChildren<QPushButton *>();
        for (QPushButton *one : buttons) {
            if (one->text() == QLatin1String(text))
                return one;
        }
        return nullptr;
    }

    int value = 0;
    HistoryPanel panel;
    QListView *list = nullptr;
};

TEST_F(History, stepsAreListedAsTheyComeAndGo)
{
    const QString opened = QStringLiteral("As Opened");
    EXPECT_EQ(shown(), QStringList{opened});
    QSignalSpy inserted(list->model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(list->model(), &QAbstractItemModel::rowsRemoved);
    step("One", 1);
    step("Two", 2);
    EXPECT_EQ(shown(), (QStringList{opened, QStringLiteral("One"), QStringLiteral("Two")}));
    EXPECT_EQ(inserted.size(), 2);
    EXPECT_TRUE(removed.isEmpty());
    EXPECT_EQ(list->currentIndex().row(), 2);
    manager()->undo();
    manager()->undo();
    EXPECT_EQ(list->currentIndex().row(), 0);
    step("Other", 1);
    EXPECT_EQ(shown(), (QStringList{opened, QStringLiteral("Other")}));
    EXPECT_EQ(removed.size(), 1);
    EXPECT_EQ(list->model()->rowCount(list->model()->index(0, 0)), 0);
    manager()->clear();
    EXPECT_EQ(shown(), QStringList{opened});
}

TEST_F(History, aClickGoesToItsStepAndWhatIsUndoneIsDim)
{
    step("One", 1);
    step("Two", 2);
    step("Three", 3);

    const struct
    {
        int row;
        bool canUndo;
        bool canRedo;
    } cases[] = {{1, true, true}, {0, false, true}, {3, true, false}, {2, true, true}};

    for (const auto &c : cases) {
        list->setCurrentIndex(list->model()->index(c.row, 0));
        EXPECT_EQ(value, c.row);
        EXPECT_EQ(manager()->index(), c.row);
        for (int row = 0; row < 4; ++row)
            EXPECT_EQ(isDim(row), row > c.row) << row;
        EXPECT_EQ(button("Undo")->isEnabled(), c.canUndo) << c.row;
        EXPECT_EQ(button("Redo")->isEnabled(), c.canRedo) << c.row;
    }
    button("Undo")->click();
    EXPECT_EQ(value, 1);
    button("Redo")->click();
    EXPECT_EQ(value, 2);
    EXPECT_EQ(panel.findChild<QLabel *>()->text(), QStringLiteral("Steps: 3"));
}

} // namespace
