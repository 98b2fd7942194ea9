#include "Ossa/Scripting/ConsoleInput.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBlock>

#include <algorithm>

namespace {

constexpr int mostRemembered = 500;
constexpr int mostLines = 10; // the input grows up to this
const QString indentStep = QStringLiteral("    ");

int startOfWord(const QString &text)
{
    int start = text.size();
    while (start > 0 && (text.at(start - 1).isLetterOrNumber() || text.at(start - 1) == u'_'))
        --start;
    return start;
}

} // namespace

ConsoleInput::ConsoleInput(QWidget *parent)
    : QPlainTextEdit(parent)
    , m_completer(new QCompleter(this))
    , m_names(new QStringListModel(this))
{
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLineWrapMode(NoWrap);
    setTabChangesFocus(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setAccessibleName(tr("Script input"));
    setPlaceholderText(tr("Python, for example: ossa.graph().nodes()"));
    m_completer->setModel(m_names);
    m_completer->setWidget(this);
    m_completer->setCompletionMode(QCompleter::PopupCompletion);
    m_completer->popup()->setFont(font());
    connect(m_completer, QOverload<const QString &>::of(&QCompleter::activated), this,
            &ConsoleInput::insertCompletion);
    connect(this, &QPlainTextEdit::textChanged, this, &ConsoleInput::fitHeight);
    fitHeight();
}

ConsoleInput::~ConsoleInput() = default;

QSize ConsoleInput::sizeHint() const
{
    const int lines = std::min(blockCount(), mostLines);
    constexpr int padding = 3; // the style's
    const int text = lines * fontMetrics().lineSpacing() + int(2 * document()->documentMargin());
    return {200, text + 2 * (frameWidth() + padding)};
}

void ConsoleInput::fitHeight()
{
    setFixedHeight(sizeHint().height());
}

// --- history

void ConsoleInput::remember(const QString &text)
{
    m_history.removeAll(text);
    m_history.append(text);
    while (m_history.size() > mostRemembered)
        m_history.removeFirst();
    m_place = m_history.size();
    m_draft.clear();
}

void ConsoleInput::setHistory(const QStringList &history)
{
    m_history = history;
    m_place = m_history.size();
}

bool ConsoleInput::walkHistory(int step)
{
    const int block = textCursor().blockNumber();
    if (block != (step < 0 ? 0 : blockCount() - 1))
        return false;
    const int place = m_place + step;
    if (place < 0 || place > m_history.size())
        return false;
    if (m_place == m_history.size())
        m_draft = toPlainText();
    m_place = place;
    setPlainText(place == m_history.size() ? m_draft : m_history.at(place));
    // Where a further step the same way goes on.
    moveCursor(QTextCursor::End);
    if (step < 0) {
        moveCursor(QTextCursor::Start);
        moveCursor(QTextCursor::EndOfLine);
    }
    return true;
}

// --- typing

void ConsoleInput::continueLine()
{
    QString line = textCursor().block().text();
    QString indent;
    for (const QChar letter : qAsConst(line)) {
        if (!letter.isSpace())
            break;
        indent += letter;
    }
    if (line.trimmed().endsWith(QLatin1Char(':')))
        indent += indentStep;
    insertPlainText(QLatin1Char('\n') + indent);
    ensureCursorVisible();
}

void ConsoleInput::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (m_completer->popup()->isVisible()
        && (enter || event->key() == Qt::Key_Escape || event->key() == Qt::Key_Tab)) {
        event->ignore(); // the list's
        return;
    }
    if (enter && (event->modifiers() & Qt::ShiftModifier)) {
        continueLine();
    } else if (enter) {
        if (!toPlainText().trimmed().isEmpty())
            Q_EMIT submitted(toPlainText(), event->modifiers() & Qt::ControlModifier);
    } else if ((event->key() == Qt::Key_Tab && handleTab())
               || (event->key() == Qt::Key_Up && walkHistory(-1))
               || (event->key() == Qt::Key_Down && walkHistory(1))) {
        event->accept();
    } else {
        QPlainTextEdit::keyPressEvent(event);
        // A list that is open follows what is typed.
        if (m_completer->popup()->isVisible())
            Q_EMIT completionWanted(textToCursor());
    }
}

// --- completion

QString ConsoleInput::textToCursor() const
{
    return textCursor().block().text().left(textCursor().positionInBlock());
}

bool ConsoleInput::handleTab()
{
    const QString before = textToCursor();
    if (before.trimmed().isEmpty())
        insertPlainText(indentStep);
    else
        Q_EMIT completionWanted(before);
    return true;
}

void ConsoleInput::offer(const QString &text, const QStringList &names)
{
    const bool wasOpen = m_completer->popup()->isVisible();
    if (text != textToCursor() || names.isEmpty()) {
        m_completer->popup()->hide();
        return;
    }
    const QString word = text.mid(startOfWord(text));
    m_names->setStringList(names);
    m_completer->setCompletionPrefix(word);
    if (names.size() == 1 && !wasOpen) {
        insertCompletion(names.first());
        return;
    }
    QAbstractItemView *list = m_completer->popup();
    list->setCurrentIndex(m_completer->completionModel()->index(0, 0));
    QRect place = cursorRect();
    place.setWidth(list->sizeHintForColumn(0) + list->verticalScrollBar()->sizeHint().width() + 12);
    m_completer->complete(place);
}

void ConsoleInput::insertCompletion(const QString &name)
{
    const QString before = textToCursor();
    QTextCursor cursor = textCursor();
    cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor,
                        before.size() - startOfWord(before));
    cursor.insertText(name);
    setTextCursor(cursor);
}
