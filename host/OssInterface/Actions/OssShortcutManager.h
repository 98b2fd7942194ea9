#pragma once

#include "OssCore/Program/OssService.h"
#include "OssInterface/OssInterface_export.h"

#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVector>

class QAction;
class QKeyEvent;
class QWidget;

/// Binds keys to the identities of the action tree. The defaults come from one table, the user's
/// changes lie in OssSettings, group "Shortcuts". Of several actions of one identity the first
/// has the keys: two would block each other.
///
/// Keys act in scopes: those of the commands below a folder only while the focus is inside that
/// folder's widget, so that "D" is a letter elsewhere. A text field inside the widget comes before
/// all of them. An action that was filed with a key of its own shows it in menus, but whoever set
/// the key makes it act, until the user assigns others. GUI thread.
class OSSINTERFACE_EXPORT OssShortcutManager
    : public QObject
    , public OssService<OssShortcutManager>
{
    Q_OBJECT

public:
    OssShortcutManager();
    /// Takes the keys off all actions, which may live on.
    ~OssShortcutManager() override;

    /// Keys of commands below `folder` act inside `widget`; if it is a window, in every window of
    /// the application. The folder that is nearest to a command counts. Without a scope keys are
    /// only shown. Null takes the scope away.
    void setScope(const QString &folder, QWidget *widget);

    /// Keys of the command act inside `widget` as well. Null takes that back.
    void setReach(const QString &path, QWidget *widget);

    QList<QKeySequence> keys(const QString &path) const;
    QList<QKeySequence> defaultKeys(const QString &path) const;
    bool isCustomized(const QString &path) const;

    /// Kept in the settings at once. Keys that equal the defaults leave nothing there.
    void setKeys(const QString &path, const QList<QKeySequence> &keys);
    void resetKeys(const QString &path);
    void resetAll();

    /// Identities that would answer to these keys, or to a part or continuation of them, in the
    /// scope of `path`.
    QStringList conflicts(const QString &path, const QKeySequence &keys) const;

    /// Heading under which the command is listed: what was assigned, or else the name of the
    /// application's folder that it lies in or below, as words.
    QString groupOf(const QString &path) const;
    void assignGroup(const QString &path, const QString &group);

    /// Identity of the command that the pressed keys mean with the focus there, and that cannot be used
    /// now; empty when there is none. For whoever gets a key that nobody took.
    QString disabledCommand(const QKeyEvent &event, const QWidget *focus) const;

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void keysChanged(const QString &path);

private:
    struct Scope
    {
        QString folder;
        QPointer<QWidget> widget;
    };

    void onActionRegistered(const QString &path, QAction *action);
    void onActionRemoved(const QString &path);
    void bind(const QString &path);
    void unbind(const QString &path, QAction *action) const;
    void bindAll();
    const Scope *scopeOf(const QString &path) const;
    /// Where keys of the command act.
    QList<QWidget *> widgetsOf(const QString &path) const;
    bool scopesOverlap(const QString &path, const QString &otherPath) const;
    /// Whether a dialog keeps the user from it. Of keys that do not act in whole windows Qt does not ask.
    bool isCovered(QAction *action) const;
    bool isMenuKey(const QKeyEvent &event) const;
    /// Whether it acts in a scope around the field; without one: in any but that of the windows.
    bool isScopedKey(const QWidget *field, const QKeySequence &keys) const;
    void loadCustomKeys();

    QVector<Scope> m_scopes;
    QHash<QString, QPointer<QWidget>> m_reaches;
    QHash<QString, QList<QKeySequence>> m_custom;
    /// Keys that actions had when they were filed.
    QHash<QString, QList<QKeySequence>> m_own;
    QHash<QString, QPointer<QAction>> m_bound;
    QHash<QString, QString> m_groups;
};
