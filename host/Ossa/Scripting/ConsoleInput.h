#pragma once

#include <QPlainTextEdit>
#include <QStringList>

class QCompleter;
class QStringListModel;

/// Where script lines are typed: grows with its lines, remembers what was entered, offers names.
///
/// Enter runs what is complete and otherwise begins a new line, Shift+Enter begins one always,
/// Ctrl+Enter runs in any case. Up and Down in the first and last line walk through the history,
/// Tab completes.
class ConsoleInput : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit ConsoleInput(QWidget *parent = nullptr);
    ~ConsoleInput() override;

    /// Adds to the history, which keeps the last few hundred, the newest last.
    void remember(const QString &text);

    QStringList history() const { return m_history; }

    void setHistory(const QStringList &history);

    /// What was entered is not complete: goes on in a new line.
    void continueLine();
    /// Names for the text up to the cursor, as OssScriptEngine::completed() gives them.
    void offer(const QString &text, const QStringList &names);

Q_SIGNALS:
    void submitted(const QString &text, bool everything);
    void completionWanted(const QString &text);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    QSize sizeHint() const override;

private:
    QString textToCursor() const;
    void insertCompletion(const QString &name);
    bool walkHistory(int step);
    bool handleTab();
    void fitHeight();

    QCompleter *m_completer;
    QStringListModel *m_names;
    QStringList m_history;
    int m_place = 0; ///< in the history; its size for the text being typed
    QString m_draft; ///< what was being typed when the walk began
};
