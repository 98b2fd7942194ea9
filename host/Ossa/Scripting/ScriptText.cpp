#include "Ossa/Scripting/ScriptText.h"

#include "OssCore/OssColor.h"
#include "OssCore/OssUserEnum.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"

#include <QLocale>
#include <QPointF>
#include <QSizeF>

namespace {

QString number(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString tuple(const QVector<double> &numbers)
{
    QStringList texts;
    for (const double one : numbers)
        texts.append(number(one));
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
    const int type = value.userType();
    if (type == qMetaTypeId<OssUserEnum>())
        return text(value.value<OssUserEnum>().currentName());
    if (type == qMetaTypeId<OssColor>()) {
        const auto color = value.value<OssColor>();
        return tuple({color.red(), color.green(), color.blue(), color.alpha()});
    }
    switch (type) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Int:
    case QMetaType::LongLong:
        return value.toString();
    case QMetaType::Float:
    case QMetaType::Double:
        return number(value.toDouble());
    case QMetaType::QString:
        return text(value.toString());
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return tuple({value.toPointF().x(), value.toPointF().y()});
    case QMetaType::QSizeF:
        return tuple({value.toSizeF().width(), value.toSizeF().height()});
    case QMetaType::QStringList: {
        QStringList texts;
        const QStringList entries = value.toStringList();
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
