#include "OssCore/OssUndoManager.h"

#include <QElapsedTimer>
#include <QUndoStack>

#include <algorithm>
#include <iterator>

namespace {

constexpr int MergeTime = 1000; // milliseconds
constexpr int MergingSteps = 1;

} // namespace

// A macro is a step made of steps. It is built here, not with QUndoStack's own macros, because
// those can neither be cancelled nor vanish when they stay empty.
struct OssUndoManager::Macro final : OssUndoStep
{
    Macro(const QString &title, QString key)
        : OssUndoStep(title)
        , mergeKey(std::move(key))
    {
    }

    void undo() override
    {
        for (auto step = steps.rbegin(); step != steps.rend(); ++step)
            (*step)->undo();
    }

    void redo() override
    {
        for (const auto &step : steps)
            step->redo();
    }

    /// Steps that pair off are merged one by one; otherwise those of the later macro follow.
    void join(Macro &later)
    {
        bool merged = steps.size() == later.steps.size();
        for (std::size_t i = 0; merged && i < steps.size(); ++i)
            merged = steps[i]->mergeWith(*later.steps[i]);
        // Merging twice is harmless: a step that took another in already is where that one led.
        if (!merged)
            std::move(later.steps.begin(), later.steps.end(), std::back_inserter(steps));
        made.start();
    }

    bool isJoinedBy(const Macro &later) const
    {
        return !mergeKey.isEmpty() && mergeKey == later.mergeKey && !made.hasExpired(MergeTime);
    }

    std::vector<std::unique_ptr<OssUndoStep>> steps;
    bool cancelled = false;
    bool gathers = false;
    QString mergeKey;
    QElapsedTimer made;
};

class OssUndoManager::PushedStep final : public QUndoCommand
{
public:
    explicit PushedStep(std::unique_ptr<OssUndoStep> step)
        : QUndoCommand(step->text())
        , m_step(std::move(step))
    {
    }

    void undo() override
    {
        const Pause pause;
        m_step->undo();
    }

    void redo() override
    {
        // Pushing redoes, but the change has been made already.
        if (!m_pushed) {
            m_pushed = true;
            return;
        }
        const Pause pause;
        m_step->redo();
    }

    const OssUndoStep &step() const { return *m_step; }

    int id() const override
    {
        const auto *macro = dynamic_cast<const Macro *>(m_step.get());
        return macro && !macro->mergeKey.isEmpty() ? MergingSteps : -1;
    }

    bool mergeWith(const QUndoCommand *other) override
    {
        auto *own = static_cast<Macro *>(m_step.get()); // the ids were equal
        auto *later = static_cast<Macro *>(static_cast<const PushedStep *>(other)->m_step.get());
        if (!own->isJoinedBy(*later))
            return false;
        own->join(*later);
        return true;
    }

private:
    std::unique_ptr<OssUndoStep> m_step;
    bool m_pushed = false;
};

OssUndoManager *OssUndoManager::instance()
{
    static OssUndoManager manager;
    return &manager;
}

OssUndoManager::OssUndoManager()
    : m_stack(std::make_unique<QUndoStack>())
{
    connect(m_stack.get(), &QUndoStack::cleanChanged, this, &OssUndoManager::cleanChanged);
    connect(m_stack.get(), &QUndoStack::indexChanged, this, &OssUndoManager::changed);
}

OssUndoManager::~OssUndoManager() = default;

OssUndoManager::AutoMacro::AutoMacro(const QString &title)
    : AutoMacro(title, QString())
{
}

OssUndoManager::AutoMacro::AutoMacro(const QString &title, const QString &mergeKey)
{
    OssUndoManager *manager = instance();
    if (!manager->isRecording())
        return;
    manager->openMacro(title, mergeKey);
    m_level = manager->m_open.size();
}

OssUndoManager::AutoMacro::~AutoMacro()
{
    if (m_level > 0 && instance()->m_open.size() == m_level)
        instance()->closeMacro();
}

void OssUndoManager::AutoMacro::addUndo(OssUndoStep *step)
{
    instance()->addUndo(step);
}

void OssUndoManager::AutoMacro::cancel()
{
    if (m_level > 0)
        instance()->cancelMacros(m_level);
}

OssUndoManager::Gathering::Gathering(const QString &title)
{
    OssUndoManager *manager = instance();
    if (!manager->isRecording())
        return;
    manager->openMacro(title, {}).gathers = true;
    m_level = manager->m_open.size();
}

OssUndoManager::Gathering::~Gathering()
{
    if (m_level > 0 && instance()->m_open.size() == m_level)
        instance()->closeMacro();
}

OssUndoManager::Pause::Pause()
{
    ++instance()->m_pauses;
}

OssUndoManager::Pause::~Pause()
{
    --instance()->m_pauses;
}

void OssUndoManager::addUndo(OssUndoStep *step)
{
    addUndo(std::unique_ptr<OssUndoStep>(step));
}

void OssUndoManager::addUndo(std::unique_ptr<OssUndoStep> step)
{
    if (step && isRecording())
        store(std::move(step));
}

void OssUndoManager::record(const QString &title, std::function<void()> undo,
                            std::function<void()> redo)
{
    if (isRecording())
        store(std::make_unique<OssFunctionUndo>(title, std::move(undo), std::move(redo)));
}

void OssUndoManager::store(std::unique_ptr<OssUndoStep> step)
{
    if (!m_open.empty()) {
        m_open.back()->steps.push_back(std::move(step));
        return;
    }
    const QString title = step->text();
    m_stack->push(new PushedStep(std::move(step))); // owned by the stack
    Q_EMIT recorded(title);
}

OssUndoManager::Macro &OssUndoManager::openMacro(const QString &title, const QString &mergeKey)
{
    m_open.push_back(std::make_unique<Macro>(title, mergeKey));
    return *m_open.back();
}

void OssUndoManager::closeMacro()
{
    std::unique_ptr<Macro> macro = std::move(m_open.back());
    m_open.pop_back();
    if (macro->cancelled && !macro->steps.empty()) {
        const Pause pause;
        macro->undo();
    } else if (macro->gathers && macro->steps.size() == 1) {
        store(std::move(macro->steps.front()));
    } else if (!macro->steps.empty()) {
        macro->made.start();
        store(std::move(macro));
    }
}

void OssUndoManager::cancelMacros(std::size_t level)
{
    const Pause pause;
    for (std::size_t i = m_open.size(); i >= level; --i) {
        Macro &macro = *m_open[i - 1];
        macro.undo();
        macro.steps.clear();
        macro.cancelled = true;
    }
}

bool OssUndoManager::isRecording() const
{
    return m_pauses == 0;
}

bool OssUndoManager::isMacroOpen() const
{
    return std::any_of(m_open.cbegin(), m_open.cend(),
                       [](const auto &macro) { return !macro->gathers || !macro->steps.empty(); });
}

bool OssUndoManager::canUndo() const
{
    return m_open.empty() && m_stack->canUndo();
}

bool OssUndoManager::canRedo() const
{
    return m_open.empty() && m_stack->canRedo();
}

QString OssUndoManager::undoText() const
{
    return m_stack->undoText();
}

QString OssUndoManager::redoText() const
{
    return m_stack->redoText();
}

int OssUndoManager::count() const
{
    return m_stack->count();
}

QString OssUndoManager::text(int index) const
{
    return m_stack->text(index);
}

QStringList OssUndoManager::partTexts(int index) const
{
    QStringList texts;
    const auto *pushed = dynamic_cast<const PushedStep *>(m_stack->command(index));
    const auto *macro = pushed ? dynamic_cast<const Macro *>(&pushed->step()) : nullptr;
    if (macro) {
        for (const auto &step : macro->steps) {
            if (!step->text().isEmpty())
                texts.append(step->text());
        }
    }
    return texts;
}

void OssUndoManager::clear()
{
    const Pause pause;
    for (const auto &macro : m_open)
        macro->steps.clear();
    m_stack->clear();
}

bool OssUndoManager::isClean() const
{
    return m_stack->isClean();
}

void OssUndoManager::setClean()
{
    m_stack->setClean();
}

void OssUndoManager::resetClean()
{
    m_stack->resetClean();
}

QUndoStack *OssUndoManager::stack() const
{
    return m_stack.get();
}

void OssUndoManager::undo()
{
    if (!canUndo())
        return;
    m_stack->undo();
    Q_EMIT undone();
}

void OssUndoManager::redo()
{
    if (!canRedo())
        return;
    m_stack->redo();
    Q_EMIT redone();
}
