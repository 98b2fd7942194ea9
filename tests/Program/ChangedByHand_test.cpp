#include "OssCore/Documents/OssSerializer.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnDataKind.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "Program/StartedProgram.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>

namespace {

/// All commands on all kinds of selections: one that leaves a step which changed a network has to have
/// told that the graph was changed by hand. What is saved without a step, as how ports are listed, counts
/// as how the graph is looked at.
class ChangedByHand : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        bringUser();
        OssSnBaseNode *color = add("Procedural/Color");
        OssSnBaseNode *scalar = add("Procedural/Scalar");
        m_merge = add("Layer/Merge");
        m_merge->setInputNode(text("Base"), color, color->prefferedOutputPoint());
        m_merge->setInputNode(text("Over"), scalar, scalar->prefferedOutputPoint());
        m_blur = add("Filter/Blur");
        wire(m_merge, m_blur);
        m_group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
        m_inner = m_group->groupNetwork()->createNode(text("Filter/Sharpen"));
        m_group->createInput(text("First"), OssSnDataKind::Color);
        m_group->createInput(text("Second"), OssSnDataKind::Color);
        m_group->createOutput(text("Result"), OssSnDataKind::Color);
        m_group->setInputNode(text("First"), m_blur, m_blur->prefferedOutputPoint());
        m_bakePoint = add("Misc/Bake Point");
        m_area = add("Misc/Backdrop");
        const QList<OssSnBaseNode *> all{color, scalar, m_merge, m_blur, m_group, m_bakePoint};
        for (int i = 0; i < all.size(); ++i)
            all.at(i)->viewContext()->setNodePosition({i * 130.0, i * i * 17.0});
        for (OssSnBaseNode *area : {m_area, add("Misc/Backdrop"), add("Misc/Backdrop")})
            area->viewContext()->setNodePosition({100, -30});
        const QList<OssSnBaseNode *> ports = m_group->groupNetwork()->nodes();
        int row = 0; // from below upwards
        for (OssSnBaseNode *port : qAsConst(ports))
            port->viewContext()->setNodePosition({0, --row * 200.0});
        project()->addEntity(text("Second"));
        history()->clear();
        qApp->installEventFilter(&m_user);
    }

    void TearDown() override { OssApplication::setPopupsAllowed(false); }

    static OssNgView *view()
    {
        const auto views = s_window->findChildren<OssNgView *>();
        const auto shown = std::find_if(views.cbegin(), views.cend(),
                                        [](const OssNgView *one) { return one->isVisible(); });
        return shown == views.cend() ? nullptr : *shown;
    }

    /// What is saved of the project's networks.
    static QByteArray networks()
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        OssSerializer serializer(&buffer, false);
        serializer.setCanonical(true);
        const QList<OssShadingGroup *> groups = project()->shadingGroups();
        for (const OssShadingGroup *group : groups)
            group->network()->save(serializer, group->network()->objectName(), {});
        return buffer.data();
    }

    /// Whether it may change a graph and asks nothing that a test cannot answer.
    static bool concerns(const QString &path)
    {
        static const QStringList folders{text("/Ossa/NodeGraph/"), text("/Ossa/Images/"),
                                         text("/Ossa/Viewer/"), text("/Ossa/Mesh/"),
                                         text("/Ossa/Edit/Size")};
        return !path.contains(text("/Import ")) && !path.contains(text("/Export "))
               && std::any_of(folders.cbegin(), folders.cend(),
                              [&path](const QString &folder) { return path.startsWith(folder); });
    }

    void sweep(const char *situation, const std::function<void()> &prepare)
    {
        SCOPED_TRACE(situation);
        const QStringList paths = OssActionTreeManager::instance()->paths();
        for (const QString &path : paths) {
            QAction *action = OssActionTreeManager::instance()->findAction(path);
            if (!action || !concerns(path))
                continue;
            if (path.contains(text("/Create/")) && m_changing.contains(path))
                continue; // they are many, and one is as another
            history()->setIndex(0);
            OssShaderNetworkManager::instance()->setCurrentShaderNetwork(m_network);
            OssShaderNetworkManager::instance()->goToNode(m_merge);
            prepare();
            view()->setFocus();
            OssActionTreeManager::instance()->settleStates();
            if (!action->isEnabled())
                continue;
            const QByteArray before = networks();
            const int steps = history()->index();
            const QSignalSpy told(OssShaderNetworkManager::instance(),
                                  &OssShaderNetworkManager::nodeGraphIsManuallyChanged);
            action->trigger();
            if (history()->index() == steps || networks() == before)
                continue;
            m_changing.insert(path);
            EXPECT_FALSE(told.isEmpty()) << qPrintable(path);
        }
    }

    /// Says yes to what opens, and gives names.
    struct User : QObject
    {
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (event->type() != QEvent::Show)
                return false;
            if (auto *menu = qobject_cast<QMenu *>(watched))
                QTimer::singleShot(0, menu, [menu] { chooseFirst(menu); });
            else if (auto *dialog = qobject_cast<QDialog *>(watched))
                QTimer::singleShot(0, dialog, [dialog] { accept(dialog); });
            return false;
        }

        static void chooseFirst(QMenu *menu)
        {
            const QList<QAction *> actions = menu->actions();
            for (QAction *action : actions) {
                if (action->menu() || action->isSeparator() || !action->isEnabled())
                    continue;
                menu->setActiveAction(action);
                QTest::keyClick(menu, Qt::Key_Return);
                return;
            }
            menu->close();
        }

        static void accept(QDialog *dialog)
        {
            auto *field = dialog->findChild<QLineEdit *>();
            if (field && field->isVisible())
                field->setText(text("Other"));
            QTest::keyClick(field ? static_cast<QWidget *>(field) : dialog, Qt::Key_Return);
            if (dialog->isVisible())
                dialog->close();
        }
    };

    QSet<QString> m_changing; ///< the commands that were seen changing a graph
    User m_user;
    OssSnBaseNode *m_merge = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    OssSnGroupNode *m_group = nullptr;
    OssSnBaseNode *m_inner = nullptr;
    OssSnBaseNode *m_bakePoint = nullptr;
    OssSnBaseNode *m_area = nullptr;
    const ExpectedLog m_lines{" ", ExpectedLog::Possible}; ///< of which there are many kinds
};

TEST_F(ChangedByHand, isToldByEveryCommandThatChangesAGraph)
{
    sweep("nothing", [this] { select({}); });
    sweep("one", [this] { select({m_merge}); });
    sweep("several", [this] { select({m_merge, m_blur, m_group, m_bakePoint}); });
    sweep("a group", [this] { select({m_group}); });
    sweep("a bake point", [this] { select({m_bakePoint}); });
    sweep("a backdrop", [this] { select({m_area}); });
    sweep("wires", [this] {
        select({});
        const auto items = view()->scene()->items();
        for (QGraphicsItem *item : items) {
            if (auto *edge = dynamic_cast<OssNgEdge *>(item))
                edge->setSelected(true);
        }
    });
    sweep("inside a group", [this] {
        OssShaderNetworkManager::instance()->goToNode(m_inner);
        m_inner->setSelected(true);
    });
    EXPECT_GT(m_changing.size(), 200);
}

} // namespace
