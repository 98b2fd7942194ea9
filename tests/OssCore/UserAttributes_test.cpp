#include "OssCore/Undo/OssUndoManager.h"
#include "support/Saving.h"

#include <memory>

namespace {

/// An object with attributes of its type.
class Described : public OssSerializableObject
{
public:
    Described() { initUserAttributes(someAttributes()); }

    using OssSerializableObject::orderUserAttributes;

    QStringList told; ///< of its attributes

protected:
    void onUserAttributeGone(const OssCustomAttribute &attribute) override
    {
        told.append(text("gone ") + attribute.name());
    }
};

/// Runs between a history that is empty and one that is empty again.
class UserAttributes : public testing::Test
{
protected:
    void SetUp() override { m_undo->clear(); }

    void TearDown() override { m_undo->clear(); }

    void listen()
    {
        QObject::connect(
            &m_object, &OssSerializableObject::userAttributeChanged,
            [this](const QString &name) { m_object.told.append(text("set ") + name); });
    }

    Described m_object;
    OssUndoManager *m_undo = OssUndoManager::instance();
};

TEST_F(UserAttributes, everyChangeCanBeUndone)
{
    OssSerializableObject object;
    int changes = 0;
    QObject::connect(&object, &OssSerializableObject::userAttributeChanged,
                     [&changes] { ++changes; });
    OssCustomAttribute size(text("Size"), 1.0);
    object.setUserAttribute(size, true);
    size.setValue(2.0);
    object.setUserAttribute(size, true);
    object.setUserAttribute(size, true); // no change, no step
    EXPECT_EQ(m_undo->count(), 2);
    EXPECT_EQ(changes, 2);
    m_undo->undo();
    EXPECT_EQ(object.userAttribute(size.name()).value(), QVariant(1.0));
    m_undo->undo();
    EXPECT_FALSE(object.exists(size.name()));
    m_undo->redo();
    m_undo->redo();
    EXPECT_EQ(object.userAttribute(size.name()).value(), QVariant(2.0));
    ASSERT_TRUE(object.removeUserAttribute(size.name()));
    m_undo->undo();
    EXPECT_TRUE(object.exists(size.name()));
}

TEST_F(UserAttributes, removingAndUndoingKeepsTheirPlaces)
{
    listen();
    const QStringList names = m_object.userAttributeNames();
    for (const QString &name : names) {
        m_object.told.clear();
        ASSERT_TRUE(m_object.removeUserAttribute(name));
        EXPECT_FALSE(m_object.exists(name));
        EXPECT_FALSE(m_object.removeUserAttribute(name)) << "it is gone";
        m_undo->undo();
        EXPECT_EQ(m_object.userAttributeNames(), names);
        m_undo->redo();
        EXPECT_FALSE(m_object.exists(name));
        m_undo->undo();
        EXPECT_EQ(m_object.told, QStringList({text("gone ") + name, text("set ") + name,
                                              text("gone ") + name, text("set ") + name}));
    }
    EXPECT_EQ(m_object.userAttributes().size(), names.size());
}

TEST_F(UserAttributes, undoingComesBackEvenWhenOthersWentMeanwhile)
{
    ASSERT_TRUE(m_object.removeUserAttribute(text("Mode")));
    {
        const OssUndoManager::Pause unrecorded;
        m_object.removeUserAttribute(text("Size"));
        m_object.removeUserAttribute(text("On"));
    }
    m_undo->undo();
    EXPECT_EQ(m_object.userAttributeNames(), texts({"Mode"}));
}

TEST_F(UserAttributes, nobodyIsToldOfASilentChangeButUndoTells)
{
    listen();
    m_object.setUserAttribute(OssCustomAttribute(text("Size"), 4.0), false);
    EXPECT_TRUE(m_object.told.isEmpty());
    EXPECT_EQ(m_object.userAttribute(text("Size")).value(), QVariant(4.0));
    m_undo->undo();
    EXPECT_EQ(m_object.told, texts({"set Size"}));
    EXPECT_EQ(m_object.userAttribute(text("Size")).value(), QVariant(1.0));
}

TEST_F(UserAttributes, oneWithoutANameIsNotTaken)
{
    listen();
    m_object.setUserAttribute(OssCustomAttribute(), true);
    m_object.setUserAttribute(OssCustomAttribute(QString(), 1.0), true);
    EXPECT_EQ(m_object.userAttributes().size(), 3);
    EXPECT_TRUE(m_object.told.isEmpty());
    EXPECT_EQ(m_undo->count(), 0);
    EXPECT_FALSE(m_object.userAttribute(text("Nobody")).isValid());
}

TEST_F(UserAttributes, anAddedOneGoesWhenItIsUndone)
{
    listen();
    m_object.setUserAttribute(OssCustomAttribute(text("New"), 1), true);
    EXPECT_EQ(m_object.userAttributeNames().last(), text("New"));
    m_undo->undo();
    EXPECT_FALSE(m_object.exists(text("New")));
    m_undo->redo();
    EXPECT_TRUE(m_object.exists(text("New")));
    EXPECT_EQ(m_object.told, texts({"set New", "gone New", "set New"}));
}

TEST_F(UserAttributes, historyOutlivesTheObject)
{
    auto object = std::make_unique<Described>();
    object->setUserAttribute(OssCustomAttribute(text("Size"), 2.0), true);
    object->removeUserAttribute(text("On"));
    object.reset();
    for (int round = 0; round < 2; ++round) {
        m_undo->undo();
        m_undo->undo();
        m_undo->redo();
        m_undo->redo();
    }
    EXPECT_EQ(m_undo->count(), 2);
}

TEST_F(UserAttributes, anOrderIsTakenOnlyWhole)
{
    const QStringList before = m_object.userAttributeNames();
    const QStringList wrong[] = {
        {},
        {text("Size"), text("On")},
        {text("Size"), text("On"), text("On")},
        {text("Size"), text("On"), text("Other")},
        {text("Size"), text("On"), text("Mode"), text("Other")},
        {text("Size"), text("On"), text("Mode"), text("Mode")},
    };
    for (const QStringList &names : wrong) {
        EXPECT_FALSE(m_object.orderUserAttributes(names))
            << qPrintable(names.join(QLatin1Char(' ')));
        EXPECT_EQ(m_object.userAttributeNames(), before);
    }
    const QStringList order = texts({"Mode", "Size", "On"});
    EXPECT_TRUE(m_object.orderUserAttributes(order));
    EXPECT_EQ(m_object.userAttributeNames(), order);
    EXPECT_EQ(m_object.userAttribute(text("Size")).value(), QVariant(1.0));
}

TEST_F(UserAttributes, aChangeOfLooksIsAChange)
{
    OssCustomAttribute size = m_object.userAttribute(text("Size"));
    size.editDefinition().visible = false;
    m_object.setUserAttribute(size, true);
    EXPECT_FALSE(m_object.userAttribute(text("Size")).isVisible());
    m_undo->undo();
    EXPECT_TRUE(m_object.userAttribute(text("Size")).isVisible());
}

} // namespace
