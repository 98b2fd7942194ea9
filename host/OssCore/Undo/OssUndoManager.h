#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Program/OssService.h"
#include "OssCore/Undo/OssUndoStep.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

/// The history of the open document. GUI thread.
///
/// A change is made first and recorded afterwards, so adding a step applies nothing. Steps that
/// are added while a macro is open join the innermost one; a macro in which nothing was recorded
/// leaves no step. While a step is being undone or redone nothing is recorded: what the change's
/// listeners add then is dropped.
class OSSCORE_EXPORT OssUndoManager
    : public QObject
    , public OssService<OssUndoManager>
{
    Q_OBJECT

public:
    OssUndoManager();
    ~OssUndoManager() override;

    /// Makes all changes of its scope one titled step. Macros nest: an inner one is a titled part
    /// of the outer. Scopes close in reverse order of opening.
    class OSSCORE_EXPORT AutoMacro
    {
    public:
        /// How long a later macro of the same key may come.
        enum class Joining { Soon, Always };

        explicit AutoMacro(const QString &title);
        /// An outermost macro joins the step before it when that one was made with the same key
        /// less than a second ago (or ever) and nothing was recorded, undone or saved in between: for
        /// what a user does in many small moves, as holding down a key. Empty: never.
        AutoMacro(const QString &title, const QString &mergeKey, Joining joining = Joining::Soon);
        AutoMacro(const AutoMacro &) = delete;
        AutoMacro &operator=(const AutoMacro &) = delete;
        ~AutoMacro();

        void addUndo(OssUndoStep *step);
        /// Takes back what was recorded so far, macros inside included, and leaves no step. The
        /// macro around this one stays open with what it holds. What is recorded afterwards in
        /// the same scope is taken back when the scope ends.
        void cancel();

    private:
        std::size_t m_level = 0; ///< 1 for the outermost macro, 0 while nothing is recorded
    };

    /// The scope of a user's command whose steps have titles of their own: several are gathered
    /// into one step with this title, a single one stays what it is.
    class OSSCORE_EXPORT Gathering
    {
    public:
        explicit Gathering(const QString &title);
        Gathering(const Gathering &) = delete;
        Gathering &operator=(const Gathering &) = delete;
        ~Gathering();

    private:
        std::size_t m_level = 0;
    };

    /// Scope in which changes are not recorded: loading, closing, view state.
    class OSSCORE_EXPORT Pause
    {
    public:
        Pause();
        Pause(const Pause &) = delete;
        Pause &operator=(const Pause &) = delete;
        ~Pause();
    };

    /// Records a change that has been made. Takes ownership, also when nothing is being recorded.
    void addUndo(OssUndoStep *step);
    void addUndo(std::unique_ptr<OssUndoStep> step);
    /// The same for a change that is told by two functions. `subject`: what it changes.
    void record(const QString &title, std::function<void()> undo, std::function<void()> redo,
                QObject *subject = nullptr);

    /// False while a step is undone or redone and inside a Pause. Operations may skip the work of
    /// building a step then.
    bool isRecording() const;
    /// Whether recorded changes wait for the rest of their step.
    bool isMacroOpen() const;

    bool canUndo() const;
    bool canRedo() const;
    QString undoText() const;
    QString redoText() const;
    int count() const;

    /// Steps that are done; those from here on were undone.
    int index() const { return m_index; }

    /// Title of a step and of the titled macros directly inside it.
    QString text(int index) const;
    QStringList partTexts(int index) const;
    /// What a step changes, each once, in the order of its parts; objects that are gone are left out.
    QList<QObject *> subjects(int index) const;

    /// Forgets everything. The document counts as clean afterwards. Must run before objects die
    /// that steps hold.
    void clear();
    bool isClean() const;
    void setClean();
    /// The document differs from what is saved, and no undoing or redoing leads there: something was
    /// restored, or changed that is saved but no step. Nothing while recording pauses.
    void resetClean();

public Q_SLOTS:
    void undo();
    /// What the user's command does: takes back what is half done in hand, or, where nothing is, undoes.
    void takeBack();
    void redo();
    /// Undoes or redoes until that many steps are done.
    void setIndex(int index);

    /// Before the document is saved or given up: what is half done becomes a part of it, as before an
    /// edit.
    void endInteraction() { Q_EMIT aboutToEdit(); }

Q_SIGNALS:
    void cleanChanged(bool clean);
    /// After every recorded, undone, redone or forgotten step.
    void changed();
    /// The same, each by itself.
    void recorded(const QString &title);
    void undone();
    void redone();
    /// Before an outermost macro, an undo or a redo begins, and before a step by itself is taken in:
    /// whoever has something half done in hand makes a step of it now, or puts it back.
    void aboutToEdit();
    /// The user takes something back: whoever has something half done in hand puts it back and says so.
    void takingBack(bool *taken);
    /// An outermost macro, or a step by itself, is about to become a step: what else follows from the
    /// edit joins it now. Not kept: it was cancelled, or nothing was recorded.
    void editEnding(bool kept);
    /// Something changed that is saved and is no step: see resetClean().
    void changedWithoutStep();

private:
    struct Macro;

    Macro &openMacro(const QString &title, const QString &mergeKey, bool joinsAlways = false);
    void closeMacro();
    /// That its end ends an edit: all macros around it gather such.
    bool isOutermost(std::size_t level) const;
    void cancelMacros(std::size_t level);
    void store(std::unique_ptr<OssUndoStep> step);
    bool joinLast(OssUndoStep &step);
    /// Whatever changes the number of done steps or the saved one ends here.
    void moved();
    void tellClean();

    std::vector<std::unique_ptr<OssUndoStep>> m_steps;
    int m_index = 0;
    bool m_mayJoin = false; ///< nothing was undone since the last step was recorded
    bool m_toldClean = true;
    int m_cleanIndex = 0; ///< -1: no undoing or redoing leads to what is saved
    std::vector<std::unique_ptr<Macro>> m_open;
    int m_pauses = 0;
};
