#include "OssCore/OssSerializableObject.h"

#include "OssCore/OssObjectReferenceManager.h"
#include "OssCore/OssUndoManager.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QPointF>
#include <QRectF>

namespace {

const QString Root = QStringLiteral("root");

/// Writes an object as a document of its own.
QByteArray saved(OssSerializableObject *object)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer);
    serializer.beginDocument(Root, {});
    object->save(serializer, QStringLiteral("o"), {});
    serializer.endDocument();
    return buffer.data();
}

OssResult loaded(const QByteArray &document, OssSerializableObject *object)
{
    QBuffer buffer;
    buffer.setData(document);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, QStringLiteral("test.xml"));
    OssDeserializer::Attributes attributes;
    const OssResult begun = reader.beginDocument(Root, &attributes);
    if (!begun)
        return begun;
    while (reader.nextElement())
        reader.loadObject(object);
    return reader.result();
}

QByteArray document(const char *content)
{
    return QByteArray("<root><object name=\"o\" type=\"T\">") + content + "</object></root>";
}

TEST(Serialization, whatIsNotUnderstoodIsWrittenBack)
{
    OssSerializableObject object;
    ASSERT_TRUE(loaded(document("<properties future=\"7\"/>"
                                "<collection name=\"later\" type=\"QList\" elementType=\"X\" "
                                "count=\"1\"><entry key=\"k\" value=\"a&lt;b\"/>"
                                "<object name=\"i\" type=\"Y\"><deep>text</deep></object>"
                                "</collection>"
                                "<object name=\"sub\" type=\"Z\"/>"
                                "<attribute name=\"Unknown\" type=\"int\" value=\"3\"/>"
                                "<strange a=\"1\">body</strange>"),
                       &object));
    const QByteArray once = saved(&object);
    for (const char *kept : {"future=\"7\"", "a&lt;b", "<deep>text</deep>", "name=\"sub\"",
                             "name=\"Unknown\"", "<strange a=\"1\">body</strange>"})
        EXPECT_TRUE(once.contains(kept)) << kept << "\n" << once.constData();

    OssSerializableObject again;
    ASSERT_TRUE(loaded(once, &again));
    EXPECT_EQ(saved(&again), once);
}

TEST(Serialization, hostileDocumentsAreRefusedWithTheReason)
{
    struct Case
    {
        QByteArray text;
        const char *reason;
    };

    QByteArray deep = "<root>";
    for (int i = 0; i < 5000; ++i)
        deep += "<object name=\"o\" type=\"T\">";
    QByteArray wide = "<root><object name=\"o\" type=\"T\"><properties";
    for (int i = 0; i < 600; ++i)
        wide += " p" + QByteArray::number(i) + "=\"1\"";
    wide += "/></object></root>";
    const Case cases[] = {
        {"<!DOCTYPE root [<!ENTITY a \"b\">]><root/>", "DOCTYPE"},
        {document("<x:a xmlns:x=\"u\"/>"), "namespaces"},
        {document("<a b\x01=\"c\"/>"), "control characters"},
        {deep, "nested deeper than 256"},
        {wide, "more than 512 attributes"},
        {"<other/>", "not an root document"},
        {"<root><object name=\"o\"", "test.xml"},
        {"", "test.xml"},
    };
    for (const Case &bad : cases) {
        OssSerializableObject object;
        const OssResult result = loaded(bad.text, &object);
        ASSERT_FALSE(result) << bad.reason;
        EXPECT_TRUE(result.error().contains(QLatin1String(bad.reason)))
            << qPrintable(result.error());
        EXPECT_TRUE(result.error().contains(QLatin1String("test.xml")));
    }
}

TEST(Serialization, anIdThatStandsTwiceInOneDocumentIsRefused)
{
    class Parent : public OssSerializableObject
    {
    public:
        OssSerializableObject child;

        OssSerializableObject *onLoadSubObject(OssDeserializer &, const QString &,
                                               const QString &) override
        {
            return &child;
        }
    } parent;

    const QByteArray id = QUuid::createUuid().toByteArray();
    EXPECT_FALSE(
        loaded("<root><object uuid=\"" + id + "\"><object uuid=\"" + id + "\"/></object></root>",
               &parent));
}

TEST(Serialization, referencesFollowTheSavedId)
{
    OssSerializableObject object;
    const QString reference = object.uuidString();
    EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(reference), &object);
    const QByteArray text = saved(&object);
    {
        // The same document read while it is open: the newcomer answers, then the first one again.
        OssSerializableObject copy;
        ASSERT_TRUE(loaded(text, &copy));
        EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(reference), &copy);
    }
    EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(reference), &object);
    EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(QStringLiteral("x")), nullptr);
}

TEST(AttributeHistory, everyChangeCanBeUndone)
{
    OssUndoManager::instance()->clear();
    OssSerializableObject object;
    int changes = 0;
    QObject::connect(&object, &OssSerializableObject::userAttributeChanged,
                     [&changes] { ++changes; });
    OssCustomAttribute size(QStringLiteral("Size"), 1.0);
    object.setUserAttribute(size, true);
    size.setValue(2.0);
    object.setUserAttribute(size, true);
    object.setUserAttribute(size, true); // no change, no step
    EXPECT_EQ(OssUndoManager::instance()->count(), 2);
    EXPECT_EQ(changes, 2);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(object.userAttribute(size.name()).value(), QVariant(1.0));
    OssUndoManager::instance()->undo();
    EXPECT_FALSE(object.exists(size.name()));
    OssUndoManager::instance()->redo();
    OssUndoManager::instance()->redo();
    EXPECT_EQ(object.userAttribute(size.name()).value(), QVariant(2.0));
    ASSERT_TRUE(object.removeUserAttribute(size.name()));
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(object.exists(size.name()));
    OssUndoManager::instance()->clear();
}

} // namespace
