#include "Ossa/Scripting/ScriptText.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssNumberText.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"

namespace {

QString tuple(const QVariantList &numbers)
{
    QStringList texts;
    for (const QVariant &one : numbers)
        texts.append(OssNumberText::of(one.toDouble()));
    return QLatin1Char('(') + texts.join(QStringLiteral(", ")) + QLatin1Char(')');
}

} // namespace

QString ScriptText::text(const QString &value)
{
    QString escaped;
    for (const QChar letter : value) {
        if (letter == u'\\' || letter == u'"')
            escaped += QLatin1Char('\\') + letter;
        else if (letter == u'\n')
            escaped += QLatin1String("\\n");
        else if (letter.category() == QChar::Other_Control)
            escaped += QStringLiteral("\\x%1").arg(letter.unicode(), 2, 16, QLatin1Char('0'));
        else
            escaped += letter;
    }
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

QString ScriptText::list(const QStringList &expressions)
{
    return QLatin1Char('[') + expressions.join(QStringLiteral(", ")) + QLatin1Char(']');
}

QString ScriptText::value(const QVariant &value)
{
    const QVariant plain = OssAttributeKind::plain(value);
    switch (plain.userType()) {
    case QMetaType::Bool:
        return plain.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Int:
        return plain.toString();
    case QMetaType::Double:
        return OssNumberText::of(plain.toDouble());
    case QMetaType::QString:
        return text(plain.toString());
    case QMetaType::QVariantList:
        return tuple(plain.toList());
    case QMetaType::QStringList: {
        QStringList texts;
        const QStringList entries = plain.toStringList();
        for (const QString &entry : entries)
            texts.append(text(entry));
        return list(texts);
    }
    default:
        return {};
    }
}

QString ScriptText::graph(const OssShaderNetwork *network)
{
    const OssSnGroupNode *group = network->parentGroupNode();
    return group ? node(group->path()) + QStringLiteral(".inside()")
                 : QStringLiteral("ossa.graph()");
}

QString ScriptText::node(const QString &path)
{
    // A node of the root graph goes by its name.
    const bool inRoot = path.count(QLatin1Char('/')) == 1;
    return QStringLiteral("ossa.graph().node(%1)").arg(text(inRoot ? path.mid(1) : path));
}

QString ScriptText::createNode(const OssSnBaseNode *node)
{
    return QStringLiteral("%1.createNode(%2, %3)")
        .arg(graph(node->network()), text(node->pathKey()), text(node->name()));
}

QString ScriptText::setAttribute(const QString &path, const QString &attribute,
                                 const QVariant &value)
{
    const QString written = ScriptText::value(value);
    if (written.isEmpty())
        return {};
    return QStringLiteral("%1.setAttribute(%2, %3)").arg(node(path), text(attribute), written);
}
