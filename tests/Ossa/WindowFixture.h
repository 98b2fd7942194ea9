#pragma once

#include "Ossa/Window/MainWindow.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QAction>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// The window with palettes that stand for those of the program.
class WindowFixture : public testing::Test
{
protected:
    WindowFixture() { needNodeTypes(); }

    ~WindowFixture() override
    {
        projects()->closeProject();
        window.reset();
        OssPaletteManager::instance()->deletePalettes();
        OssSettings().remove(text("MainWindow"));
    }

    static OssProjectManager *projects() { return OssProjectManager::instance(); }

    static OssPalette *make(const char *name, const char *helpKey, bool shownAtFirst = true)
    {
        auto *palette = new OssPalette;
        palette->setObjectName(text(name));
        palette->setWindowTitle(palette->objectName());
        palette->setContextHelpKey(text(helpKey));
        auto *body = new QWidget(palette);
        body->setFocusPolicy(Qt::StrongFocus);
        palette->setBodyWidget(body);
        OssPaletteManager::instance()->registerPalette(palette, shownAtFirst, QString());
        return palette;
    }

    /// The window as it starts, with the layout of the last session or without.
    void open(bool restored = false)
    {
        window = std::make_unique<MainWindow>();
        if (restored)
            window->restoreLayout();
        window->resize(1200, 800);
        window->show();
    }

    /// The end of a session.
    void close()
    {
        EXPECT_TRUE(window->close());
        window.reset();
    }

    /// A command by its path below "/Ossa/".
    static QAction *command(const char *path)
    {
        return OssActionTreeManager::instance()->findAction(text("/Ossa/") + text(path));
    }

    /// The command that shows and hides a palette.
    static QAction *toggle(const char *name)
    {
        return OssActionTreeManager::instance()->findAction(text("/Ossa/Palettes/") + text(name));
    }

    static void change()
    {
        OssUndoManager::instance()->record(
            text("Move node Brick"), [] {}, [] {});
    }

    QString path(const char *name) const { return m_folder.filePath(text(name)); }

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindow> window;
};
