#pragma once

#include "OssCore/OssCore_export.h"

#include <QList>
#include <QPointer>
#include <QString>

#include <functional>

/// One recorded change of the document. A step is recorded after its change was made; the history
/// owns it from then on. What it needs to go back and forth it keeps alive itself.
class OSSCORE_EXPORT OssUndoStep
{
public:
    explicit OssUndoStep(QString text = {});
    OssUndoStep(const OssUndoStep &) = delete;
    OssUndoStep &operator=(const OssUndoStep &) = delete;
    virtual ~OssUndoStep();

    virtual void undo() = 0;
    virtual void redo() = 0;

    /// Takes in a step of the same kind that was recorded right after this one, so that both are
    /// one. False: they stay two, and nothing changed.
    virtual bool mergeWith(const OssUndoStep &later);

    /// The objects that it changes, as far as they are known and live: where the user can go to see it.
    virtual QList<QObject *> subjects() const { return {}; }

    /// Title for the user; empty for parts that never stand alone.
    QString text() const { return m_text; }

private:
    QString m_text;
};

/// A step made of two functions: for changes that need no class of their own.
class OSSCORE_EXPORT OssFunctionUndo final : public OssUndoStep
{
public:
    OssFunctionUndo(QString text, std::function<void()> undo, std::function<void()> redo,
                    QObject *subject = nullptr);

    void undo() override { m_undo(); }

    void redo() override { m_redo(); }

    QList<QObject *> subjects() const override
    {
        return m_subject ? QList<QObject *>{m_subject} : QList<QObject *>();
    }

private:
    QPointer<QObject> m_subject;
    std::function<void()> m_undo;
    std::function<void()> m_redo;
};
