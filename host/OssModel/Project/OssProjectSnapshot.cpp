#include "OssModel/Project/OssProjectSnapshot.h"

#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectFile.h"

#include <QBuffer>
#include <QElapsedTimer>

OssProjectSnapshot::OssProjectSnapshot(OssProject *project, OssSerializer::Attributes attributes)
    : m_project(project)
    , m_attributes(std::move(attributes))
    , m_parts(1)
    , m_pending(1)
{
}

OssProjectSnapshot::~OssProjectSnapshot() = default;

bool OssProjectSnapshot::advance(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    do {
        if (!isDone() && !writeNext())
            return false;
    } while (!isDone() && (milliseconds < 0 || timer.elapsed() < milliseconds));
    return true;
}

bool OssProjectSnapshot::isDone() const
{
    return m_next == m_parts.size();
}

bool OssProjectSnapshot::writeNext()
{
    const int current = m_next++;
    const Pending pending = std::move(m_pending[current]);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer, false);
    serializer.setPutOff([this, current](const OssSerializer::PutOff &element) {
        m_parts[current].holes.append({element.position, m_parts.size()});
        m_parts.append(Part());
        m_pending.append({element.object, element.name, element.attributes});
    });
    bool written = false;
    if (current == 0)
        written = OssProjectFile::writeText(serializer, m_project, m_attributes);
    else if (pending.object)
        written = pending.object->save(serializer, pending.name, pending.attributes);
    m_parts[current].text = buffer.data();
    return written && !serializer.failed();
}

OssProjectSnapshot::Parts OssProjectSnapshot::takeParts()
{
    return std::move(m_parts);
}

namespace {

void join(const OssProjectSnapshot::Parts &parts, int number, QByteArray *document)
{
    const OssProjectSnapshot::Part &part = parts.at(number);
    int from = 0;
    for (const auto &hole : part.holes) {
        document->append(part.text.constData() + from, int(hole.position) - from);
        join(parts, hole.part, document);
        from = int(hole.position);
    }
    document->append(part.text.constData() + from, part.text.size() - from);
}

} // namespace

QByteArray OssProjectSnapshot::joined(const Parts &parts)
{
    QByteArray document;
    if (!parts.isEmpty())
        join(parts, 0, &document);
    return document;
}
