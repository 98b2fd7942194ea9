#include "OssInterface/Properties/OssPropertyRow.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/Properties/OssExpression.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssNodeFiles.h"

#include <QApplication>
#include <QClipboard>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <functional>

namespace {

const QString ValueMimeType = QStringLiteral("application/x-ossa-value");
constexpr int MarkColumn = 13;
constexpr double MarkRadius = 2.5;
const QColor BrokenColor(0xe5, 0x86, 0x8a);

/// The name of an attribute; in front of it a mark when its value is not the default, a ring when
/// the value is linked. A click gives it the keyboard, for commands on the row.
class Label final : public QLabel
{
public:
    Label(const QString &text, QWidget *parent)
        : QLabel(text, parent)
    {
        setTextFormat(Qt::PlainText);
        setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        setFocusPolicy(Qt::ClickFocus);
    }

    // A margin would be taken away by style sheets, and a label's own hint grows with its minimum.
    QSize sizeHint() const override
    {
        const int text = fontMetrics().size(Qt::TextShowMnemonic, this->text()).width();
        return {MarkColumn + text, QLabel::sizeHint().height()};
    }

    QSize minimumSizeHint() const override { return sizeHint(); }

    void setMarks(bool changed, bool linked, bool broken)
    {
        m_changed = changed;
        m_linked = linked;
        m_broken = broken;
        setAccessibleDescription(broken    ? tr("a link is broken")
                                 : changed ? tr("changed")
                                           : QString());
        update();
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QLabel::paintEvent(event);
        if (!m_changed && !m_linked && !hasFocus())
            return;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (hasFocus()) {
            painter.setPen(palette().color(QPalette::Highlight));
            painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 3.0, 3.0);
        }
        const QColor color = m_broken ? BrokenColor : palette().color(QPalette::Link);
        // In the column that the text leaves free, whatever its length and the label's width.
        const QPointF at(MarkRadius + 2.0, height() / 2.0);
        painter.setPen(m_linked ? QPen(color, 1.2) : Qt::NoPen);
        painter.setBrush(m_changed ? QBrush(color) : Qt::NoBrush);
        painter.drawEllipse(at, MarkRadius, MarkRadius);
    }

private:
    bool m_changed = false;
    bool m_linked = false;
    bool m_broken = false;
};

} // namespace

OssPropertyRow::OssPropertyRow(OssSnBaseNode *node, const OssCustomAttribute &attribute,
                               QWidget *parent)
    : QObject(parent)
    , m_node(node)
    , m_name(attribute.name())
    , m_edit(node, attribute.name())
    , m_label(new Label(OssMenu::asTyped(attribute.prettyName()), parent))
    , m_editor(OssPropertyEditor::create(attribute, parent))
{
    m_label->setBuddy(m_editor);
    m_label->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_label, &QWidget::customContextMenuRequested, this,
            [this](const QPoint &at) { openMenu(m_label->mapToGlobal(at)); });
    connect(m_editor, &OssPropertyEditor::edited, this,
            [this](const QVariant &value, const QVector<int> &parts) {
                m_edit.set(value, parts, m_editor->joinKey());
                refresh();
            });
    connect(m_editor, &OssPropertyEditor::stepped, this,
            [this](const QVariant &value, const QVector<int> &parts) {
                m_edit.step(value, parts);
                refresh();
            });
    connect(m_editor, &OssPropertyEditor::dragBegun, this, [this] {
        m_edit.begin(m_editor->joinKey());
        qApp->installEventFilter(this);
    });
    connect(
        m_editor, &OssPropertyEditor::dragged, this,
        [this](const QVariant &value, const QVector<int> &parts) { m_edit.drag(value, parts); });
    connect(m_editor, &OssPropertyEditor::dragEnded, this, [this] {
        qApp->removeEventFilter(this);
        m_edit.end();
        refresh();
    });
    connect(m_editor, &OssPropertyEditor::left, this, &OssPropertyRow::left);
    refresh();
}

OssPropertyRow::~OssPropertyRow() = default;

bool OssPropertyRow::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (!m_edit.isDragging()) {
        // Taken back: the pointer is deaf until its button is let go, or, where that was not told, pressed.
        if (type == QEvent::MouseButtonPress)
            qApp->removeEventFilter(this);
        return type == QEvent::MouseMove && static_cast<QMouseEvent *>(event)->buttons();
    }
    if (type != QEvent::KeyPress && type != QEvent::ShortcutOverride)
        return QObject::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool takesBack = key->key() == Qt::Key_Escape
                           || OssCommandTable::keys(QStringLiteral("/Ossa/Edit/Undo"))
                                  .contains(QKeySequence(key->key() | int(key->modifiers())));
    if (!takesBack)
        return QObject::eventFilter(watched, event);
    event->accept();
    if (type == QEvent::KeyPress) {
        m_edit.takeBack();
        refresh();
    }
    return true;
}

void OssPropertyRow::refresh()
{
    const OssCustomAttribute attribute = m_edit.attribute();
    if (!attribute.isValid())
        return;
    const QString lock = m_edit.lock();
    if (!lock.isEmpty())
        m_edit.end();
    m_label->setText(OssMenu::asTyped(attribute.prettyName()));
    m_editor->setEnabled(lock.isEmpty());
    m_editor->showValue(attribute, m_edit.mixed());
    m_editor->explainChoice(QStringLiteral("Automatic"),
                            OssNodeFiles::automaticSpace(m_node, m_name));
    showMarks(attribute, lock);
}

// --- marks

QString OssPropertyRow::toolTipFor(const OssCustomAttribute &attribute, bool *broken) const
{
    QStringList lines;
    const OssLinkedCustomAttributeManager *linker = OssLinkedCustomAttributeManager::instance();
    if (!attribute.definition().toolTip.isEmpty())
        lines.append(attribute.definition().toolTip);
    if (const auto *group = qobject_cast<const OssSnGroupNode *>(m_node)) {
        const auto links = linker->links(group, m_name);
        for (const auto &link : links) {
            const bool gone = OssLinkedCustomAttributeManager::isBroken(group, m_name, link);
            *broken = *broken || gone;
            lines.append((gone ? tr("Broken link to %1.%2") : tr("Linked to %1.%2"))
                             .arg(link.nodePath, link.attribute));
        }
    }
    const auto knobs = linker->knobsOf(m_node, m_name);
    for (const auto &knob : knobs)
        lines.append(
            tr("Knob \"%1\" of %2")
                .arg(knob.group->userAttribute(knob.name).prettyName(), knob.group->name()));
    return lines.join(QLatin1Char('\n'));
}

void OssPropertyRow::showMarks(const OssCustomAttribute &attribute, const QString &lock)
{
    bool broken = false;
    QString toolTip = toolTipFor(attribute, &broken);
    if (!lock.isEmpty())
        toolTip += (toolTip.isEmpty() ? QString() : QStringLiteral("\n"))
                   + tr("Cannot be edited: %1").arg(lock);
    const bool linked =
        !OssLinkedCustomAttributeManager::instance()->knobsOf(m_node, m_name).isEmpty()
        || attribute.definition().isKnob;
    static_cast<Label *>(m_label)->setMarks(!attribute.isDefault(), linked, broken);
    m_label->setToolTip(toolTip);
    m_editor->setToolTip(toolTip);
}

// --- values

void OssPropertyRow::letGo()
{
    m_edit.letGo();
    m_node = nullptr;
}

bool OssPropertyRow::canEdit() const
{
    return m_node && m_edit.lock().isEmpty();
}

void OssPropertyRow::reset()
{
    if (!canEdit())
        return;
    m_edit.reset();
    refresh();
}

void OssPropertyRow::copyValue() const
{
    auto *data = new QMimeData; // the clipboard takes it
    data->setText(OssAttributeKind::toWords(m_edit.attribute().value()));
    data->setData(ValueMimeType, data->text().toUtf8());
    QApplication::clipboard()->setMimeData(data);
}

QVariant OssPropertyRow::clipboardValue() const
{
    const QMimeData *data = QApplication::clipboard()->mimeData();
    const QString text = data ? data->text().trimmed() : QString();
    const QVariant present = m_edit.attribute().value();
    if (text.isEmpty())
        return {};
    const OssAttributeKind *kind = OssAttributeKind::ofType(present.userType());
    if (!kind || !kind->form.isNumber)
        return OssAttributeKind::fromWords(present, text);
    double number = 0.0;
    return OssExpression::evaluate(text, present.toDouble(), &number)
               ? OssAttributeKind::like(present, number)
               : QVariant();
}

void OssPropertyRow::pasteValue()
{
    const QVariant value = clipboardValue();
    if (!value.isValid() || !canEdit())
        return;
    m_edit.set(value);
    refresh();
}

// --- commands

struct OssPropertyRow::Command
{
    const char *path;
    std::function<void(OssPropertyRow *)> run;
    std::function<bool(const OssPropertyRow *)> isPossible;
    bool isForKnobs = false; ///< unknown to other rows
};

bool OssPropertyRow::canReset() const
{
    return canEdit() && (!m_edit.attribute().isDefault() || m_edit.mixed().any);
}

bool OssPropertyRow::canPaste() const
{
    return canEdit() && clipboardValue().isValid();
}

OssSnGroupNode *OssPropertyRow::knobGroup() const
{
    auto *group = qobject_cast<OssSnGroupNode *>(m_node);
    return group && group->isKnob(m_name) ? group : nullptr;
}

void OssPropertyRow::renameKnob()
{
    if (!canEdit())
        return;
    const QString before = m_edit.attribute().prettyName();
    const QPointer<OssPropertyRow> self(this); // the panel may be made anew meanwhile
    const QString after = QInputDialog::getText(m_label->window(), tr("Rename Knob"),
                                                tr("Name of the knob"), QLineEdit::Normal, before);
    if (self && knobGroup() && !after.isEmpty())
        knobGroup()->renameKnob(m_name, after);
}

const QVector<OssPropertyRow::Command> &OssPropertyRow::commands()
{
    static const QVector<Command> all{
        {"/Ossa/Properties/Reset to Default", &OssPropertyRow::reset, &OssPropertyRow::canReset},
        {"/Ossa/Properties/Copy Value", &OssPropertyRow::copyValue,
         [](const OssPropertyRow *) {
             return true;
         }},
        {"/Ossa/Properties/Paste Value", &OssPropertyRow::pasteValue, &OssPropertyRow::canPaste},
        {"/Ossa/Properties/Rename Knob...", &OssPropertyRow::renameKnob, &OssPropertyRow::canEdit,
         true}};
    return all;
}

QStringList OssPropertyRow::commandPaths()
{
    QStringList paths;
    for (const Command &command : commands())
        paths.append(QLatin1String(command.path));
    return paths;
}

bool OssPropertyRow::run(const QString &path)
{
    for (const Command &command : commands()) {
        if (path == QLatin1String(command.path) && (!command.isForKnobs || knobGroup())) {
            command.run(this);
            return true;
        }
    }
    return false;
}

bool OssPropertyRow::takeKey(const QKeyEvent *event)
{
    const QKeySequence pressed(int(event->modifiers() & ~Qt::KeypadModifier) + event->key());
    const QStringList paths = commandPaths();
    return std::any_of(paths.cbegin(), paths.cend(), [&](const QString &path) {
        return OssShortcutManager::instance()->keys(path).contains(pressed) && run(path);
    });
}

void OssPropertyRow::openMenu(const QPoint &globalPosition)
{
    QMenu menu(m_label);
    for (const Command &command : commands()) {
        if (command.isForKnobs && !knobGroup())
            continue;
        const QString path = QLatin1String(command.path);
        QAction *action = menu.addAction(OssCommandTable::text(*OssCommandTable::find(path)), this,
                                         [this, &command] { command.run(this); });
        action->setShortcuts(OssShortcutManager::instance()->keys(path));
        action->setEnabled(command.isPossible(this));
    }
    menu.insertSeparator(menu.actions().value(1));
    menu.exec(globalPosition);
}
