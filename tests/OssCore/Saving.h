#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/Values/OssUserEnum.h"

#include <gtest/gtest.h>

#include <QBuffer>

inline QString s(const char *text)
{
    return QString::fromUtf8(text);
}

/// What a type may give its objects: a number, a switch and a choice.
inline QVector<OssCustomAttribute> someAttributes()
{
    return {OssCustomAttribute(s("Size"), 1.0), OssCustomAttribute(s("On"), true),
            OssCustomAttribute(
                s("Mode"), QVariant::fromValue(OssUserEnum({s("Normal"), s("Add"), s("Screen")})))};
}

/// An object as a document of its own.
inline QByteArray saved(OssSerializableObject *object, bool canonical = false)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer);
    serializer.setCanonical(canonical);
    serializer.beginDocument(s("root"), {});
    EXPECT_TRUE(object->save(serializer, s("o"), {}));
    serializer.endDocument();
    return buffer.data();
}

inline OssResult loaded(const QByteArray &document, OssSerializableObject *object)
{
    QBuffer buffer;
    buffer.setData(document);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, s("test.xml"));
    OssDeserializer::Attributes attributes;
    const OssResult begun = reader.beginDocument(s("root"), &attributes);
    if (!begun)
        return begun;
    while (reader.nextElement())
        reader.loadObject(object);
    return reader.result();
}

/// The document of an object that holds what is given.
inline QByteArray documentOf(const QByteArray &content)
{
    return "<root><object name=\"o\" type=\"Thing\">" + content + "</object></root>";
}
