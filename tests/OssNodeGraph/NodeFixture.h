#pragma once

#include "NodePicture.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QVector>

#include <functional>

inline const QString In = QStringLiteral("Input");
inline const QString Out = QStringLiteral("Output");

/// Sees whether states are shown, and whether what they were shown by goes again with them.
template <class Shown>
class States
{
public:
    explicit States(std::function<Shown()> show)
        : m_show(std::move(show))
        , m_seen{m_show()}
    {
    }

    /// It differs from what is shown without it.
    template <class Set>
    void expectSeen(const char *name, const Set &set)
    {
        const Shown plain = m_seen.first();
        set(true);
        EXPECT_FALSE(m_show() == plain) << name;
        set(false);
        EXPECT_TRUE(m_show() == plain) << name << " leaves a trace";
    }

    /// It differs from all that came before, too.
    template <class Set>
    void expectOfItsOwn(const char *name, const Set &set)
    {
        expectSeen(name, set);
        set(true);
        EXPECT_FALSE(m_seen.contains(m_show())) << name << " looks like another state";
        m_seen.append(m_show());
        set(false);
    }

private:
    std::function<Shown()> m_show;
    QVector<Shown> m_seen;
};

/// A node with an input and an output in a scene of its own.
class NodeFixture : public testing::Test
{
protected:
    GraphScene scene;
    OssNgExtendedNode *node = scene.add("Brick", {0, 0});
};
