#include "OssInterface/Actions/OssShortcutManager.h"

#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QWidget>

#include <algorithm>

namespace {

const QString SettingsGroup = QStringLiteral("Shortcuts");

// A list with one empty text: the user took the keys away. An empty list could not be told from
// "nothing stored".
QStringList toTexts(const QList<QKeySequence> &keys)
{
    QStringList texts;
    for (const QKeySequence &key : keys)
        texts.append(key.toString(QKeySequence::PortableText));
    return texts.isEmpty() ? QStringList(QString()) : texts;
}

QList<QKeySequence> fromTexts(const QStringList &texts)
{
    QList<QKeySequence> keys;
    for (const QString &text : texts) {
        const QKeySequence key = QKeySequence::fromString(text, QKeySequence::PortableText);
        if (!key.isEmpty())
            keys.append(key);
    }
    return keys;
}

bool isBelow(const QString &path, const QString &folder)
{
    return folder == QLatin1String("/") || path.startsWith(folder + QLatin1Char('/'));
}

bool clash(const QKeySequence &one, const QKeySequence &other)
{
    return one.matches(other) != QKeySequence::NoMatch
           || other.matches(one) != QKeySequence::NoMatch;
}

bool takesText(const QWidget *widget)
{
    return widget && widget->testAttribute(Qt::WA_InputMethodEnabled)
           && (widget->inherits("QLineEdit") || widget->inherits("QAbstractSpinBox")
               || widget->inherits("QTextEdit") || widget->inherits("QPlainTextEdit")
               || widget->inherits("QComboBox"));
}

bool isMenu(const QWidget *widget)
{
    return qobject_cast<const QMenu *>(widget) || qobject_cast<const QMenuBar *>(widget);
}

QKeySequence keysOf(const QKeyEvent &event)
{
    return {event.key() | int(event.modifiers() & ~Qt::KeypadModifier)};
}

} // namespace

OssShortcutManager::OssShortcutManager()
{
    loadCustomKeys();
    const auto *tree = OssActionTreeManager::instance();
    connect(tree, &OssActionTreeManager::actionRegistered, this,
            &OssShortcutManager::onActionRegistered);
    connect(tree, &OssActionTreeManager::actionRemoved, this, &OssShortcutManager::onActionRemoved);
    for (const OssActionTreeManager::Entry &entry : tree->entries())
        onActionRegistered(entry.path, entry.action);
    if (qApp)
        qApp->installEventFilter(this);
}

OssShortcutManager::~OssShortcutManager()
{
    for (const auto &action : qAsConst(m_bound)) {
        if (action)
            action->setShortcuts(QList<QKeySequence>());
    }
}

void OssShortcutManager::setScope(const QString &folder, QWidget *widget)
{
    const QString normalized = OssActionTreeManager::normalizedPath(folder);
    for (auto bound = m_bound.cbegin(); bound != m_bound.cend(); ++bound)
        unbind(bound.key(), bound.value());
    m_scopes.erase(
        std::remove_if(m_scopes.begin(), m_scopes.end(),
                       [&normalized](const Scope &scope) { return scope.folder == normalized; }),
        m_scopes.end());
    if (widget)
        m_scopes.append({normalized, widget});
    bindAll();
}

void OssShortcutManager::setReach(const QString &path, QWidget *widget)
{
    const QString normalized = OssActionTreeManager::normalizedPath(path);
    unbind(normalized, m_bound.value(normalized));
    m_reaches.insert(normalized, widget);
    bind(normalized);
}

QList<QKeySequence> OssShortcutManager::keys(const QString &path) const
{
    const auto custom = m_custom.constFind(OssActionTreeManager::normalizedPath(path));
    return custom == m_custom.cend() ? defaultKeys(path) : *custom;
}

QList<QKeySequence> OssShortcutManager::defaultKeys(const QString &path) const
{
    const QString normalized = OssActionTreeManager::normalizedPath(path);
    const QList<QKeySequence> keys = OssCommandTable::keys(normalized);
    return keys.isEmpty() ? m_own.value(normalized) : keys;
}

bool OssShortcutManager::isCustomized(const QString &path) const
{
    return m_custom.contains(OssActionTreeManager::normalizedPath(path));
}

void OssShortcutManager::setKeys(const QString &path, const QList<QKeySequence> &keys)
{
    const QString normalized = OssActionTreeManager::normalizedPath(path);
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    if (keys == defaultKeys(normalized)) {
        m_custom.remove(normalized);
        settings.remove(normalized.mid(1));
    } else {
        m_custom.insert(normalized, keys);
        settings.setValue(normalized.mid(1), toTexts(keys));
    }
    bind(normalized);
    Q_EMIT keysChanged(normalized);
}

void OssShortcutManager::resetKeys(const QString &path)
{
    setKeys(path, defaultKeys(path));
}

void OssShortcutManager::resetAll()
{
    const QStringList paths = m_custom.keys();
    for (const QString &path : paths)
        resetKeys(path);
    OssSettings settings;
    settings.remove(SettingsGroup);
}

QStringList OssShortcutManager::conflicts(const QString &path, const QKeySequence &keys) const
{
    const QString normalized = OssActionTreeManager::normalizedPath(path);
    QStringList found;
    if (keys.isEmpty())
        return found;
    const QStringList all = OssActionTreeManager::instance()->paths();
    for (const QString &other : all) {
        if (other == normalized || !scopesOverlap(normalized, other))
            continue;
        const QList<QKeySequence> taken = this->keys(other);
        if (std::any_of(taken.cbegin(), taken.cend(),
                        [&keys](const QKeySequence &key) { return clash(key, keys); }))
            found.append(other);
    }
    return found;
}

QString OssShortcutManager::groupOf(const QString &path) const
{
    const QString normalized = OssActionTreeManager::normalizedPath(path);
    const auto assigned = m_groups.constFind(normalized);
    if (assigned != m_groups.cend())
        return *assigned;
    // "/Ossa/NodeGraph/Create/Filter/Blur" is listed under "Node Graph".
    const QString folder = normalized.section(QLatin1Char('/'), 2, 2);
    QString group;
    for (const QChar letter : folder) {
        if (letter.isUpper() && !group.isEmpty() && group.back().isLower())
            group += QLatin1Char(' ');
        group += letter;
    }
    return group;
}

void OssShortcutManager::assignGroup(const QString &path, const QString &group)
{
    m_groups.insert(OssActionTreeManager::normalizedPath(path), group);
}

bool OssShortcutManager::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Shortcut)
        return isCovered(qobject_cast<QAction *>(watched));
    if (event->type() != QEvent::ShortcutOverride)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    // Whom Qt asks may be another than who has the focus, where a part of a window is a native one.
    const QWidget *focus = QApplication::focusWidget();
    const bool takes = isMenu(focus) || isMenu(QApplication::activePopupWidget())
                           ? isMenuKey(*key)
                           : focus == watched && takesText(focus)
                                 && isScopedKey(focus, keysOf(*key));
    if (!takes)
        return false;
    event->accept();
    return true;
}

void OssShortcutManager::onActionRegistered(const QString &path, QAction *action)
{
    if (!m_own.contains(path) && !action->shortcuts().isEmpty() && !m_bound.contains(path))
        m_own.insert(path, action->shortcuts());
    bind(path);
}

void OssShortcutManager::onActionRemoved(const QString &path)
{
    m_bound.remove(path);
    bind(path);
}

void OssShortcutManager::bind(const QString &path)
{
    QAction *action = OssActionTreeManager::instance()->findAction(path);
    if (!action)
        return;
    m_bound.insert(path, action);
    unbind(path, action);
    const Scope *scope = scopeOf(path);
    const bool own = m_own.contains(path) && !isCustomized(path);
    action->setShortcuts(keys(path));
    if (!scope || own) {
        // Without a widget that has the focus a key of this kind is shown and never acts.
        action->setShortcutContext(Qt::WidgetShortcut);
        return;
    }
    action->setShortcutContext(scope->widget->isWindow() ? Qt::ApplicationShortcut
                                                         : Qt::WidgetWithChildrenShortcut);
    const QList<QWidget *> widgets = widgetsOf(path);
    for (QWidget *widget : widgets)
        widget->addAction(action);
}

void OssShortcutManager::unbind(const QString &path, QAction *action) const
{
    for (const Scope &scope : m_scopes) {
        if (scope.widget && action)
            scope.widget->removeAction(action);
    }
    QWidget *reach = m_reaches.value(path);
    if (reach && action)
        reach->removeAction(action);
}

QList<QWidget *> OssShortcutManager::widgetsOf(const QString &path) const
{
    QList<QWidget *> widgets;
    if (const Scope *scope = scopeOf(path))
        widgets.append(scope->widget);
    if (QWidget *reach = m_reaches.value(path))
        widgets.append(reach);
    return widgets;
}

void OssShortcutManager::bindAll()
{
    const QStringList paths = OssActionTreeManager::instance()->paths();
    for (const QString &path : paths)
        bind(path);
}

const OssShortcutManager::Scope *OssShortcutManager::scopeOf(const QString &path) const
{
    const Scope *nearest = nullptr;
    for (const Scope &scope : m_scopes) {
        if (scope.widget && isBelow(path, scope.folder)
            && (!nearest || scope.folder.size() > nearest->folder.size()))
            nearest = &scope;
    }
    return nearest;
}

bool OssShortcutManager::scopesOverlap(const QString &path, const QString &otherPath) const
{
    if (!scopeOf(path) || !scopeOf(otherPath))
        return true;
    const auto contains = [](const QWidget *outer, const QWidget *inner) {
        return outer == inner || outer->isWindow() || outer->isAncestorOf(inner);
    };
    const QWidgetList ones = widgetsOf(path);
    const QWidgetList others = widgetsOf(otherPath);
    return std::any_of(ones.cbegin(), ones.cend(), [&](const QWidget *one) {
        return std::any_of(others.cbegin(), others.cend(), [&](const QWidget *other) {
            return contains(one, other) || contains(other, one);
        });
    });
}

QString OssShortcutManager::disabledCommand(const QKeyEvent &event, const QWidget *focus) const
{
    const QKeySequence pressed = keysOf(event);
    for (auto bound = m_bound.cbegin(); bound != m_bound.cend(); ++bound) {
        const QAction *action = bound.value();
        if (!action || action->isEnabled() || !action->shortcuts().contains(pressed))
            continue;
        const QList<QWidget *> widgets = widgetsOf(bound.key());
        if (widgets.isEmpty()
            || std::any_of(widgets.cbegin(), widgets.cend(), [focus](const QWidget *widget) {
                   return widget->isWindow() || widget == focus || widget->isAncestorOf(focus);
               }))
            return bound.key();
    }
    return {};
}

bool OssShortcutManager::isCovered(QAction *action) const
{
    const QWidget *modal = qobject_cast<QDialog *>(QApplication::activePopupWidget());
    if (!modal)
        modal = QApplication::activeModalWidget();
    if (!modal || !action)
        return false;
    const QString path = m_bound.key(action);
    const QWidgetList widgets = path.isEmpty() ? QWidgetList() : widgetsOf(path);
    return !widgets.isEmpty()
           && std::none_of(widgets.cbegin(), widgets.cend(), [modal](const QWidget *widget) {
                  return widget->isWindow() || modal->isAncestorOf(widget);
              });
}

/// An open menu has all keys. To the menu bar a plain key is an entry's letter, and Qt counts the
/// actions of all menus as the bar's own: keys of scopes, which may stand in several, are not its.
bool OssShortcutManager::isMenuKey(const QKeyEvent &event) const
{
    return isMenu(QApplication::activePopupWidget())
           || !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier))
           || isScopedKey(nullptr, keysOf(event));
}

bool OssShortcutManager::isScopedKey(const QWidget *field, const QKeySequence &keys) const
{
    for (auto bound = m_bound.cbegin(); bound != m_bound.cend(); ++bound) {
        const QWidgetList widgets = bound.value() ? widgetsOf(bound.key()) : QWidgetList();
        if (std::none_of(widgets.cbegin(), widgets.cend(), [field](const QWidget *widget) {
                return !widget->isWindow() && (!field || widget->isAncestorOf(field));
            }))
            continue;
        const QList<QKeySequence> taken = bound.value()->shortcuts();
        if (std::any_of(taken.cbegin(), taken.cend(),
                        [&keys](const QKeySequence &key) { return clash(key, keys); }))
            return true;
    }
    return false;
}

void OssShortcutManager::loadCustomKeys()
{
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    const QStringList stored = settings.allKeys();
    for (const QString &key : stored)
        m_custom.insert(OssActionTreeManager::normalizedPath(key),
                        fromTexts(settings.value(key).toStringList()));
}
