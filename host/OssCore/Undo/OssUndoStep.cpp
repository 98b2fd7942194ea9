#include "OssCore/Undo/OssUndoStep.h"

OssUndoStep::OssUndoStep(QString text)
    : m_text(std::move(text))
{
}

OssUndoStep::~OssUndoStep() = default;

bool OssUndoStep::mergeWith(const OssUndoStep &)
{
    return false;
}

OssFunctionUndo::OssFunctionUndo(QString text, std::function<void()> undo,
                                 std::function<void()> redo, QObject *subject)
    : OssUndoStep(std::move(text))
    , m_subject(subject)
    , m_undo(std::move(undo))
    , m_redo(std::move(redo))
{
}
