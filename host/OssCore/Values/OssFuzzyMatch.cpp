#include "OssCore/Values/OssFuzzyMatch.h"

#include <QVector>

#include <algorithm>

namespace {

constexpr int impossible = -1000000;
constexpr int letterScore = 10;
constexpr int wordStartBonus = 12;
constexpr int neighbourBonus = 9;

bool isWordStart(const QString &text, int index)
{
    if (index == 0)
        return true;
    const QChar before = text.at(index - 1);
    return !before.isLetterOrNumber() || (before.isLower() && text.at(index).isUpper());
}

/// The scores once one more letter is laid on the text; the first may lie anywhere.
QVector<int> layLetter(QChar letter, bool first, const QVector<int> &best, const QString &text,
                       const QString &folded)
{
    QVector<int> next(text.size(), impossible);
    int bestBefore = first ? 0 : impossible;
    for (int i = 0; i < text.size(); ++i) {
        if (folded.at(i) == letter) {
            const int bonus = isWordStart(text, i) ? wordStartBonus : 0;
            const int together = !first && i > 0 ? best.at(i - 1) + neighbourBonus : impossible;
            next[i] = std::max(bestBefore, together) + letterScore + bonus;
        }
        if (!first)
            bestBefore = std::max(bestBefore, best.at(i));
    }
    return next;
}

} // namespace

// The best way to lay the pattern's letters on the text, letter by letter: best[i] is the score of
// what was laid so far if its last letter lies on text[i].
int OssFuzzyMatch::score(const QString &pattern, const QString &text)
{
    QString letters = pattern.toLower();
    letters.remove(QLatin1Char(' '));
    if (letters.isEmpty())
        return 0;
    const QString folded = text.toLower();
    if (folded.size() != text.size())
        return -1; // letters that change their length: no index would fit
    QVector<int> best(text.size(), impossible);
    for (int p = 0; p < letters.size(); ++p)
        best = layLetter(letters.at(p), p == 0, best, text, folded);
    const int top = best.isEmpty() ? impossible : *std::max_element(best.cbegin(), best.cend());
    return top < 0 ? -1 : std::max(0, top * 4 - text.size());
}
