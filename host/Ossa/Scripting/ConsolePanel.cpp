#include "Ossa/Scripting/ConsolePanel.h"

#include "Ossa/Common/NodeMention.h"
#include "Ossa/Common/Theme.h"
#include "Ossa/Scripting/ConsoleInput.h"
#include "Ossa/Scripting/ScriptEcho.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssScripting/OssScriptEngine.h"

#include <QAction>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>

#include <algorithm>
#include <memory>

namespace {

constexpr int mostLines = 10000;
constexpr int mostLetters = 10000; // of a line
const QString historyKey = QStringLiteral("ScriptConsole/History");
const QString runFileCommand = QStringLiteral("/Ossa/Script/Run File...");
const QString echoKey = QStringLiteral("ScriptConsole/Echo");

/// ">>> " before the first line, "... " before the others.
QString withPrompts(const QString &text)
{
    QString lines = text;
    lines.replace(QLatin1Char('\n'), QLatin1String("\n... "));
    return QStringLiteral(">>> ") + lines + QLatin1Char('\n');
}

/// What the output can lay out at once: its last lines, cut where they are very long. `used` letters
/// stand before the first one.
QString legible(const QString &text, int used)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    if (lines.size() > mostLines)
        lines.erase(lines.begin(), lines.end() - mostLines);
    for (QString &line : lines) {
        const int room = std::max(mostLetters - used, 0);
        if (line.size() > room)
            line = line.left(room) + (room > 0 ? QStringLiteral("\u2026") : QString());
        used = 0;
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

ConsolePanel::ConsolePanel(QWidget *parent)
    : QWidget(parent)
    , m_output(new QPlainTextEdit(this))
    , m_input(new ConsoleInput(this))
    , m_state(new QLabel(this))
    , m_run(new QPushButton(tr("Run File..."), this))
    , m_stop(new QPushButton(tr("Stop"), this))
    , m_echo(new ScriptEcho(this))
{
    m_output->setReadOnly(true);
    OssScriptEngine::keepUsable(m_output);
    m_output->setMaximumBlockCount(mostLines);
    m_output->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_output->setAccessibleName(tr("Script output"));
    m_output->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_output->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_output, &QWidget::customContextMenuRequested, this, &ConsolePanel::openOutputMenu);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(makeBar());
    layout->addWidget(m_output, 1);
    layout->addWidget(m_input);
    setFocusProxy(m_input);
    follow();

    OssScriptEngine *engine = OssScriptEngine::instance();
    connect(engine, &OssScriptEngine::started, this, &ConsolePanel::onStarted);
    connect(engine, &OssScriptEngine::finished, this, &ConsolePanel::onFinished);
    connect(engine, &OssScriptEngine::outputWritten, this, [this](const QString &text, bool error) {
        append(text, error ? Theme::warningText() : palette().color(QPalette::Text));
    });
    connect(engine, &OssScriptEngine::inputIncomplete, this, [this] {
        m_submitted.clear();
        m_input->continueLine();
    });
    connect(engine, &OssScriptEngine::completed, m_input, &ConsoleInput::offer);
    connect(m_input, &ConsoleInput::completionWanted, engine, &OssScriptEngine::complete);
    connect(m_input, &ConsoleInput::submitted, this, &ConsolePanel::submit);
    connect(m_echo, &ScriptEcho::line, this,
            [this](const QString &text) { append(text + QLatin1Char('\n'), Theme::mutedText()); });
    m_input->setHistory(OssSettings().value(historyKey).toStringList());
}

ConsolePanel::~ConsolePanel() = default;

QWidget *ConsolePanel::makeBar()
{
    auto *bar = new QWidget(this);
    auto *clear = new QPushButton(tr("Clear"), bar);
    auto *echo = new QPushButton(tr("Echo Edits"), bar);
    echo->setCheckable(true);
    echo->setToolTip(tr("Show what is done by hand as script lines that do the same"));
    m_run->setToolTip(tr("Run a Python file as a script of its own"));
    m_stop->setToolTip(tr("Stop the running script (Esc)"));
    m_stop->setEnabled(false);
    m_state->setForegroundRole(QPalette::PlaceholderText);
    OssScriptEngine::keepUsable(m_stop);
    connect(m_run, &QPushButton::clicked, this, [] {
        if (QAction *run = OssActionTreeManager::instance()->findAction(runFileCommand))
            run->trigger();
    });
    connect(m_stop, &QPushButton::clicked, OssScriptEngine::instance(), &OssScriptEngine::stop);
    connect(clear, &QPushButton::clicked, this, [this] {
        m_output->clear();
        m_lineEnded = false;
    });
    connect(echo, &QPushButton::toggled, this, [this](bool on) { m_echo->setEnabled(on); });
    echo->setChecked(OssSettings().value(echoKey, true).toBool());
    connect(echo, &QPushButton::toggled, this,
            [](bool on) { OssSettings().setValue(echoKey, on); });
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_run);
    layout->addWidget(m_stop);
    layout->addWidget(m_state, 1);
    layout->addWidget(echo);
    layout->addWidget(clear);
    return bar;
}

void ConsolePanel::submit(const QString &text, bool everything)
{
    m_submitted = OssScriptEngine::instance()->runInput(text, everything) ? text : QString();
}

void ConsolePanel::openOutputMenu(const QPoint &position)
{
    const std::unique_ptr<QMenu> menu(m_output->createStandardContextMenu(position));
    // What an error says is in its last line, which names the node.
    OssSnBaseNode *node = NodeMention::find(m_output->cursorForPosition(position).block().text());
    QAction *before = menu->actions().value(0);
    auto *goTo = new QAction(
        node ? tr("Go to %1").arg(OssMenu::asTyped(node->name())) : tr("Go to Node"), menu.get());
    goTo->setEnabled(node);
    const QPointer<OssSnBaseNode> target(node);
    connect(goTo, &QAction::triggered, this,
            [target] { OssShaderNetworkManager::instance()->goToNode(target); });
    menu->insertAction(before, goTo);
    menu->insertSeparator(before);
    menu->exec(m_output->viewport()->mapToGlobal(position));
}

void ConsolePanel::focusInput() const
{
    m_input->setFocus(Qt::OtherFocusReason);
}

void ConsolePanel::onStarted(const QString &title)
{
    m_echo->setScriptRunning(true);
    if (!m_submitted.isEmpty()) {
        m_follows = true; // wherever the user had scrolled to
        append(withPrompts(m_submitted), palette().color(QPalette::Link));
        m_input->remember(m_submitted);
        OssSettings().setValue(historyKey, m_input->history());
        m_input->clear();
        m_submitted.clear();
    } else {
        append(QStringLiteral("# ") + title + QLatin1Char('\n'), Theme::mutedText());
    }
    m_state->setText(title);
    m_stop->setEnabled(true);
    m_run->setEnabled(false);
}

void ConsolePanel::onFinished(int exitCode)
{
    if (exitCode != 0 && !isVisible())
        OssStatusManager::instance()->showMessage(
            tr("The script failed; the Script Console says why"));
    m_echo->setScriptRunning(false);
    m_state->clear();
    m_stop->setEnabled(false);
    m_run->setEnabled(true);
}

void ConsolePanel::follow()
{
    // The user scrolls away, and back to the end; what the output does to its bar says nothing.
    QScrollBar *bar = m_output->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) {
        if (!m_appending)
            m_follows = value == bar->maximum();
    });
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar] {
        if (m_follows && !m_appending)
            bar->setValue(bar->maximum());
    });
}

void ConsolePanel::append(const QString &text, const QColor &color)
{
    m_appending = true;
    QTextCursor cursor(m_output->document());
    cursor.movePosition(QTextCursor::End);
    QTextCharFormat format;
    format.setForeground(color);
    // A line ends when the next one begins, so that the last one shows at the bottom.
    const bool endsLine = text.endsWith(QLatin1Char('\n'));
    if (m_lineEnded)
        cursor.insertText(QStringLiteral("\n"), format);
    cursor.insertText(legible(endsLine ? text.chopped(1) : text, cursor.positionInBlock()), format);
    m_lineEnded = endsLine;
    m_appending = false;
    QScrollBar *bar = m_output->verticalScrollBar();
    if (m_follows)
        bar->setValue(bar->maximum());
}
