#pragma once

#include <QString>

/// Says that a warning comes while the object lives, which would otherwise fail the test: a line
/// "[ !! ] " of the debug log, or what Qt warns of ("Qt: QPainter::begin: ..."). Takes every such
/// line that contains the text, from any thread; fails the test when a needed one did not come.
/// Where several that live would take a line, all of them have it.
class ExpectedLog
{
public:
    enum Kind { Needed, Possible };

    explicit ExpectedLog(const char *text, Kind kind = Needed);
    ~ExpectedLog();

    ExpectedLog(const ExpectedLog &) = delete;
    ExpectedLog &operator=(const ExpectedLog &) = delete;

    /// Takes the lines with that text that came before now: a test that looked for them in the log
    /// expected them.
    static void takePast(const QString &text);

    /// The unexpected lines so far fail the test now, for one that must know when they came.
    static void failOnUnexpected();

private:
    friend class LogWatch;

    const QString m_text;
    const Kind m_kind;
    bool m_came = false;
};

/// Makes a warning that no test expected a failure of the test during which it came, or, when it
/// came between two, of the later one. For main(), once, when GoogleTest is set up.
void failTestsOnUnexpectedLog();
