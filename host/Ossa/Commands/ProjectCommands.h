#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>

class QAction;
class QWidget;

/// The commands of the File menu: open, save and close projects, with the questions and messages
/// that go with it. Nothing that is not saved is given up without the user's word.
class ProjectCommands : public QObject
{
    Q_OBJECT

public:
    /// `window` is the parent of dialogs and what Quit closes; this object must not outlive it.
    explicit ProjectCommands(QWidget *window);
    /// Commands that need a project can be used again: nobody says any more whether there is one.
    ~ProjectCommands() override;

    /// Asks Save, Discard or Cancel when there are changes. True: go on, whatever is open may be
    /// closed.
    bool mayClose();

    /// A project, or a new one with what a file of nodes holds. False when the user refused to close the open project,
    /// or the new one cannot be opened.
    bool open(const QString &path);
    void newProject();
    void close();
    bool save();
    bool saveAs();

Q_SIGNALS:
    /// Another project, another name or path, saved or no longer as saved.
    void projectStateChanged();

private:
    bool mayStopBaking() const;
    void fileCommands();
    void askAndOpen();
    void fileRecent();
    void fileExamples();
    void askForNewResolution();
    void refresh();
    bool saveTo(const QString &path);
    /// While work runs that needs the project, which is told to the user.
    static bool isBusy();

    QWidget *m_window;
    QVector<QPointer<QAction>> m_recent;
};
