#include "OssCore/Documents/OssObjectReferenceManager.h"
#include "OssCore/Saving.h"

namespace {

TEST(Serialization, whatIsNotUnderstoodIsWrittenBack)
{
    OssSerializableObject object;
    ASSERT_TRUE(loaded(documentOf("<properties future=\"7\"/>"
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
        {documentOf("<x:a xmlns:x=\"u\"/>"), "namespaces"},
        {documentOf("<a b\x01=\"c\"/>"), "control characters"},
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

} // namespace
