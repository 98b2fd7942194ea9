#include "Dot.h"

#include <sys/resource.h>

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTextStream>

#include <algorithm>
#include <map>

namespace {

constexpr double Inch = 72.0;
constexpr int Timeout = 60000; // milliseconds

double childrenSeconds()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
           + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

/// Ports of a node from top to bottom, by their heights.
using Ports = std::vector<std::map<double, int>>;

QString fields(const std::map<double, int> &ports, QLatin1Char side)
{
    QStringList names;
    for (const auto &port : ports)
        names.append(QStringLiteral("<%1%2>").arg(side).arg(port.second));
    return names.isEmpty() ? QStringLiteral(" ") : names.join(QLatin1Char('|'));
}

Ports portsOf(const OssLyGraph &graph, bool inputs)
{
    Ports ports(graph.nodes.size());
    for (const OssLyWire &wire : graph.wires)
        ports[std::size_t(inputs ? wire.to : wire.from)][inputs ? wire.toY : wire.fromY] = 0;
    for (auto &own : ports) {
        int next = 0;
        for (auto &port : own)
            port.second = next++;
    }
    return ports;
}

bool counts(const OssLyGraph &graph, int node)
{
    return !graph.nodes[std::size_t(node)].looksOnly;
}

void write(const OssLyGraph &graph, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    const Ports inputs = portsOf(graph, true);
    const Ports outputs = portsOf(graph, false);
    const OssLyOptions options;
    QTextStream out(&file);
    out << "digraph { rankdir=LR; nodesep=" << options.rowGap / Inch
        << "; ranksep=" << options.columnGap / Inch << "; node [shape=record, fixedsize=true];\n";
    for (int n = 0; n < int(graph.nodes.size()); ++n) {
        const OssLyRect &rect = graph.nodes[std::size_t(n)].rect;
        if (counts(graph, n))
            out << 'n' << n << " [width=" << rect.width / Inch << ", height=" << rect.height / Inch
                << ", label=\"{{" << fields(inputs[std::size_t(n)], QLatin1Char('i')) << "}|{"
                << fields(outputs[std::size_t(n)], QLatin1Char('o')) << "}}\"];\n";
    }
    for (const OssLyWire &wire : graph.wires) {
        if (counts(graph, wire.from) && counts(graph, wire.to))
            out << 'n' << wire.from << ":o" << outputs[std::size_t(wire.from)].at(wire.fromY)
                << ":e -> n" << wire.to << ":i" << inputs[std::size_t(wire.to)].at(wire.toY)
                << ":w;\n";
    }
    out << "}\n";
}

} // namespace

bool Dot::isInstalled()
{
    return !QStandardPaths::findExecutable(QStringLiteral("dot")).isEmpty();
}

std::vector<OssLyRect> Dot::places(const OssLyGraph &graph, const QString &folder, double *seconds)
{
    const QString source = folder + QStringLiteral("/graph.dot");
    const QString result = folder + QStringLiteral("/graph.plain");
    write(graph, source);
    const double before = childrenSeconds();
    QProcess dot;
    dot.start(QStringLiteral("dot"),
              {QStringLiteral("-Tplain"), source, QStringLiteral("-o"), result});
    if (!dot.waitForFinished(Timeout)) {
        dot.kill();
        dot.waitForFinished();
        return {};
    }
    *seconds = childrenSeconds() - before;
    std::vector<OssLyRect> places;
    for (const OssLyNode &node : graph.nodes)
        places.push_back(node.rect);
    QFile file(result);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QTextStream in(&file);
    while (!in.atEnd()) {
        const QStringList words = in.readLine().split(QLatin1Char(' '));
        if (words.size() < 4 || words.first() != QLatin1String("node"))
            continue;
        OssLyRect &rect = places[std::size_t(words.at(1).mid(1).toInt())];
        rect.x = words.at(2).toDouble() * Inch - rect.width / 2.0;
        rect.y = -words.at(3).toDouble() * Inch - rect.height / 2.0; // upwards there
    }
    return places;
}
