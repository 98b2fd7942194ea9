#include "OssCore/Documents/OssObjectReferenceManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssUserEnum.h"
#include "support/Saving.h"

#include <QPointF>

#include <memory>

namespace {

/// An object with properties and attributes of every kind, which knows some of what it reads.
class Thing : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(int count READ count WRITE setCount)
    Q_PROPERTY(QPointF place MEMBER place)
    Q_PROPERTY(QString note MEMBER note STORED hasNote)
    Q_PROPERTY(int passing MEMBER passing STORED false)
    Q_PROPERTY(int derived READ derived)

public:
    Thing() { initUserAttributes(someAttributes()); }

    int count() const { return m_count; }

    void setCount(int count)
    {
        m_count = count;
        ++settings;
    }

    bool hasNote() const { return !note.isEmpty(); }

    int derived() const { return 2 * m_count; }

    using OssSerializableObject::initUserAttributes;

    QPointF place;
    QString note;
    int passing = 0;
    int settings = 0;
    int ends = 0;
    bool knowsCollections = true;
    QStringList heard;
    QMap<QString, QString> entries;
    std::vector<std::unique_ptr<Thing>> children;

    bool saveObjects(OssSerializer &serializer) override
    {
        bool good = true;
        if (!entries.isEmpty() || !children.empty()) {
            serializer.beginCollection(text("things"), int(children.size()), text("QList"),
                                       text("Thing"), entries);
            for (const auto &child : children)
                good = child->save(serializer, text("child"), {{text("extra"), text("1")}}) && good;
            serializer.endCollection();
        }
        return good;
    }

    OssSerializableObject *onLoadSubObject(OssDeserializer &, const QString &name,
                                           const QString &type) override
    {
        heard.append(text("object ") + name + QLatin1Char(' ') + type);
        return name == text("unwanted") ? nullptr : addChild();
    }

    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override
    {
        heard.append(
            QStringLiteral("collection %1 %2 %3 %4").arg(name, type, elementType).arg(count));
        if (!knowsCollections)
            return false;
        entries = attributes;
        return true;
    }

    OssSerializableObject *onLoadCollectionObject(OssDeserializer &, const QString &name,
                                                  const QString &type,
                                                  const Attributes &attributes) override
    {
        heard.append(text("element ") + name + QLatin1Char(' ') + type + QLatin1Char(' ')
                     + attributes.value(text("extra")));
        return name == text("unwanted") ? nullptr : addChild();
    }

    void onEndCollection(OssDeserializer &, const QString &name) override
    {
        heard.append(text("end ") + name);
    }

    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override
    {
        if (name == text("flat")) {
            heard.append(text("flat ") + attributes.value(text("a")));
            return true;
        }
        if (name == text("deep")) {
            heard.append(deserializer.readRaw());
            return true;
        }
        return false;
    }

    void onEndLoad() override { ++ends; }

private:
    Thing *addChild()
    {
        children.push_back(std::make_unique<Thing>());
        return children.back().get();
    }

    int m_count = 3;
};

/// Runs between a history that is empty and one that is empty again.
class ObjectSaving : public testing::Test
{
protected:
    void SetUp() override { OssUndoManager::instance()->clear(); }

    void TearDown() override { OssUndoManager::instance()->clear(); }

    OssUndoManager *m_undo = OssUndoManager::instance();
};

TEST_F(ObjectSaving, everythingThatIsSavedComesBack)
{
    Thing thing;
    thing.setCount(-4);
    thing.place = {1.5, -2.5};
    thing.note = text("a \"note\"\nwith <lines> & \xc3\xa4");
    thing.passing = 7;
    thing.setUserAttribute(OssCustomAttribute(text("Size"), 2.5), true);
    thing.setUserAttribute(OssCustomAttribute(text("On"), false), true);
    thing.entries = {{text("a key"), text("1,2")}, {text("empty"), QString()}};
    for (int i = 0; i < 3; ++i) {
        thing.children.push_back(std::make_unique<Thing>());
        thing.children.back()->setCount(i);
    }
    const QString uuid = thing.children[1]->uuidString();
    const QByteArray document = saved(&thing);
    thing.children[1] = std::make_unique<Thing>();

    Thing back;
    ASSERT_TRUE(loaded(document, &back));
    EXPECT_EQ(back.count(), -4);
    EXPECT_EQ(back.place, QPointF(1.5, -2.5));
    EXPECT_EQ(back.note, thing.note);
    EXPECT_EQ(back.passing, 0) << "not stored";
    EXPECT_EQ(back.userAttribute(text("Size")).value(), QVariant(2.5));
    EXPECT_EQ(back.userAttribute(text("On")).value(), QVariant(false));
    EXPECT_EQ(back.entries, thing.entries);
    ASSERT_EQ(back.children.size(), 3U);
    EXPECT_EQ(back.children[2]->count(), 2);
    EXPECT_EQ(back.children[1]->uuidString(), uuid);
    EXPECT_EQ(back.ends, 1);
    EXPECT_EQ(back.heard.first(), text("collection things QList Thing 3"));
    EXPECT_EQ(back.heard.at(1), text("element child Thing 1"));
    EXPECT_EQ(back.heard.last(), text("end things"));
    EXPECT_EQ(saved(&back), document);
    EXPECT_EQ(m_undo->count(), 2) << "loading records nothing";
}

TEST_F(ObjectSaving, propertiesThatAreNotStoredOrCannotBeSetAreNotWritten)
{
    Thing thing;
    thing.passing = 7;
    const QByteArray document = saved(&thing);
    for (const char *absent : {"passing", "derived", "note", "objectName"})
        EXPECT_FALSE(document.contains(absent)) << absent;
    EXPECT_TRUE(document.contains("count=\"3\""));
}

TEST_F(ObjectSaving, aPropertyIsReadEvenThoughItsDefaultWouldNotBeStored)
{
    Thing thing;
    ASSERT_TRUE(loaded(documentOf("<properties note=\"kept\"/>"), &thing));
    EXPECT_EQ(thing.note, text("kept"));
}

TEST_F(ObjectSaving, valuesThatAreNoneLeaveWhatIsThere)
{
    Thing thing;
    const int settings = thing.settings;
    ASSERT_TRUE(loaded(documentOf("<properties count=\"many\" place=\"1,nan\"/>"
                                  "<attribute name=\"Size\" type=\"double\" value=\"large\"/>"
                                  "<attribute name=\"On\" type=\"bool\" value=\"perhaps\"/>"),
                       &thing));
    EXPECT_EQ(thing.count(), 3);
    EXPECT_EQ(thing.settings, settings);
    EXPECT_EQ(thing.place, QPointF());
    EXPECT_EQ(thing.userAttribute(text("Size")).value(), QVariant(1.0));
    EXPECT_EQ(thing.userAttribute(text("On")).value(), QVariant(true));
    const QByteArray document = saved(&thing);
    for (const char *kept : {"value=\"large\"", "value=\"perhaps\""})
        EXPECT_TRUE(document.contains(kept)) << "what was not understood is kept: " << kept;
}

TEST_F(ObjectSaving, aChoiceKeepsItsListAndABeyondNumber)
{
    Thing thing;
    for (const int number : {2, 9}) {
        ASSERT_TRUE(loaded(documentOf("<attribute name=\"Mode\" type=\"OssUserEnum\" value=\""
                                      + QByteArray::number(number) + "\"/>"),
                           &thing));
        const auto mode = thing.userAttribute(text("Mode")).value().value<OssUserEnum>();
        EXPECT_EQ(mode.currentValue(), number);
        EXPECT_EQ(mode.names().size(), 3) << "the list is the type's";
    }
}

TEST_F(ObjectSaving, unknownPropertiesAndTheirOrderSurvive)
{
    Thing thing;
    ASSERT_TRUE(loaded(
        documentOf("<properties zeta=\"9\" count=\"5\" passing=\"8\" derived=\"4\"/>"), &thing));
    EXPECT_EQ(thing.count(), 5);
    EXPECT_EQ(thing.passing, 0) << "what is not stored is not read either";
    const QByteArray document = saved(&thing);
    for (const char *kept : {"zeta=\"9\"", "passing=\"8\"", "derived=\"4\"", "count=\"5\""})
        EXPECT_TRUE(document.contains(kept)) << kept;
}

TEST_F(ObjectSaving, elementsAreReadWhetherTheirContentIsLookedAtOrNot)
{
    Thing thing;
    ASSERT_TRUE(loaded(documentOf("<flat a=\"1\"><inner><x/></inner></flat>"
                                  "<deep><y>z</y></deep>"
                                  "<flat a=\"2\"/>"
                                  "<deep/>"
                                  "<object name=\"sub\" type=\"Thing\"/>"),
                       &thing));
    ASSERT_EQ(thing.heard.size(), 5) << qPrintable(thing.heard.join(QLatin1Char('|')));
    EXPECT_EQ(thing.heard.at(0), text("flat 1"));
    EXPECT_TRUE(thing.heard.at(1).contains(text("<y>z</y>")));
    EXPECT_EQ(thing.heard.at(2), text("flat 2"));
    EXPECT_EQ(thing.heard.at(4), text("object sub Thing"));
    EXPECT_FALSE(saved(&thing).contains("<flat")) << "what is understood is not kept as text";
}

TEST_F(ObjectSaving, anEmptyCollectionIsOneToo)
{
    Thing thing;
    ASSERT_TRUE(
        loaded(documentOf("<collection name=\"things\" type=\"T\" elementType=\"E\" count=\"0\"/>"),
               &thing));
    EXPECT_EQ(thing.heard, texts({"collection things T E 0", "end things"}));
}

TEST_F(ObjectSaving, whatIsNotUnderstoodIsWrittenBackWhole)
{
    Thing thing;
    thing.knowsCollections = false;
    ASSERT_TRUE(loaded(
        documentOf("<properties future=\"7\"/>"
                   "<collection name=\"later\" type=\"T\" elementType=\"E\" count=\"2\">"
                   "<entry key=\"k &amp; k\" value=\"a&lt;b\"/>"
                   "<object name=\"i\" type=\"Y\"><deep>text</deep><properties p=\"1\"/></object>"
                   "<entry key=\"late\" value=\"2\"/>"
                   "</collection>"
                   "<collection name=\"none\" type=\"T\" elementType=\"E\" count=\"0\"/>"
                   "<object name=\"unwanted\" type=\"Other\"><properties a=\"1\"/></object>"
                   "<attribute name=\"Unknown\" type=\"int\" value=\"3\"/>"
                   "<strange a=\"1\">body</strange>"),
        &thing));
    EXPECT_FALSE(thing.heard.contains(text("end later")));
    EXPECT_TRUE(thing.children.empty());
    const QByteArray once = saved(&thing);
    for (const char *kept :
         {"future=\"7\"", "name=\"later\" type=\"T\" elementType=\"E\" count=\"2\"",
          "key=\"k &amp; k\"", "a&lt;b", "<deep>text</deep>", "<properties p=\"1\"/>",
          "key=\"late\"", "name=\"none\"", "name=\"unwanted\" type=\"Other\"",
          "<properties a=\"1\"/>", "name=\"Unknown\"", "<strange a=\"1\">body</strange>"})
        EXPECT_TRUE(once.contains(kept)) << kept << "\n" << once.constData();
    Thing again;
    again.knowsCollections = false;
    ASSERT_TRUE(loaded(once, &again));
    EXPECT_EQ(saved(&again), once);
}

TEST_F(ObjectSaving, aDocumentThatBreaksOffEndsNothing)
{
    Thing thing;
    EXPECT_FALSE(loaded("<root><object name=\"o\" type=\"Thing\"><collection name=\"things\">"
                        "<entry key=\"a\" value=\"1\"/>",
                        &thing));
    EXPECT_EQ(thing.ends, 0);
    EXPECT_FALSE(thing.heard.contains(text("end things")));
    EXPECT_TRUE(thing.entries.isEmpty()) << "half a collection is not announced";
}

TEST_F(ObjectSaving, idsAreLeftOutOfCanonicalTextAndOfObjectsThatHaveNone)
{
    Thing thing;
    EXPECT_FALSE(saved(&thing).contains("uuid"));
    const QByteArray before = saved(&thing, true);
    const QByteArray uuid = thing.uuidString().toUtf8();
    EXPECT_TRUE(saved(&thing).contains(uuid));
    EXPECT_EQ(saved(&thing, true), before);
}

TEST_F(ObjectSaving, badIdsAreRefused)
{
    for (const char *bad : {"x", "{}", "{00000000-0000-0000-0000-000000000000}",
                            "{12345678-1234-1234-1234-12345678901g}"}) {
        Thing thing;
        const OssResult result = loaded(
            QByteArray("<root><object name=\"o\" uuid=\"") + bad + "\"/></root>", &thing);
        ASSERT_FALSE(result) << bad;
        EXPECT_TRUE(result.error().contains(text(bad))) << qPrintable(result.error());
        EXPECT_EQ(thing.ends, 0);
    }
}

TEST_F(ObjectSaving, anObjectIsFoundUnderItsPresentIdOnly)
{
    const auto found = [](const QString &reference) {
        return OssObjectReferenceManager::instance()->getPointer(reference);
    };
    auto thing = std::make_unique<Thing>();
    const QString first = thing->uuidString();
    EXPECT_EQ(thing->uuidString(), first) << "it stays";
    EXPECT_TRUE(first.startsWith(QLatin1Char('{')));
    EXPECT_FALSE(thing->setUuidString(text("no id")));
    EXPECT_FALSE(thing->setUuidString(QUuid().toString()));
    EXPECT_EQ(thing->uuidString(), first);
    EXPECT_TRUE(thing->setUuidString(first));
    const QString second = QUuid::createUuid().toString();
    ASSERT_TRUE(thing->setUuidString(second));
    EXPECT_EQ(found(first), nullptr);
    EXPECT_EQ(found(second), thing.get());
    EXPECT_EQ(found(second.mid(1, second.size() - 2)), thing.get()) << "without braces, too";
    thing.reset();
    EXPECT_EQ(found(second), nullptr);
    EXPECT_EQ(found(QString()), nullptr);
    EXPECT_EQ(found(QUuid().toString()), nullptr);
}

TEST_F(ObjectSaving, anIdThatStandsTwiceInOneDocumentIsRefused)
{
    Thing parent;
    const QByteArray id = QUuid::createUuid().toByteArray();
    EXPECT_FALSE(
        loaded("<root><object uuid=\"" + id + "\"><object uuid=\"" + id + "\"/></object></root>",
               &parent));
}

TEST_F(ObjectSaving, referencesFollowTheSavedId)
{
    OssSerializableObject object;
    const QString reference = object.uuidString();
    EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(reference), &object);
    const QByteArray document = saved(&object);
    {
        // The same document read while it is open: the newcomer answers, then the first one again.
        OssSerializableObject copy;
        ASSERT_TRUE(loaded(document, &copy));
        EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(reference), &copy);
    }
    EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(reference), &object);
    EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(text("x")), nullptr);
}

TEST_F(ObjectSaving, selectionIsToldOnlyWhenItChanges)
{
    Thing thing;
    QList<bool> told;
    QObject::connect(&thing, &OssSerializableObject::selectedChanged,
                     [&told](bool on) { told.append(on); });
    for (const bool on : {false, true, true, false})
        thing.setSelected(on);
    EXPECT_EQ(told, (QList<bool>{true, false}));
    EXPECT_EQ(m_undo->count(), 0) << "no part of the document";
}

TEST_F(ObjectSaving, whatAUserMadeIsDescribedInTheFile)
{
    Thing thing;
    OssCustomAttribute knob(text("Depth"),
                            QVariant::fromValue(OssUserEnum({text("A,B"), text("C")}, 1)));
    OssCustomAttribute::Definition &definition = knob.editDefinition();
    definition.isKnob = true;
    definition.prettyName = text("How deep");
    definition.group = text("Pattern");
    definition.minimum = 0.5;
    definition.softMaximum = 8;
    definition.toolTip = text("a \"tip\"");
    thing.setUserAttribute(knob, true);
    const QByteArray document = saved(&thing);
    for (const char *kept :
         {"knob=\"true\"", "prettyName=\"How deep\"", "group=\"Pattern\"", "minimum=\"0.5\"",
          "softMaximum=\"8\"", "toolTip=\"a &quot;tip&quot;\"", "choices=\"A\\,B,C\"",
          "value=\"1\"", "default=\"1\""})
        EXPECT_TRUE(document.contains(kept)) << kept << "\n" << document.constData();
    for (const char *absent : {"maximum=\"\"", "editor"})
        EXPECT_FALSE(document.contains(absent)) << absent;
    EXPECT_EQ(document.count("knob="), 1) << "the type's own are known from the type";
}

} // namespace

#include "ObjectSaving_test.moc"
