#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "Program/StartedProgram.h"
#include "support/TabOrder.h"

#include <QDialog>
#include <QTest>
#include <QTimer>

namespace {

/// The user in the graph, with whatever a command may want selected.
class DialogFocus : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        OssApplication::setPopupsAllowed(true);
        s_window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(s_window));
        // A window manager takes its time.
        const bool managed = QGuiApplication::platformName() != QLatin1String("offscreen");
        m_leave.setInterval(managed ? 200 : 5);
        QObject::connect(&m_leave, &QTimer::timeout, [this] { leave(); });
    }

    void TearDown() override { OssApplication::setPopupsAllowed(false); }

    void connectAll()
    {
        m_color = add("Procedural/Color");
        m_point = add("Misc/Bake Point");
        wire(m_color, m_point);
        m_group = m_network->groupNodes({add("Filter/Blur")});
        history()->clear();
    }

    /// Whatever asks the user something, beside what was there before.
    QWidget *asking() const
    {
        if (QWidget *popup = QApplication::activePopupWidget())
            return popup;
        const QWidgetList all = QApplication::topLevelWidgets();
        for (QWidget *one : all) {
            if (one->isVisible() && qobject_cast<QDialog *>(one))
                return one;
        }
        return nullptr;
    }

    /// By the key that leaves it.
    void leave()
    {
        QWidget *window = asking();
        if (!window)
            return;
        m_opened = QLatin1String(window->metaObject()->className()) + QLatin1String(" \"")
                   + window->windowTitle() + QLatin1Char('"');
        EXPECT_EQ(againstReading(window).join(text("; ")).toStdString(), "")
            << qPrintable(m_opened);
        QWidget *focus = window->focusWidget();
        QTest::keyClick(focus ? focus : window, Qt::Key_Escape);
    }

    /// What the command opened; empty for none.
    QString open(QAction *action)
    {
        m_opened.clear();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // views of the last
        s_window->activateWindow();
        const auto views = s_window->findChildren<OssNgView *>();
        for (OssNgView *view : views) {
            if (view->isVisible())
                m_view = view;
        }
        m_view->setFocus();
        QCoreApplication::processEvents();
        m_leave.start();
        action->trigger();
        QTest::qWait(30); // what opens a dialog has done so by now
        for (int tries = 0; asking() && tries < 100; ++tries)
            QTest::qWait(10);
        m_leave.stop();
        QTest::qWait(5);
        return m_opened;
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_point = nullptr;
    OssSnBaseNode *m_group = nullptr;
    QPointer<OssNgView> m_view;
    QTimer m_leave;
    QString m_opened;
};

TEST_F(DialogFocus, goesBackToTheGraphFromEveryDialogOfACommand)
{
    const ExpectedLog anything("", ExpectedLog::Possible); // of those that find nothing to do
    const QStringList leaving = {text("/Ossa/File/Quit"), text("/Ossa/File/Close")};
    int opened = 0;
    for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
        const QString path = OssCommandTable::path(row);
        const QAction *known = OssActionTreeManager::instance()->findAction(path);
        if (!known || leaving.contains(path))
            continue;
        for (int which = 0; which < 3; ++which) {
            StartedProgram::SetUp(); // commands change everything
            connectAll();
            const QList<OssSnBaseNode *> nodes{m_color, m_point, m_group};
            select({nodes.at(which)});
            QAction *action = OssActionTreeManager::instance()->findAction(path);
            if (!action || !action->isEnabled())
                continue;
            const QString dialog = open(action);
            if (dialog.isEmpty())
                continue;
            ++opened;
            std::printf("%s: %s\n", qPrintable(path), qPrintable(dialog));
            EXPECT_EQ(asking(), nullptr) << qPrintable(path);
            EXPECT_TRUE(
                QTest::qWaitFor([this] { return QApplication::focusWidget() == m_view; }, 1000))
                << qPrintable(path) << ", " << qPrintable(dialog) << ": the focus is with "
                << (QApplication::focusWidget()
                        ? QApplication::focusWidget()->metaObject()->className()
                        : "nobody");
            break;
        }
    }
    EXPECT_GT(opened, 15);
}

TEST_F(DialogFocus, tabGoesThroughPalettesAsOneReads)
{
    connectAll();
    select({m_color});
    const QPointer<QWidget> focus = QApplication::focusWidget();
    const auto palettes = OssPaletteManager::instance()->palettes();
    for (OssPalette *palette : palettes) {
        palette->showBySidebar();
        QTest::qWait(20);
        EXPECT_EQ(againstReading(palette).join(text("; ")).toStdString(), "")
            << qPrintable(palette->windowTitle());
    }
    for (const char *command : {"Viewer/Show Patches and Object", "Viewer/Toggle Painting"}) {
        triggerCommand(command);
        for (const OssPalette *palette : palettes)
            EXPECT_EQ(againstReading(palette).join(text("; ")).toStdString(), "")
                << command << ", " << qPrintable(palette->windowTitle());
    }
    triggerCommand("Viewer/Toggle Painting");
    triggerCommand("Viewer/Show Patches");
    if (focus)
        focus->setFocus();
}

} // namespace
