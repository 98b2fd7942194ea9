#include "OssCore/Documents/OssDeserializer.h"
#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/Documents/OssSerializer.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QXmlStreamReader>

#include <functional>
#include <vector>

namespace {

using Attributes = OssSerializer::Attributes;
const QString Root = QStringLiteral("root");

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

QByteArray written(const std::function<void(OssSerializer *)> &write, bool formatted = false)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer, formatted);
    serializer.beginDocument(Root, {});
    write(&serializer);
    serializer.endDocument();
    EXPECT_FALSE(serializer.failed());
    return buffer.data();
}

/// Reads a document and runs `read` inside its element.
OssResult reading(const QByteArray &text, const std::function<void(OssDeserializer *)> &read)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, s("test.xml"));
    Attributes attributes;
    const OssResult begun = reader.beginDocument(Root, &attributes);
    if (!begun)
        return begun;
    read(&reader);
    return reader.result();
}

void passOver(OssDeserializer *reader)
{
    while (reader->nextElement())
        reader->skipElement();
}

bool isWellFormed(const QByteArray &document)
{
    QXmlStreamReader reader(document);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

QByteArray nested(int depth)
{
    QByteArray text;
    for (int i = 0; i < depth; ++i)
        text += "<e>";
    for (int i = 0; i < depth; ++i)
        text += "</e>";
    return text;
}

QByteArray withAttributes(int count)
{
    QByteArray text = "<e";
    for (int i = 0; i < count; ++i)
        text += " a" + QByteArray::number(i) + "=\"1\"";
    return text + "/>";
}

TEST(Deserializer, limitsAreWhereTheyAreSaidToBe)
{
    // The document element is one level itself.
    const int deepest = OssDeserializer::MaximumDepth - 1;
    EXPECT_TRUE(reading("<root>" + nested(deepest) + "</root>", passOver));
    EXPECT_FALSE(reading("<root>" + nested(deepest + 1) + "</root>", passOver));
    EXPECT_TRUE(reading("<root>" + withAttributes(OssDeserializer::MaximumAttributes) + "</root>",
                        passOver));
    EXPECT_FALSE(reading(
        "<root>" + withAttributes(OssDeserializer::MaximumAttributes + 1) + "</root>", passOver));
}

TEST(Deserializer, limitsHoldHoweverTheContentIsRead)
{
    const std::function<void(OssDeserializer *)> ways[] = {
        passOver,
        [](OssDeserializer *reader) {
            while (reader->nextElement())
                reader->readRaw();
        },
        [](OssDeserializer *reader) {
            OssSerializableObject object;
            while (reader->nextElement())
                reader->loadObject(&object);
        },
        [](OssDeserializer *reader) {
            while (!reader->failed()) { // children of children
                while (reader->nextElement())
                    EXPECT_LE(reader->depth(), OssDeserializer::MaximumDepth);
                if (reader->depth() == 0)
                    return;
            }
        },
    };
    for (const auto &way : ways) {
        for (const QByteArray &bad : {nested(4000), withAttributes(600)}) {
            const OssResult result = reading("<root><object>" + bad + "</object></root>", way);
            ASSERT_FALSE(result) << &way - ways;
            EXPECT_TRUE(result.error().contains(s("more than 512"))
                        || result.error().contains(s("deeper than 256")))
                << qPrintable(result.error());
        }
    }
}

TEST(Deserializer, manyElementsSideBySideAreNoDepth)
{
    QByteArray text = "<root>";
    for (int i = 0; i < 5000; ++i)
        text += i % 2 == 0 ? "<e/>" : "<e><f/></e>";
    int count = 0;
    EXPECT_TRUE(reading(text + "</root>", [&count](OssDeserializer *reader) {
        while (reader->nextElement()) {
            EXPECT_EQ(reader->depth(), 2);
            ++count;
            if (count % 3 == 0)
                reader->readRaw();
            else
                reader->skipElement();
            EXPECT_EQ(reader->depth(), 1);
        }
    }));
    EXPECT_EQ(count, 5000);
}

/// Says that it is large; holds nothing.
class LargeDevice : public QBuffer
{
public:
    qint64 size() const override { return OssDeserializer::MaximumSize + 1; }
};

TEST(Deserializer, aFileThatIsTooLargeIsNotEvenBegun)
{
    LargeDevice device;
    device.setData("<root/>");
    device.open(QIODevice::ReadOnly);
    OssDeserializer reader(&device, s("big.xml"));
    Attributes attributes;
    const OssResult result = reader.beginDocument(Root, &attributes);
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().contains(s("big.xml")));
    EXPECT_TRUE(result.error().contains(s("1024 MB"))) << qPrintable(result.error());
    EXPECT_FALSE(reader.nextElement());
    EXPECT_EQ(device.pos(), 0);
}

TEST(Deserializer, theFirstErrorIsTheOneThatIsTold)
{
    const OssResult result = reading("<root>\n<e/>\n<e/></root>", [](OssDeserializer *reader) {
        EXPECT_TRUE(reader->nextElement());
        reader->raiseError(s("the cause"));
        reader->raiseError(s("the consequence"));
        EXPECT_TRUE(reader->failed());
        EXPECT_FALSE(reader->nextElement()) << "reading ends";
        OssSerializableObject object;
        EXPECT_FALSE(reader->loadObject(&object));
    });
    EXPECT_EQ(result.error(), s("Cannot read \"test.xml\", line 2: the cause"));
}

TEST(Deserializer, documentsThatAreNoneAreRefusedWithTheReason)
{
    struct Case
    {
        QByteArray text;
        const char *reason;
    };

    const Case cases[] = {
        {"", "test.xml"},
        {"   ", "test.xml"},
        {"<?xml version=\"1.0\"?>", "test.xml"},
        {"<other/>", "not an root document"},
        {"<Root/>", "not an root document"},
        {"<!DOCTYPE root><root/>", "DOCTYPE"},
        {"<?xml version=\"1.0\"?>\n<!DOCTYPE root SYSTEM \"file:///etc/passwd\"><root/>",
         "DOCTYPE"},
        {"<root><e></root>", "line 1"},
        {"<root>", "test.xml"},
        {"<root a=\"1\" a=\"2\"/>", "test.xml"},
        {"<root>&unknown;</root>", "test.xml"},
        {QByteArray("<root>\0</root>", 14), "test.xml"},
    };
    for (const Case &bad : cases) {
        const OssResult result = reading(bad.text, passOver);
        ASSERT_FALSE(result) << bad.text.constData();
        EXPECT_TRUE(result.error().contains(QLatin1String(bad.reason)))
            << qPrintable(result.error());
    }
    Attributes attributes;
    QBuffer buffer;
    buffer.setData("<!-- made by hand --><root version=\"3\"/>");
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, {});
    ASSERT_TRUE(reader.beginDocument(Root, &attributes));
    EXPECT_EQ(attributes, (Attributes{{s("version"), s("3")}}));
    EXPECT_FALSE(reader.nextElement());
    EXPECT_FALSE(reader.failed()) << "an empty document is no fault";
}

TEST(Deserializer, idsAreClaimedOncePerDocument)
{
    EXPECT_TRUE(reading("<root/>", [](OssDeserializer *reader) {
        EXPECT_TRUE(reader->claimId(s("{a}")));
        EXPECT_TRUE(reader->claimId(s("{b}")));
        EXPECT_FALSE(reader->claimId(s("{a}")));
    }));
    EXPECT_TRUE(reading("<root/>", [](OssDeserializer *reader) {
        EXPECT_TRUE(reader->claimId(s("{a}"))) << "another document";
    }));
}

TEST(Deserializer, rawTextStandsForTheWholeElementAndNoMore)
{
    const char *const inner = "<k a=\"&lt;&quot;\">text <b>bold</b> &amp; more<c/></k>";
    QStringList after;
    QString raw;
    EXPECT_TRUE(
        reading(QByteArray("<root>") + inner + "<next/></root>", [&](OssDeserializer *reader) {
            ASSERT_TRUE(reader->nextElement());
            raw = reader->readRaw();
            while (reader->nextElement()) {
                after.append(reader->elementName());
                reader->skipElement();
            }
        }));
    EXPECT_EQ(after, QStringList{s("next")});
    const QByteArray again = written(
        [&raw](OssSerializer *serializer) { serializer->writeRaw(raw); });
    EXPECT_TRUE(again.contains(inner)) << again.constData();
}

TEST(Serializer, whatXmlCannotCarryIsReplacedAndNothingElse)
{
    struct Case
    {
        QString text;
        QString written;
    };

    const QChar bad = QChar::ReplacementCharacter;
    const QChar high(0xD83C);
    const QChar low(0xDFA8);
    const Case cases[] = {
        {QString(), QString()},
        {s("plain \t\n\r text"), s("plain \t\n\r text")},
        {QString(QChar(0x7F)) + QChar(0xE000), QString(QChar(0x7F)) + QChar(0xE000)},
        {QString(QChar(0)) + s("a") + QChar(0x1F), QString(bad) + s("a") + bad},
        {QString(QChar(0x0B)) + QChar(0x0C), QString(bad) + bad},
        {QString(high) + low, QString(high) + low},
        {QString(high), QString(bad)},
        {QString(low), QString(bad)},
        {QString(low) + high, QString(bad) + bad},
        {QString(high) + s("a"), QString(bad) + s("a")},
        {s("a") + low, s("a") + bad},
        {QString(high) + high + low, QString(bad) + high + low},
        {QString(QChar(0xFFFE)) + QChar(0xFFFF) + QChar(0xFFFD), QString(3, bad)},
    };
    for (const Case &text : cases) {
        EXPECT_EQ(OssSerializer::withoutUnwritable(text.text), text.written)
            << "case " << &text - cases;
    }
}

TEST(Serializer, noTextOfAUserMakesADocumentThatCannotBeRead)
{
    const QString hostile = s("a\x01\"<&>'\x1f") + QChar(0xFFFF) + QChar(0xD800) + s("]]>\n\t z");
    const QByteArray document = written([&hostile](OssSerializer *serializer) {
        serializer->beginObject(hostile, hostile, {{s("a"), hostile}});
        serializer->writeElement(s("e"), {{s("a"), hostile}});
        serializer->beginCollection(hostile, 1, hostile, hostile, {{hostile, hostile}});
        serializer->endCollection();
        serializer->endObject();
    });
    ASSERT_TRUE(isWellFormed(document)) << document.constData();
    const QString kept = OssSerializer::withoutUnwritable(hostile);
    QXmlStreamReader reader(document);
    int seen = 0;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        for (const QXmlStreamAttribute &attribute : reader.attributes()) {
            if (attribute.name() != QLatin1String("count")) {
                EXPECT_EQ(attribute.value().toString(), kept);
                ++seen;
            }
        }
    }
    EXPECT_EQ(seen, 3 + 1 + 3 + 2);
}

TEST(Serializer, theSameStateGivesTheSameBytes)
{
    const auto write = [](const std::vector<const char *> &order) {
        return written(
            [&order](OssSerializer *serializer) {
                Attributes attributes;
                for (const char *key : order)
                    attributes.insert(s(key), s("1"));
                serializer->writeElement(s("e"), attributes);
            },
            true);
    };
    EXPECT_EQ(write({"a", "b", "c"}), write({"c", "a", "b"}));
}

TEST(Serializer, rawTextKeepsItsContentAndLosesOnlyIndentation)
{
    const QString raw = s("<k a=\"&lt;&quot;\">\n   <b>bold text</b>\n   <c/>\n</k>");
    for (const bool formatted : {false, true}) {
        const QByteArray once = written(
            [&raw](OssSerializer *serializer) { serializer->writeRaw(raw); }, formatted);
        EXPECT_TRUE(once.contains("<b>bold text</b>")) << once.constData();
        EXPECT_TRUE(once.contains("a=\"&lt;&quot;\""));
        EXPECT_FALSE(once.contains("\n   <c/>"));
        EXPECT_TRUE(isWellFormed(once));
    }
}

TEST(Serializer, onlyElementsOfCollectionsArePutOff)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer, false);
    std::vector<OssSerializer::PutOff> taken;
    serializer.setPutOff(
        [&taken](const OssSerializer::PutOff &element) { taken.push_back(element); });
    OssSerializableObject first;
    OssSerializableObject second;
    OssSerializableObject plain;
    serializer.beginDocument(Root, {});
    EXPECT_TRUE(plain.save(serializer, s("outside"), {}));
    serializer.beginCollection(s("list"), 2, {}, {}, {});
    EXPECT_TRUE(first.save(serializer, s("first"), {{s("a"), s("1")}}));
    EXPECT_TRUE(second.save(serializer, s("second"), {}));
    serializer.beginObject(s("around"), {}, {});
    EXPECT_TRUE(plain.save(serializer, s("inside an object"), {}));
    serializer.endObject();
    EXPECT_TRUE(second.save(serializer, s("third"), {}));
    serializer.endCollection();
    EXPECT_TRUE(plain.save(serializer, s("behind"), {}));
    serializer.endDocument();
    ASSERT_EQ(taken.size(), 3U);
    EXPECT_EQ(taken[0].object, &first);
    EXPECT_EQ(taken[0].name, s("first"));
    EXPECT_EQ(taken[0].attributes, (Attributes{{s("a"), s("1")}}));
    EXPECT_EQ(taken[2].name, s("third"));
    const QByteArray text = buffer.data();
    for (const char *kept : {"outside", "inside an object", "behind"})
        EXPECT_TRUE(text.contains(kept)) << kept;
    EXPECT_FALSE(text.contains("first"));
    // Their places: behind the collection's start, and behind the object.
    const int start = text.indexOf('>', text.indexOf("<collection")) + 1;
    EXPECT_EQ(taken[0].position, start);
    EXPECT_EQ(taken[1].position, start);
    EXPECT_EQ(text.mid(int(taken[2].position)).left(13), "</collection>");

    // Put back there, they are the document that is written without putting off.
    const auto plainly = [&](QByteArray *whole) {
        *whole = written([&](OssSerializer *all) {
            plain.save(*all, s("outside"), {});
            all->beginCollection(s("list"), 2, {}, {}, {});
            first.save(*all, s("first"), {{s("a"), s("1")}});
            second.save(*all, s("second"), {});
            all->beginObject(s("around"), {}, {});
            plain.save(*all, s("inside an object"), {});
            all->endObject();
            second.save(*all, s("third"), {});
            all->endCollection();
            plain.save(*all, s("behind"), {});
        });
    };
    QByteArray whole;
    plainly(&whole);
    QByteArray joined = text;
    for (auto element = taken.rbegin(); element != taken.rend(); ++element) {
        QBuffer part;
        part.open(QIODevice::WriteOnly);
        OssSerializer partial(&part, false);
        element->object->save(partial, element->name, element->attributes);
        joined.insert(int(element->position), part.data());
    }
    EXPECT_EQ(joined, whole);
}

/// Takes so many bytes and no more.
class FullDevice : public QIODevice
{
public:
    explicit FullDevice(qint64 room)
        : m_room(room)
    {
    }

protected:
    qint64 readData(char *, qint64) override { return -1; }

    qint64 writeData(const char *, qint64 size) override
    {
        if (size > m_room)
            return -1;
        m_room -= size;
        return size;
    }

private:
    qint64 m_room;
};

TEST(Serializer, aDeviceThatTakesNoMoreIsNoticed)
{
    for (const qint64 room : {0, 30, 200}) {
        FullDevice device(room);
        device.open(QIODevice::WriteOnly);
        OssSerializer serializer(&device, false);
        serializer.beginDocument(Root, {});
        bool saved = true;
        for (int i = 0; i < 50; ++i) {
            OssSerializableObject object;
            saved = object.save(serializer, s("object"), {});
        }
        EXPECT_FALSE(saved) << room;
        EXPECT_TRUE(serializer.failed()) << room;
    }
}

} // namespace
