#include "OssInterface/Dialogs/OssNodeSearch.h"

#include "OssCore/Values/OssFuzzyMatch.h"
#include "OssCore/Values/OssValueText.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssNodeSearch", text);
}

struct Found
{
    QString why;
    int score = -1;
};

bool isUnconnected(const OssSnBaseNode *node)
{
    const QList<OssSnBaseNode *> sources = node->inputNodes();
    return node->outgoingConnections().isEmpty()
           && std::all_of(sources.cbegin(), sources.cend(),
                          [](const OssSnBaseNode *source) { return !source; });
}

Found byState(const OssSnBaseNode *node, const QString &word)
{
    const struct
    {
        bool holds;
        const char *name;
    } states[] = {
        {!node->enabledAsBool(), "disabled"},           {node->isBypassed(), "bypassed"},
        {node->cacheActive() == CacheActive, "cached"}, {!node->errorText().isEmpty(), "error"},
        {isUnconnected(node), "unconnected"},
    };

    for (const auto &state : states) {
        if (state.holds && word.size() > 2
            && QLatin1String(state.name).startsWith(word, Qt::CaseInsensitive))
            return {tr(state.name), 400};
    }
    return {};
}

Found byAttribute(const OssSnBaseNode *node, const QString &word)
{
    const int sign = word.indexOf(QLatin1Char('='));
    const QString wantedName = sign < 0 ? QString() : word.left(sign);
    const QString wantedValue = sign < 0 ? word : word.mid(sign + 1);
    const QVector<OssCustomAttribute> attributes = node->userAttributes();
    for (const OssCustomAttribute &attribute : attributes) {
        const QString value = OssValueText::toText(attribute.value());
        const bool nameFits = wantedName.isEmpty()
                                  ? sign < 0
                                  : attribute.name().contains(wantedName, Qt::CaseInsensitive);
        if (nameFits && !wantedValue.isEmpty() && value.contains(wantedValue, Qt::CaseInsensitive))
            return {attribute.name() + QStringLiteral(" = ") + value.left(60),
                    sign < 0 ? 100 : 500};
    }
    return {};
}

Found byText(const QString &text, const QString &word, int score)
{
    return text.contains(word, Qt::CaseInsensitive) ? Found{text, score} : Found{};
}

Found findWord(const OssSnBaseNode *node, const QString &word)
{
    const int byName = OssFuzzyMatch::score(word, node->name());
    if (node->name().contains(word, Qt::CaseInsensitive))
        return {node->path(), 2000 + byName};
    for (const Found &found :
         {byState(node, word), byText(node->pathKey(), word, 300), byAttribute(node, word),
          byText(node->description(), word, 200), byText(node->errorText(), word, 200)}) {
        if (found.score >= 0)
            return found;
    }
    // Letters that are scattered over a name are the weakest reason.
    return byName >= 0 ? Found{node->path(), byName / 10} : Found{};
}

} // namespace

QString OssNodeSearch::whyFound(const OssSnBaseNode *node, const QString &text, int *score)
{
    if (score)
        *score = 0;
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return node->path();
    QString why;
    for (const QString &word : words) {
        const Found found = findWord(node, word);
        if (found.score < 0)
            return {};
        if (why.isEmpty() || found.why != node->path())
            why = found.why;
        if (score)
            *score += found.score;
    }
    return why;
}
