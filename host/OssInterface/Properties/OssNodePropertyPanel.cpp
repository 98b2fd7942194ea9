#include "OssInterface/Properties/OssNodePropertyPanel.h"

#include "OssCore/Program/OssIcon.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssInterface/Properties/OssPortOrder.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "OssInterface/Properties/OssPropertyRow.h"
#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssInterface/Widgets/OssFormLayout.h"
#include "OssInterface/Widgets/OssMiniButton.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssFilePath.h"

#include <QApplication>
#include <QClipboard>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// View state of a node that outlives its panels.
constexpr const char *PinnedProperty = "_propertiesPinned";
const QString ValuesMimeType = QStringLiteral("application/x-ossa-values");

bool isShown(const OssCustomAttribute &attribute)
{
    return attribute.isVisible() && !attribute.name().startsWith(QLatin1Char('_'));
}

OssFormLayout *makeForm(QWidget *body)
{
    auto *form = new OssFormLayout(body);
    form->setContentsMargins(4, 4, 4, 6);
    form->setVerticalSpacing(4);
    return form;
}

} // namespace

OssNodePropertyPanel::OssNodePropertyPanel(OssSnBaseNode *node,
                                           const OssPropertyPanelOptions &options, QWidget *parent)
    : OssExpandableListWidget(options.title.isEmpty() ? node->name() : options.title, parent)
    , m_node(node)
{
    setAccessibleName(tr("Properties of %1").arg(node->name()));
    makeHeading();
    setBody(makeBody(options));
    followNode(options.title.isEmpty());
    followSelection();
    showLock();
    refreshTargets();
    // Colours are shown as a screen has them.
    connect(OssColorManagement::instance(), &OssColorManagement::changed, this,
            &OssNodePropertyPanel::refreshRows);
}

OssNodePropertyPanel::~OssNodePropertyPanel() = default;

// --- making

void OssNodePropertyPanel::makeHeading()
{
    describe();
    m_others = new QLabel(this);
    m_others->setObjectName(QStringLiteral("Muted"));
    m_others->hide();
    m_lock = makeButton(QStringLiteral("Lock.png"), tr("Lock the values"), isLocked());
    m_pin = makeButton(QStringLiteral("Pin.png"), tr("Keep this panel when others open"),
                       isPinned());
    heading()->insertWidget(-1, m_others);
    heading()->insertWidget(-1, m_lock);
    heading()->insertWidget(-1, m_pin);
    QAbstractButton *close = makeButton(QStringLiteral("Close.png"), tr("Close this panel"), false);
    close->setCheckable(false);
    heading()->insertWidget(-1, close);
    connect(close, &QAbstractButton::clicked, this, &QWidget::close);
    connect(m_lock, &QAbstractButton::clicked, this, &OssNodePropertyPanel::setLocked);
    connect(m_pin, &QAbstractButton::toggled, this, &OssNodePropertyPanel::setPinned);
    heading()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(heading(), &QWidget::customContextMenuRequested, this,
            [this](const QPoint &at) { openMenu(heading()->mapToGlobal(at)); });
}

void OssNodePropertyPanel::describe()
{
    QStringList lines;
    if (m_node->nodeType())
        lines.append(m_node->nodeType()->description);
    lines.append(m_node->description());
    lines.removeAll(QString());
    heading()->setDescription(lines.join(QLatin1Char('\n')));
}

QAbstractButton *OssNodePropertyPanel::makeButton(const QString &icon, const QString &toolTip,
                                                  bool checked)
{
    auto *button = new OssMiniButton(QString(), this);
    button->setIcon(OssIcon::createIconFromFilename(icon));
    button->setIconSize({12, 12});
    button->setCheckable(true);
    button->setChecked(checked);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    return button;
}

QVector<OssNodePropertyPanel::Section> OssNodePropertyPanel::sections(
    const OssPropertyPanelOptions &options) const
{
    QVector<Section> found;
    for (const OssCustomAttribute &attribute : m_node->userAttributes()) {
        if (!isShown(attribute) || options.hiddenSections.contains(attribute.group()))
            continue;
        auto section = std::find_if(found.begin(), found.end(), [&attribute](const Section &s) {
            return s.title == attribute.group();
        });
        if (section == found.end())
            section = found.insert(found.end(), {attribute.group(), {}});
        section->attributes.append(attribute.name());
    }
    if (options.orderSections) {
        const auto place = [&options](const Section &section) {
            int index = 0;
            for (const QRegularExpression &pattern : options.sectionOrder) {
                const QRegularExpression whole(
                    QRegularExpression::anchoredPattern(pattern.pattern()));
                if (whole.match(section.title).hasMatch())
                    return index;
                ++index;
            }
            return section.title.isEmpty() ? -1 : index;
        };
        std::stable_sort(found.begin(), found.end(), [&place](const Section &a, const Section &b) {
            return place(a) < place(b);
        });
    }
    return found;
}

QWidget *OssNodePropertyPanel::makeBody(const OssPropertyPanelOptions &options)
{
    auto *body = new QWidget(this);
    auto *layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 2, 4, 4);
    layout->setSpacing(2);
    if (options.showNodeProperties)
        addNodeSection(options, layout);
    const QVector<Section> all = sections(options);
    for (const Section &section : all) {
        if (section.attributes.isEmpty())
            continue;
        auto *rows = new QWidget(body);
        OssFormLayout *form = makeForm(rows);
        for (const QString &attribute : section.attributes)
            addRow(attribute, form, rows);
        if (section.title.isEmpty()) {
            layout->addWidget(rows);
            continue;
        }
        auto *list = new OssExpandableListWidget(section.title, body);
        list->setBody(rows);
        layout->addWidget(list);
        if (options.foldUntouchedSections && !isTouched(section))
            list->collapse();
    }
    if (auto *group = qobject_cast<OssSnGroupNode *>(m_node)) {
        auto *list = new OssExpandableListWidget(tr("Ports"), body);
        list->setBody(new OssPortOrder(group, list));
        list->collapse();
        layout->addWidget(list);
    } else if (m_rows.isEmpty() && !options.showNodeProperties) {
        auto *none = new QLabel(tr("This node has no properties"), body);
        none->setObjectName(QStringLiteral("Muted"));
        none->setContentsMargins(8, 4, 8, 6);
        layout->addWidget(none);
    }
    return body;
}

bool OssNodePropertyPanel::isTouched(const Section &section) const
{
    return std::any_of(
        section.attributes.cbegin(), section.attributes.cend(),
        [this](const QString &name) { return !m_node->userAttribute(name).isDefault(); });
}

void OssNodePropertyPanel::addRow(const QString &attribute, OssFormLayout *form, QWidget *parent)
{
    auto *row = new OssPropertyRow(m_node, m_node->userAttribute(attribute), parent);
    m_rows.insert(attribute, row);
    form->addRow(row->label(), row->editor());
    connect(row, &OssPropertyRow::left, this, &OssNodePropertyPanel::left);
}

void OssNodePropertyPanel::addNodeSection(const OssPropertyPanelOptions &options,
                                          QVBoxLayout *layout)
{
    for (int i = 0; i < options.nodeProperties.size(); ++i) {
        if (options.nodeProperties.at(i) != QLatin1String("name"))
            continue;
        const QString title = options.nodePropertyPaths.value(i).section(QLatin1Char('/'), -1);
        auto *list = new OssExpandableListWidget(title.isEmpty() ? tr("Node") : title, this);
        auto *rows = new QWidget(list);
        auto *name = new QLineEdit(m_node->name(), rows);
        name->setAccessibleName(tr("Name"));
        m_name = name;
        makeForm(rows)->addRow(tr("Name"), name);
        list->setBody(rows);
        layout->addWidget(list);
        connect(name, &QLineEdit::editingFinished, this, [this, name] {
            if (!m_node)
                return;
            m_node->setName(name->text());
            name->setText(m_node->name());
        });
        connect(name, &QLineEdit::returnPressed, this, &OssNodePropertyPanel::left);
        connect(m_node, &OssSnBaseNode::nameChanged, name, &QLineEdit::setText);
    }
}

// --- following

void OssNodePropertyPanel::followNode(bool title)
{
    connect(m_node, &OssSerializableObject::userAttributeChanged, this,
            &OssNodePropertyPanel::refreshRow);
    connect(m_node, &OssSnBaseNode::nodeAttributePrettyNameChanged, this,
            &OssNodePropertyPanel::refreshRow);
    connect(m_node, &OssSnBaseNode::nameChanged, this, [this, title](const QString &name) {
        if (title)
            heading()->setText(name);
        setAccessibleName(tr("Properties of %1").arg(name));
    });
    connect(m_node, &OssSnBaseNode::descriptionChanged, this, &OssNodePropertyPanel::describe);
    connect(m_node, &OssSnBaseNode::lockedChanged, this, &OssNodePropertyPanel::showLock);
    connect(OssLinkedCustomAttributeManager::instance(),
            &OssLinkedCustomAttributeManager::linksChanged, this,
            &OssNodePropertyPanel::refreshLinked);
}

void OssNodePropertyPanel::followSelection()
{
    connect(m_node, &OssSerializableObject::selectedChanged, this,
            &OssNodePropertyPanel::refreshTargets);
    connect(m_node, &OssSnBaseNode::lockedChanged, this, &OssNodePropertyPanel::refreshTargets);
    if (const OssShaderNetwork *network = m_node->network()) {
        connect(network, &OssShaderNetwork::selectionChanged, this,
                &OssNodePropertyPanel::refreshLater);
        connect(network, &OssShaderNetwork::nodesChanged, this,
                &OssNodePropertyPanel::refreshLater);
    }
}

void OssNodePropertyPanel::refreshLater()
{
    if (m_refreshes || !m_node || (!m_node->selected() && m_followed.isEmpty()))
        return;
    m_refreshes = true;
    QMetaObject::invokeMethod(this, &OssNodePropertyPanel::refreshTargets, Qt::QueuedConnection);
}

void OssNodePropertyPanel::refreshRow(const QString &attribute)
{
    if (OssPropertyRow *changed = row(attribute))
        changed->refresh();
    // Of a file depends what others come to.
    // What others come to depends on files, and on how they are understood.
    const OssCustomAttribute edited = m_node ? m_node->userAttribute(attribute)
                                             : OssCustomAttribute();
    if (OssFilePath::isHeldBy(edited) || edited.definition().editor == QLatin1String("colorspace"))
        refreshRows();
}

void OssNodePropertyPanel::refreshRows()
{
    for (OssPropertyRow *row : qAsConst(m_rows))
        row->refresh();
}

void OssNodePropertyPanel::refreshLinked(const OssSnGroupNode *group, const QString &knob)
{
    if (!m_node)
        return;
    if (m_node == group)
        refreshRow(knob);
    const auto links = OssLinkedCustomAttributeManager::instance()->links(group, knob);
    for (const auto &link : links) {
        if (link.node == m_node)
            refreshRow(link.attribute);
    }
}

void OssNodePropertyPanel::refreshTargets()
{
    m_refreshes = false;
    if (!m_node)
        return;
    const QList<OssSnBaseNode *> partners = OssAttributeEdit::partners(m_node);
    if (partners.isEmpty() && m_followed.isEmpty())
        return;
    for (const QPointer<OssSnBaseNode> &node : qAsConst(m_followed)) {
        if (node)
            node->disconnect(this);
    }
    m_followed.clear();
    // Those that are locked may be unlocked.
    for (OssSnBaseNode *node : partners) {
        connect(node, &OssSerializableObject::userAttributeChanged, this,
                &OssNodePropertyPanel::refreshLater);
        connect(node, &OssSnBaseNode::lockedChanged, this, &OssNodePropertyPanel::refreshLater);
        m_followed.append(node);
    }
    const int others = isLocked() ? 0 : OssAttributeEdit::targets(m_node).size() - 1;
    m_others->setText(tr("and %n more", "", others));
    m_others->setToolTip(tr("Edits go to all selected nodes of this type"));
    m_others->setVisible(others > 0);
    refreshRows();
}

// --- lock and pin

void OssNodePropertyPanel::letGo()
{
    if (m_node)
        m_node->disconnect(this);
    for (OssPropertyRow *row : qAsConst(m_rows))
        row->letGo();
    m_node = nullptr;
}

bool OssNodePropertyPanel::isLocked() const
{
    return m_node && m_node->isLocked();
}

void OssNodePropertyPanel::setLocked(bool locked)
{
    if (m_node)
        m_node->setLocked(locked);
}

void OssNodePropertyPanel::showLock()
{
    m_lock->setChecked(isLocked());
    m_lock->setToolTip(isLocked() ? tr("Unlock the values") : tr("Lock the values"));
    // What is disabled under the keyboard hands it to whatever comes next.
    const QWidget *focus = QApplication::focusWidget();
    if (isLocked() && (focusedRow() || (focus && focus == m_name)))
        Q_EMIT left();
    if (m_name)
        m_name->setEnabled(!isLocked());
    for (OssPropertyRow *row : qAsConst(m_rows))
        row->refresh();
}

bool OssNodePropertyPanel::isPinned() const
{
    return m_node && m_node->property(PinnedProperty).toBool();
}

void OssNodePropertyPanel::setPinned(bool pinned)
{
    if (!m_node)
        return;
    m_node->setProperty(PinnedProperty, pinned);
    m_pin->setChecked(pinned);
}

// --- all values

void OssNodePropertyPanel::copyValues() const
{
    if (!m_node)
        return;
    QJsonObject values;
    for (const OssCustomAttribute &attribute : m_node->userAttributes())
        values.insert(attribute.name(), OssAttributeKind::toWords(attribute.value()));
    const QByteArray text = QJsonDocument(values).toJson();
    auto *mime = new QMimeData; // the clipboard takes it
    mime->setText(QString::fromUtf8(text));
    mime->setData(ValuesMimeType, text);
    QApplication::clipboard()->setMimeData(mime);
}

void OssNodePropertyPanel::pasteValues()
{
    const QMimeData *mime = QApplication::clipboard()->mimeData();
    if (!m_node || isLocked() || !mime || !mime->hasFormat(ValuesMimeType))
        return;
    const QJsonObject values = QJsonDocument::fromJson(mime->data(ValuesMimeType)).object();
    const OssUndoManager::AutoMacro macro(tr("Paste Values to %1").arg(m_node->name()));
    const QList<OssSnBaseNode *> nodes = OssAttributeEdit::targets(m_node);
    for (OssSnBaseNode *node : nodes) {
        const QVector<OssCustomAttribute> attributes = node->userAttributes();
        for (const OssCustomAttribute &attribute : attributes) {
            if (!values.contains(attribute.name()))
                continue;
            const QString text = values.value(attribute.name()).toString();
            const QVariant value = OssAttributeKind::fromWords(attribute.value(), text);
            if (value.isValid() && node->lockOf(attribute.name()).isEmpty())
                node->setAttribute(attribute.name(), value);
        }
    }
}

void OssNodePropertyPanel::resetValues()
{
    if (!m_node || isLocked())
        return;
    const OssUndoManager::AutoMacro macro(tr("Reset %1").arg(m_node->name()));
    for (OssPropertyRow *row : qAsConst(m_rows))
        row->reset();
}

void OssNodePropertyPanel::openMenu(const QPoint &position)
{
    const QMimeData *mime = QApplication::clipboard()->mimeData();
    QMenu menu(this);
    addWays(&menu);
    menu.addSeparator();
    menu.addAction(tr("Copy All Values"), this, &OssNodePropertyPanel::copyValues);
    QAction *paste = menu.addAction(tr("Paste All Values"), this,
                                    &OssNodePropertyPanel::pasteValues);
    paste->setEnabled(!isLocked() && mime && mime->hasFormat(ValuesMimeType));
    menu.addSeparator();
    menu.addAction(tr("Reset All to Default"), this, &OssNodePropertyPanel::resetValues)
        ->setEnabled(!isLocked());
    menu.addSeparator();
    menu.addAction(tr("Close"), this, &QWidget::close);
    menu.exec(position);
}

// --- keys

OssPropertyRow *OssNodePropertyPanel::focusedRow() const
{
    const QWidget *focus = window()->focusWidget();
    for (OssPropertyRow *row : m_rows) {
        if (focus
            && (row->label() == focus || row->editor() == focus
                || row->editor()->isAncestorOf(focus)))
            return row;
    }
    return nullptr;
}

OssPropertyRow *OssNodePropertyPanel::rowWithKeyboard()
{
    for (const QWidget *widget = QApplication::focusWidget(); widget;
         widget = widget->parentWidget()) {
        if (const auto *panel = qobject_cast<const OssNodePropertyPanel *>(widget))
            return panel->focusedRow();
    }
    return nullptr;
}

void OssNodePropertyPanel::keyPressEvent(QKeyEvent *event)
{
    OssPropertyRow *row = focusedRow();
    const int key = event->key();
    if (row && row->takeKey(event))
        return;
    const bool wantsMenu = key == Qt::Key_Menu
                           || (event->modifiers() == Qt::ShiftModifier && key == Qt::Key_F10);
    if (row && wantsMenu)
        row->openMenu(row->label()->mapToGlobal({0, row->label()->height()}));
    else if (wantsMenu)
        openMenu(heading()->mapToGlobal({0, heading()->height()}));
    else
        OssExpandableListWidget::keyPressEvent(event);
}

void OssNodePropertyPanel::closeEvent(QCloseEvent *event)
{
    if (isAncestorOf(QApplication::focusWidget()))
        Q_EMIT left();
    OssExpandableListWidget::closeEvent(event);
}
