#pragma once

#include "GraphFixture.h"

#include <QRandomGenerator>

#include <functional>

/// Walks through thousands of edits in random order. Whatever was done, undoing to the start and
/// redoing to the end give the identical documents, and so does saving and opening.
class RandomEdits : public GraphFixture
{
protected:
    struct Operation
    {
        const char *name;
        std::function<bool()> run; ///< false: there was nothing it could be done to
    };

    void SetUp() override;

    void TearDown() override;

    /// Seeds the walk, by OSSA_SEED if that is set, and says how.
    quint32 startAnywhere();

    int below(int bound) { return int(m_random.bounded(quint32(bound))); }

    OssShaderNetwork *anyNetwork();

    /// No command drives nodes apart or makes a backdrop larger and larger.
    void expectWithinReach() const;

    OssSnBaseNode *anyNode()
    {
        const QList<OssSnBaseNode *> all = m_network->getAllNodes();
        return all.isEmpty() ? nullptr : all.at(below(all.size()));
    }

    template <class Node>
    Node *any()
    {
        QList<Node *> found;
        const QList<OssSnBaseNode *> all = m_network->getAllNodes();
        for (OssSnBaseNode *node : all) {
            if (auto *wanted = qobject_cast<Node *>(node))
                found.append(wanted);
        }
        return found.isEmpty() ? nullptr : found.at(below(found.size()));
    }

    QString anyOf(const QStringList &list)
    {
        return list.isEmpty() ? QString() : list.at(below(list.size()));
    }

    bool create(const char *key)
    {
        OssSnBaseNode *node = anyNetwork()->createNode(QString::fromLatin1(key));
        return node != nullptr;
    }

    std::function<bool()> make(const char *key)
    {
        return [this, key] {
            return create(key);
        };
    }

    template <class Test>
    std::function<bool()> by(bool (Test::*edit)())
    {
        return [this, edit] {
            return (static_cast<Test *>(this)->*edit)();
        };
    }

    bool connectAny();

    bool removeSome();

    bool insertDot();

    bool setAnyAttribute();

    bool moveAny();

    bool resizeAny();

    /// As the pointer does: others make room.
    bool dropOnBackdrop();

    bool reorderPorts();

    /// Enough for every operation to find something to work on, whatever was removed before.
    void supply();

    bool cancelled();

    /// A command of the view on up to so many nodes that are selected.
    bool command(const std::function<void()> &slot, int most = 4);

    QVector<Operation> commands();

    QVector<Operation> operations();

    void reopen();

    QRandomGenerator m_random;
    bool m_popups = true;
};
