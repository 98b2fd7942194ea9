#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>

class OssPalette;
class QMainWindow;

namespace ads {
class CDockManager;
class CDockWidget;
} // namespace ads

/// Puts every palette of OssPaletteManager into a dock of the main window, those that are
/// registered later included, and files a command per palette that shows and hides it.
class PaletteDocks : public QObject
{
    Q_OBJECT

public:
    explicit PaletteDocks(QMainWindow *window);
    ~PaletteDocks() override;

    /// The layout of the last session, if there was one.
    void restoreLayout();
    void saveLayout() const;
    /// The layout that a new user gets.
    void resetLayout();

    /// Puts a widget in the place of the graph, which takes no input then, or takes it away again.
    /// The docks own it until they go; then it is the window's.
    void coverGraph(QWidget *cover, bool on);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QStringList dockNames() const;
    void dock(OssPalette *palette);
    void place(OssPalette *palette, ads::CDockWidget *dock);
    void applyState();
    void sizeAreas();
    void makeRoom(const ads::CDockWidget *dock);
    void showPalette(const OssPalette *palette);
    void removeDock(QObject *palette);
    /// Null before there is one.
    ads::CDockWidget *graphDock() const;
    void placeCover();
    void releaseCover();
    void noteKeyboard(const QWidget *focus);
    void giveKeyboardBack(const ads::CDockWidget *closed);

    QMainWindow *m_window;
    ads::CDockManager *m_manager; ///< owned by the window
    QHash<const QObject *, ads::CDockWidget *> m_docks;
    /// Of the last session: palettes that come late find their place in it, if they were there.
    QByteArray m_state;
    QStringList m_stateNames;
    QPointer<QWidget> m_cover; ///< of the graph
    bool m_isCovered = false;
    QPointer<ads::CDockWidget>
        m_keyboard; ///< has it, or had it last; also while it is being closed
};
