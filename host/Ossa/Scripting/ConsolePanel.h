#pragma once

#include <QColor>
#include <QWidget>

class ConsoleInput;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class ScriptEcho;

/// The script console: what scripts print, what the user does by hand as script lines, and an input.
/// The menu of a line that names a node leads to it.
class ConsolePanel : public QWidget
{
    Q_OBJECT

public:
    explicit ConsolePanel(QWidget *parent = nullptr);
    ~ConsolePanel() override;

    void focusInput() const;

    ConsoleInput *input() const { return m_input; }

    QPlainTextEdit *output() const { return m_output; }

private:
    QWidget *makeBar();
    void openOutputMenu(const QPoint &position);
    void submit(const QString &text, bool everything);
    void onStarted(const QString &title);
    void onFinished(int exitCode);
    void follow();
    void append(const QString &text, const QColor &color);

    QPlainTextEdit *m_output;
    ConsoleInput *m_input;
    QLabel *m_state;
    QPushButton *m_run;
    QPushButton *m_stop;
    ScriptEcho *m_echo;
    bool m_lineEnded = false;
    bool m_appending = false;
    bool m_follows = true; ///< the end of the output stays in view
    QString m_submitted;   ///< until it is known whether it is complete
};
