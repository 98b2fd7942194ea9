#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/Values/OssUserEnum.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QBuffer>

#include <functional>

/// What a type may give its objects: a number, a switch and a choice.
inline QVector<OssCustomAttribute> someAttributes()
{
    const OssUserEnum mode({text("Normal"), text("Add"), text("Screen")});
    return {OssCustomAttribute(text("Size"), 1.0), OssCustomAttribute(text("On"), true),
            OssCustomAttribute(text("Mode"), QVariant::fromValue(mode))};
}

/// A document "root" of what `write` puts into it.
inline QByteArray written(const std::function<void(OssSerializer *)> &write, bool formatted = true)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer, formatted);
    serializer.beginDocument(text("root"), {});
    write(&serializer);
    serializer.endDocument();
    EXPECT_FALSE(serializer.failed());
    return buffer.data();
}

/// Reads such a document, "test.xml", and runs `read` inside its element.
inline OssResult reading(const QByteArray &document,
                         const std::function<void(OssDeserializer *)> &read)
{
    QBuffer buffer;
    buffer.setData(document);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, text("test.xml"));
    OssDeserializer::Attributes attributes;
    const OssResult begun = reader.beginDocument(text("root"), &attributes);
    if (!begun)
        return begun;
    read(&reader);
    return reader.result();
}

/// An object as a document of its own.
inline QByteArray saved(OssSerializableObject *object, bool canonical = false)
{
    return written([&](OssSerializer *serializer) {
        serializer->setCanonical(canonical);
        EXPECT_TRUE(object->save(*serializer, text("o"), {}));
    });
}

inline OssResult loaded(const QByteArray &document, OssSerializableObject *object)
{
    return reading(document, [object](OssDeserializer *reader) {
        while (reader->nextElement())
            reader->loadObject(object);
    });
}

/// The document of an object that holds what is given.
inline QByteArray documentOf(const QByteArray &content)
{
    return "<root><object name=\"o\" type=\"Thing\">" + content + "</object></root>";
}
