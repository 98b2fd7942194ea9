// Whatever stands in a document, reading it ends with an object or a reason; and what was read is
// written as a document that gives the same text when it is read and written again.

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/OssCoreServices.h"
#include "OssCore/Values/OssColor.h"

#include <QBuffer>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

namespace {

/// An object with a property of each kind, sub-objects and a collection.
class Thing : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(bool flag MEMBER m_flag)
    Q_PROPERTY(int number MEMBER m_number)
    Q_PROPERTY(double real MEMBER m_real)
    Q_PROPERTY(QString text MEMBER m_text)
    Q_PROPERTY(QPointF point MEMBER m_point)
    Q_PROPERTY(QSizeF size MEMBER m_size)
    Q_PROPERTY(QRectF area MEMBER m_area)
    Q_PROPERTY(QStringList list MEMBER m_list)
    Q_PROPERTY(OssColor color MEMBER m_color)

public:
    Thing()
    {
        initUserAttributes({OssCustomAttribute(QStringLiteral("Radius"), 1.0),
                            OssCustomAttribute(QStringLiteral("Name"), QString())});
    }

    bool saveObjects(OssSerializer &serializer) override
    {
        bool good = saveAll(serializer, m_parts);
        serializer.beginCollection(QStringLiteral("things"), int(m_elements.size()),
                                   QStringLiteral("QList"), QStringLiteral("Thing"), m_entries);
        good = saveAll(serializer, m_elements) && good;
        serializer.endCollection();
        return good;
    }

    OssSerializableObject *onLoadSubObject(OssDeserializer &, const QString &name,
                                           const QString &type) override
    {
        return type == QLatin1String("Thing") ? add(&m_parts, name) : nullptr;
    }

    bool onLoadCollection(const QString &name, const QString &, const QString &, int,
                          const Attributes &attributes) override
    {
        if (name != QLatin1String("things"))
            return false;
        m_entries = attributes;
        return true;
    }

    OssSerializableObject *onLoadCollectionObject(OssDeserializer &, const QString &name,
                                                  const QString &, const Attributes &) override
    {
        return add(&m_elements, name);
    }

protected:
    QString serializedType() const override { return QStringLiteral("Thing"); }

private:
    using Things = std::vector<std::pair<QString, std::unique_ptr<Thing>>>;

    static bool saveAll(OssSerializer &serializer, const Things &things)
    {
        bool good = true;
        for (const auto &[name, thing] : things)
            good = thing->save(serializer, name, {}) && good;
        return good;
    }

    static Thing *add(Things *things, const QString &name)
    {
        things->emplace_back(name, std::make_unique<Thing>());
        return things->back().second.get();
    }

    bool m_flag = false;
    int m_number = 0;
    double m_real = 0.0;
    QString m_text;
    QPointF m_point;
    QSizeF m_size;
    QRectF m_area;
    QStringList m_list;
    OssColor m_color;
    Attributes m_entries;
    Things m_parts;
    Things m_elements;
};

/// The text of the document written anew. Null where it could not be read.
QByteArray rewritten(const QByteArray &text)
{
    QBuffer in;
    in.setData(text);
    in.open(QIODevice::ReadOnly);
    OssDeserializer reader(&in, QStringLiteral("fuzz.xml"));
    OssDeserializer::Attributes attributes;
    if (!reader.beginDocument(QStringLiteral("things"), &attributes))
        return {};
    Thing thing;
    if (!reader.nextElement() || !reader.loadObject(&thing))
        return {};
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    OssSerializer serializer(&out);
    serializer.beginDocument(QStringLiteral("things"), {});
    thing.save(serializer, QStringLiteral("thing"), {});
    serializer.endDocument();
    return serializer.failed() ? QByteArray() : out.data();
}

void need(bool good, const char *what, const QByteArray &once, const QByteArray &twice)
{
    if (good)
        return;
    std::fprintf(stderr, "%s\n--- once\n%s\n--- twice\n%s\n", what, once.constData(),
                 twice.constData());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qputenv("QT_FATAL_WARNINGS", "1");
    static const OssCoreServices services;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QByteArray once = rewritten(
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)));
    if (once.isNull())
        return 0;
    const QByteArray twice = rewritten(once);
    need(!twice.isNull(), "what was written cannot be read", once, twice);
    need(twice == once, "what was written is read as something else", once, twice);
    return 0;
}

#include "Documents.moc"
