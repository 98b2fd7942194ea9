#include "OssNodeGraph/Items/OssNgPortList.h"

#include <algorithm>

OssNgPortList::OssNgPortList() = default;
OssNgPortList::~OssNgPortList() = default;

OssNgPortList::Given &OssNgPortList::given()
{
    if (!m_given)
        m_given = std::make_unique<Given>();
    return *m_given;
}

int OssNgPortList::indexOf(const QString &name, int hint) const
{
    if (hint >= 0 && hint < m_ports.size() && m_ports[hint].name == name)
        return hint;
    for (int i = 0; i < m_ports.size(); ++i) {
        if (m_ports[i].name == name)
            return i;
    }
    return -1;
}

const OssNgPort *OssNgPortList::find(const QString &name) const
{
    const int index = indexOf(name);
    return index < 0 ? nullptr : &m_ports[index];
}

QStringList OssNgPortList::names() const
{
    QStringList names;
    for (const OssNgPort &port : m_ports)
        names.append(port.name);
    return names;
}

const OssNgPort *OssNgPortList::nearest(const QPointF &local, qreal reach) const
{
    const OssNgPort *best = nullptr;
    qreal nearest = reach * reach;
    for (const OssNgPort &port : m_ports) {
        if (!port.listed)
            continue;
        const QPointF away = port.position - local;
        const qreal squared = QPointF::dotProduct(away, away);
        if (squared > nearest)
            continue;
        nearest = squared;
        best = &port;
    }
    return best;
}

OssNgPort &OssNgPortList::add(const QString &name)
{
    const int index = indexOf(name);
    if (index >= 0)
        return m_ports[index];
    OssNgPort port;
    port.name = name;
    applyKind(port);
    m_ports.append(port);
    return m_ports.last();
}

void OssNgPortList::arrange(const QStringList &names)
{
    QHash<QString, int> places;
    for (const QString &name : names) {
        places.insert(name, places.size());
        add(name);
    }
    // Ports that are named change places among themselves.
    QVector<int> indexes;
    QVector<OssNgPort> named;
    for (int i = 0; i < m_ports.size(); ++i) {
        if (!places.contains(m_ports[i].name))
            continue;
        indexes.append(i);
        named.append(m_ports[i]);
    }
    std::stable_sort(named.begin(), named.end(), [&places](const OssNgPort &a, const OssNgPort &b) {
        return places.value(a.name) < places.value(b.name);
    });
    for (int i = 0; i < named.size(); ++i)
        m_ports[indexes[i]] = named[i];
}

bool OssNgPortList::remove(const QString &name)
{
    const int index = indexOf(name);
    if (index < 0)
        return false;
    m_ports.removeAt(index);
    if (m_given) { // names are in the order of the ports
        for (QStringList *names : {&m_given->descriptiveNames, &m_given->prettyNames}) {
            if (index < names->size())
                names->removeAt(index);
        }
    }
    return true;
}

bool OssNgPortList::rename(const QString &oldName, const QString &newName)
{
    const int index = indexOf(oldName);
    if (index < 0 || indexOf(newName) >= 0)
        return false;
    m_ports[index].name = newName;
    if (m_given && m_given->kinds.contains(oldName))
        m_given->kinds.insert(newName, m_given->kinds.take(oldName));
    return true;
}

QString OssNgPortList::calledName(int index) const
{
    if (m_given) {
        const QString descriptive = m_given->descriptiveNames.value(index);
        const QString name = descriptive.isEmpty() ? m_given->prettyNames.value(index)
                                                   : descriptive;
        if (!name.isEmpty())
            return name;
    }
    return m_ports[index].name;
}

QString OssNgPortList::label(int index, const QString &row) const
{
    const QString &text = m_ports[index].text;
    if (!text.isEmpty())
        return text;
    return row.isEmpty() ? calledName(index) : row;
}

void OssNgPortList::applyKind(OssNgPort &port) const
{
    if (!m_given)
        return;
    const int kind = m_given->kinds.value(port.name, int(OssNgPortKind::Color));
    port.kind = OssNgPortKind(std::clamp(kind, 0, int(OssNgPortKind::Data)));
}

void OssNgPortList::setKinds(const QHash<QString, int> &kinds)
{
    given().kinds = kinds;
    for (OssNgPort &port : m_ports)
        applyKind(port);
}

void OssNgPortList::setTextPositions(const QHash<QString, float> &positions)
{
    if (m_given || !positions.isEmpty())
        given().textPositions = positions;
}

void OssNgPortList::setStubs(const Stubs &stubs)
{
    if (m_given || !stubs.isEmpty())
        given().stubs = stubs;
}

void OssNgPortList::setLit(const QString &name)
{
    if (m_given || !name.isEmpty())
        given().lit = name;
}

qreal OssNgPortList::textPosition(const QString &name) const
{
    return m_given ? qreal(m_given->textPositions.value(name)) : 0.0;
}

const OssNgPortList::Stub *OssNgPortList::stub(const QString &name) const
{
    if (!m_given)
        return nullptr;
    const auto stub = m_given->stubs.constFind(name);
    return stub == m_given->stubs.constEnd() ? nullptr : &*stub;
}

QString OssNgPortList::lit() const
{
    return m_given ? m_given->lit : QString();
}
