#include "support/Saving.h"

#include <QXmlStreamReader>

#include <vector>

namespace {

using Attributes = OssSerializer::Attributes;

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
    return QByteArray("<e>").repeated(depth) + QByteArray("</e>").repeated(depth);
}

QByteArray withAttributes(int count)
{
    QByteArray element = "<e";
    for (int i = 0; i < count; ++i)
        element += " a" + QByteArray::number(i) + "=\"1\"";
    return element + "/>";
}

TEST(Deserializer, limitsAreWhereTheyAreSaidToBe)
{
    // The document element is one level itself.
    const int deepest = OssDeserializer::MaximumDepth - 1;
    const int most = OssDeserializer::MaximumAttributes;
    const auto isRead = [](const QByteArray &content) {
        return bool(reading("<root>" + content + "</root>", passOver));
    };
    EXPECT_TRUE(isRead(nested(deepest)));
    EXPECT_FALSE(isRead(nested(deepest + 1)));
    EXPECT_TRUE(isRead(withAttributes(most)));
    EXPECT_FALSE(isRead(withAttributes(most + 1)));
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
            EXPECT_TRUE(result.error().contains(text("more than 512"))
                        || result.error().contains(text("deeper than 256")))
                << qPrintable(result.error());
        }
    }
}

TEST(Deserializer, manyElementsSideBySideAreNoDepth)
{
    int count = 0;
    const QByteArray elements = QByteArray("<e/><e><f/></e>").repeated(2500);
    EXPECT_TRUE(reading("<root>" + elements + "</root>", [&count](OssDeserializer *reader) {
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
    OssDeserializer reader(&device, text("big.xml"));
    Attributes attributes;
    const OssResult result = reader.beginDocument(text("root"), &attributes);
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().contains(text("big.xml")));
    EXPECT_TRUE(result.error().contains(text("1024 MB"))) << qPrintable(result.error());
    EXPECT_FALSE(reader.nextElement());
    EXPECT_EQ(device.pos(), 0);
}

TEST(Deserializer, theFirstErrorIsTheOneThatIsTold)
{
    const OssResult result = reading("<root>\n<e/>\n<e/></root>", [](OssDeserializer *reader) {
        EXPECT_TRUE(reader->nextElement());
        reader->raiseError(text("the cause"));
        reader->raiseError(text("the consequence"));
        EXPECT_TRUE(reader->failed());
        EXPECT_FALSE(reader->nextElement()) << "reading ends";
        OssSerializableObject object;
        EXPECT_FALSE(reader->loadObject(&object));
    });
    EXPECT_EQ(result.error(), text("Cannot read \"test.xml\", line 2: the cause"));
}

TEST(Deserializer, documentsThatAreNoneAreRefusedWithTheReason)
{
    const std::pair<QByteArray, const char *> cases[] = {
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
        {documentOf("<x:a xmlns:x=\"u\"/>"), "namespaces"},
        {documentOf("<a b\x01=\"c\"/>"), "control characters"},
        {"<!DOCTYPE root [<!ENTITY a \"b\">]><root/>", "DOCTYPE"},
        {"<root><object name=\"o\"", "test.xml"},
    };
    OssSerializableObject object;
    for (const auto &[document, reason] : cases) {
        for (const OssResult &result : {reading(document, passOver), loaded(document, &object)}) {
            ASSERT_FALSE(result) << document.constData();
            EXPECT_TRUE(result.error().contains(text(reason))) << qPrintable(result.error());
            EXPECT_TRUE(result.error().contains(text("test.xml"))) << qPrintable(result.error());
        }
    }
    Attributes attributes;
    QBuffer buffer;
    buffer.setData("<!-- made by hand --><root version=\"3\"/>");
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, {});
    ASSERT_TRUE(reader.beginDocument(text("root"), &attributes));
    EXPECT_EQ(attributes, (Attributes{{text("version"), text("3")}}));
    EXPECT_FALSE(reader.nextElement());
    EXPECT_FALSE(reader.failed()) << "an empty document is no fault";
}

TEST(Deserializer, idsAreClaimedOncePerDocument)
{
    EXPECT_TRUE(reading("<root/>", [](OssDeserializer *reader) {
        EXPECT_TRUE(reader->claimId(text("{a}")));
        EXPECT_TRUE(reader->claimId(text("{b}")));
        EXPECT_FALSE(reader->claimId(text("{a}")));
    }));
    EXPECT_TRUE(reading("<root/>", [](OssDeserializer *reader) {
        EXPECT_TRUE(reader->claimId(text("{a}"))) << "another document";
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
    EXPECT_EQ(after, texts({"next"}));
    const QByteArray again = written(
        [&raw](OssSerializer *serializer) { serializer->writeRaw(raw); }, false);
    EXPECT_TRUE(again.contains(inner)) << again.constData();
}

TEST(Serializer, whatXmlCannotCarryIsReplacedAndNothingElse)
{
    const QChar bad = QChar::ReplacementCharacter;
    const QChar high(0xD83C);
    const QChar low(0xDFA8);
    const std::pair<QString, QString> cases[] = {
        {QString(), QString()},
        {text("plain \t\n\r text"), text("plain \t\n\r text")},
        {QString(QChar(0x7F)) + QChar(0xE000), QString(QChar(0x7F)) + QChar(0xE000)},
        {QString(QChar(0)) + text("a") + QChar(0x1F), QString(bad) + text("a") + bad},
        {QString(QChar(0x0B)) + QChar(0x0C), QString(bad) + bad},
        {QString(high) + low, QString(high) + low},
        {QString(high), QString(bad)},
        {QString(low), QString(bad)},
        {QString(low) + high, QString(bad) + bad},
        {QString(high) + text("a"), QString(bad) + text("a")},
        {text("a") + low, text("a") + bad},
        {QString(high) + high + low, QString(bad) + high + low},
        {QString(QChar(0xFFFE)) + QChar(0xFFFF) + QChar(0xFFFD), QString(3, bad)},
    };
    for (const auto &[given, kept] : cases)
        EXPECT_EQ(OssSerializer::withoutUnwritable(given), kept) << qPrintable(given);
}

TEST(Serializer, noTextOfAUserMakesADocumentThatCannotBeRead)
{
    const QString hostile = text("a\x01\"<&>'\x1f") + QChar(0xFFFF) + QChar(0xD800)
                            + text("]]>\n\t z");
    const QByteArray document = written([&hostile](OssSerializer *serializer) {
        serializer->beginObject(hostile, hostile, {{text("a"), hostile}});
        serializer->writeElement(text("e"), {{text("a"), hostile}});
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
        return written([&order](OssSerializer *serializer) {
            Attributes attributes;
            for (const char *key : order)
                attributes.insert(text(key), text("1"));
            serializer->writeElement(text("e"), attributes);
        });
    };
    EXPECT_EQ(write({"a", "b", "c"}), write({"c", "a", "b"}));
}

TEST(Serializer, rawTextKeepsItsContentAndLosesOnlyIndentation)
{
    const QString raw = text("<k a=\"&lt;&quot;\">\n   <b>bold text</b>\n   <c/>\n</k>");
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
    OssSerializableObject first;
    OssSerializableObject second;
    OssSerializableObject plain;
    const auto write = [&](OssSerializer *serializer) {
        EXPECT_TRUE(plain.save(*serializer, text("outside"), {}));
        serializer->beginCollection(text("list"), 2, {}, {}, {});
        EXPECT_TRUE(first.save(*serializer, text("first"), {{text("a"), text("1")}}));
        EXPECT_TRUE(second.save(*serializer, text("second"), {}));
        serializer->beginObject(text("around"), {}, {});
        EXPECT_TRUE(plain.save(*serializer, text("inside an object"), {}));
        serializer->endObject();
        EXPECT_TRUE(second.save(*serializer, text("third"), {}));
        serializer->endCollection();
        EXPECT_TRUE(plain.save(*serializer, text("behind"), {}));
    };
    const QByteArray whole = written(write, false);
    std::vector<OssSerializer::PutOff> taken;
    QByteArray document = written(
        [&](OssSerializer *serializer) {
            serializer->setPutOff(
                [&taken](const OssSerializer::PutOff &element) { taken.push_back(element); });
            write(serializer);
        },
        false);
    ASSERT_EQ(taken.size(), 3U);
    EXPECT_EQ(taken[0].object, &first);
    EXPECT_EQ(taken[0].name, text("first"));
    EXPECT_EQ(taken[0].attributes, (Attributes{{text("a"), text("1")}}));
    EXPECT_EQ(taken[2].name, text("third"));
    for (const char *kept : {"outside", "inside an object", "behind"})
        EXPECT_TRUE(document.contains(kept)) << kept;
    EXPECT_FALSE(document.contains("first"));
    // Their places: behind the collection's start, and behind the object.
    const int start = document.indexOf('>', document.indexOf("<collection")) + 1;
    EXPECT_EQ(taken[0].position, start);
    EXPECT_EQ(taken[1].position, start);
    EXPECT_EQ(document.mid(int(taken[2].position)).left(13), "</collection>");

    // Put back there, they are the document that is written without putting off.
    for (auto element = taken.rbegin(); element != taken.rend(); ++element) {
        QBuffer part;
        part.open(QIODevice::WriteOnly);
        OssSerializer partial(&part, false);
        element->object->save(partial, element->name, element->attributes);
        document.insert(int(element->position), part.data());
    }
    EXPECT_EQ(document, whole);
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
        serializer.beginDocument(text("root"), {});
        bool saved = true;
        for (int i = 0; i < 50; ++i) {
            OssSerializableObject object;
            saved = object.save(serializer, text("object"), {});
        }
        EXPECT_FALSE(saved) << room;
        EXPECT_TRUE(serializer.failed()) << room;
    }
}

} // namespace
