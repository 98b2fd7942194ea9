#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "PointerFixture.h"

#include <QAction>

namespace {

/// Something else begins while a button holds a gesture: the gesture ends, and what moves on with the
/// button is only the pointer.
class Interruptions : public PointerFixture
{
protected:
    struct Gesture
    {
        const char *name;
        std::function<QPoint()> from;
        Qt::MouseButton button = Qt::LeftButton;
        Qt::KeyboardModifiers keys = Qt::NoModifier;
        const char *navigation = "Kova";
        bool cuts = false; ///< in the mode in which wires are cut
    };

    struct Interruption
    {
        const char *name;
        std::function<void()> run;
    };

    /// A wire from Color to Blur on a backdrop, all on screen at natural size.
    void fill()
    {
        m_project = OssProjectManager::instance()->newProject(QStringLiteral("Test"));
        m_network = m_project->shadingGroups().first()->network();
        m_area = addAt("Misc/Backdrop", {-60, -60}, "Area");
        contextOf(m_area)->setNodeSize({700, 300});
        m_color = addAt("Procedural/Color", {0, 40}, "Color");
        m_blur = addAt("Filter/Blur", {350, 40}, "Blur");
        wire(m_color, m_blur);
        qobject_cast<OssNgBackdropNode *>(itemOf(m_area))->refreshChildrenList();
        m_view->resetTransform();
        m_view->centerOn(300, 100);
        select({m_blur});
        OssUndoManager::instance()->clear();
    }

    static void command(const char *name)
    {
        QAction *action = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/") + QLatin1String(name));
        ASSERT_NE(action, nullptr) << name;
        action->trigger();
    }

    /// A command that opens something, which is closed at once.
    static void opening(const std::function<void()> &run)
    {
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, &closer, [] {
            if (QWidget *popup = QApplication::activePopupWidget())
                popup->close();
            else if (QWidget *dialog = QApplication::activeModalWidget())
                dialog->close();
        });
        closer.start(1);
        run();
    }

    /// Presses and moves on. Where it was pressed.
    QPoint begin(const Gesture &gesture)
    {
        m_view->setNavigationControlType(QString::fromLatin1(gesture.navigation));
        m_view->setCursorTrackingMode(gesture.cuts ? OssNgView::SeverTracking
                                                   : OssNgView::NormalTracking);
        const QPoint from = gesture.from();
        pointer(QEvent::MouseButtonPress, from, gesture.button, gesture.button, gesture.keys);
        for (const QPoint &way : {QPoint(15, 10), QPoint(40, 30)})
            pointer(QEvent::MouseMove, from + way, Qt::NoButton, gesture.button, gesture.keys);
        return from;
    }

    QVector<Gesture> gestures();
    QVector<Interruption> interruptions();
    void check(const Gesture &gesture, const Interruption &interruption);

    OssSnBaseNode *m_area = nullptr;
    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_blur = nullptr;
};

QVector<Interruptions::Gesture> Interruptions::gestures()
{
    const auto body = [this] {
        return headerOf(m_blur);
    };
    const auto output = [this] {
        return outputOf(m_color);
    };
    const auto wire = [this] {
        return at((itemOf(m_color)->outputPortScenePos(m_color->prefferedOutputPoint())
                   + itemOf(m_blur)->inputPortScenePos(QStringLiteral("Input")))
                  / 2.0);
    };
    return {
        {"node", body},
        {"nodes with a backdrop",
         [this] {
             return at({-20, -50});
         }},
        {"backdrop's corner",
         [this] {
             return at({638, 238});
         }},
        {"new wire", output},
        {"wire", wire},
        {"rubber band",
         [this] {
             return at({-100, 300});
         }},
        {"more in a band",
         [this] {
             return at({-100, 300});
         },
         Qt::LeftButton, Qt::ShiftModifier},
        {"pan", body, Qt::MiddleButton},
        {"zoom", body, Qt::MiddleButton, Qt::AltModifier},
        {"minimap",
         [this] {
             return m_view->viewport()->rect().bottomRight() - QPoint(100, 70);
         }},
        {"pan of the other scheme", body, Qt::LeftButton, Qt::AltModifier, "Ossa"},
        {"zoom of the other scheme", body, Qt::RightButton, Qt::AltModifier, "Ossa"},
        {"wire from an input",
         [this] {
             return at(itemOf(m_blur)->inputPortScenePos(m_blur->inputPorts().last().name));
         }},
        {"room",
         [this] {
             return at({200, 10});
         },
         Qt::LeftButton, Qt::ControlModifier | Qt::AltModifier},
        {"cut",
         [this] {
             return at({-100, 300});
         },
         Qt::LeftButton, Qt::NoModifier, "Kova", true},
    };
}

QVector<Interruptions::Interruption> Interruptions::interruptions()
{
    const auto by = [](const char *name) {
        return [name] {
            opening([name] { command(name); });
        };
    };
    return {
        {"right press",
         [this] {
             pointer(QEvent::MouseButtonPress, {20, 20}, Qt::RightButton, Qt::RightButton);
         }},
        {"menu key",
         [this] {
             opening([this] { askForMenu({20, 20}, QContextMenuEvent::Keyboard); });
         }},
        {"quick create", by("Quick Create")},
        {"rename", by("Rename Node")},
        {"search", by("Search Node")},
        {"delete", by("Delete")},
        {"duplicate", by("Duplicate")},
        {"autoplace",
         [] {
             OssActionTreeManager::instance()
                 ->findAction(QStringLiteral("/Ossa/NodeGraph/Autoplace"))
                 ->trigger();
         }},
        {"select all", by("Select All")},
        {"undo",
         [] {
             OssUndoManager::instance()->undo();
         }},
        {"undo of nothing",
         [this] {
             QTest::keyClick(m_view, Qt::Key_Z, Qt::ControlModifier);
         }},
        {"group",
         [this] {
             m_network->groupNodes({m_color});
         }},
        {"focus lost",
         [this] {
             QFocusEvent event(QEvent::FocusOut, Qt::OtherFocusReason);
             QCoreApplication::sendEvent(m_view, &event);
         }},
        {"another tab",
         [this] {
             QTabWidget *tabs = m_manager->nodeGraphWidget();
             QWidget other;
             tabs->addTab(&other, QStringLiteral("other"));
             tabs->setCurrentWidget(&other);
             tabs->removeTab(tabs->indexOf(&other));
             tabs->setCurrentIndex(0);
         }},
        {"project closed",
         [this] {
             OssProjectManager::instance()->closeProject();
             fill();
         }},
        {"a script",
         [this] {
             OssScriptManager::instance()->beginScript(QStringLiteral("Script"));
             m_color->setName(QStringLiteral("Scripted"));
             OssScriptManager::instance()->endScript();
         }},
    };
}

void Interruptions::check(const Gesture &gesture, const Interruption &interruption)
{
    SCOPED_TRACE(std::string(gesture.name) + ", " + interruption.name);
    fill();
    const QPoint from = begin(gesture);
    EXPECT_TRUE(m_view->hasGesture());
    interruption.run();
    EXPECT_FALSE(m_view->hasGesture());
    const QByteArray then = m_project->stateHash();
    const int steps = undoCount();
    const QList<QGraphicsItem *> selected = m_view->scene()->selectedItems();
    const QRectF shown = m_view->viewportInSceneCoords();
    pointer(QEvent::MouseMove, from + QPoint(90, 70), Qt::NoButton, gesture.button, gesture.keys);
    pointer(QEvent::MouseButtonRelease, from + QPoint(90, 70), gesture.button, Qt::NoButton,
            gesture.keys);
    EXPECT_EQ(m_project->stateHash(), then) << "the button holds nothing";
    EXPECT_EQ(undoCount(), steps);
    EXPECT_EQ(m_view->scene()->selectedItems(), selected);
    EXPECT_EQ(m_view->viewportInSceneCoords(), shown);
    expectWhole();
    const QByteArray end = m_project->stateHash();
    while (OssUndoManager::instance()->canUndo())
        OssUndoManager::instance()->undo();
    while (OssUndoManager::instance()->canRedo())
        OssUndoManager::instance()->redo();
    if (interruption.name != std::string("undo"))
        EXPECT_EQ(m_project->stateHash(), end) << "every move is a step";
    expectWhole();
}

TEST_F(Interruptions, noGestureOutlivesWhatComesBetween)
{
    const ExpectedLog possible[] = {ExpectedLog("Nothing to autoplace", ExpectedLog::Possible),
                                    ExpectedLog("fallback onto current", ExpectedLog::Possible),
                                    ExpectedLog("nodes in the network", ExpectedLog::Possible),
                                    ExpectedLog("Only one node", ExpectedLog::Possible),
                                    ExpectedLog("Could not", ExpectedLog::Possible)};
    const QVector<Gesture> all = gestures();
    const QVector<Interruption> others = interruptions();
    for (const Gesture &gesture : all) {
        for (const Interruption &interruption : others)
            check(gesture, interruption);
    }
    m_view->setNavigationControlType(QStringLiteral("Kova"));
    m_view->setCursorTrackingMode(OssNgView::NormalTracking);
}

TEST_F(Interruptions, takingAGestureBackUndoesNothingElse)
{
    const QVector<Gesture> all = gestures();
    for (const Gesture &gesture : all) {
        SCOPED_TRACE(gesture.name);
        fill();
        m_color->setName(QStringLiteral("Renamed"));
        const QByteArray before = m_project->stateHash();
        const QPoint from = begin(gesture);
        OssUndoManager::instance()->takeBack();
        EXPECT_FALSE(m_view->hasGesture());
        EXPECT_TRUE(undoText().startsWith(QLatin1String("Rename"))) << qPrintable(undoText());
        pointer(QEvent::MouseButtonRelease, from + QPoint(40, 30), gesture.button, Qt::NoButton,
                gesture.keys);
        EXPECT_EQ(m_project->stateHash(), before);
        expectWhole();
        OssUndoManager::instance()->takeBack();
        EXPECT_EQ(m_color->name(), QStringLiteral("Color"));
    }
    m_view->setNavigationControlType(QStringLiteral("Kova"));
    m_view->setCursorTrackingMode(OssNgView::NormalTracking);
}

} // namespace
