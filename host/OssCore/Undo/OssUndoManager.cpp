#include "OssCore/Undo/OssUndoManager.h"

#include <QElapsedTimer>
#include <QSet>

#include <algorithm>
#include <iterator>

namespace {

constexpr int MergeTime = 1000; // milliseconds

} // namespace

// A macro is a step made of steps.
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

    QList<QObject *> subjects() const override
    {
        QList<QObject *> all;
        QSet<QObject *> known;
        for (const auto &step : steps) {
            const QList<QObject *> own = step->subjects();
            for (QObject *subject : own) {
                if (!known.contains(subject))
                    all.append(subject);
                known.insert(subject);
            }
        }
        return all;
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
        return !mergeKey.isEmpty() && mergeKey == later.mergeKey
               && (later.joinsAlways || !made.hasExpired(MergeTime));
    }

    std::vector<std::unique_ptr<OssUndoStep>> steps;
    bool cancelled = false;
    bool gathers = false; ///< leaves a single step what it is
    bool ofEdits = false; ///< what it gathers are edits of their own
    bool joinsAlways = false;
    QString mergeKey;
    QElapsedTimer made;
};

OssUndoManager::OssUndoManager() = default;

OssUndoManager::~OssUndoManager() = default;

OssUndoManager::AutoMacro::AutoMacro(const QString &title)
    : AutoMacro(title, QString())
{
}

OssUndoManager::AutoMacro::AutoMacro(const QString &title, const QString &mergeKey, Joining joining)
{
    OssUndoManager *manager = instance();
    if (!manager->isRecording())
        return;
    if (!manager->isMacroOpen())
        Q_EMIT manager->aboutToEdit();
    manager->openMacro(title, mergeKey, joining == Joining::Always);
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
    Macro &macro = manager->openMacro(title, {});
    macro.gathers = true;
    macro.ofEdits = true;
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
    if (!step || !isRecording())
        return;
    if (!isMacroOpen())
        Q_EMIT aboutToEdit();
    if (!isOutermost(m_open.size() + 1)) {
        store(std::move(step));
        return;
    }
    Macro &alone = openMacro(step->text(), {});
    alone.gathers = true;
    alone.steps.push_back(std::move(step));
    closeMacro();
}

void OssUndoManager::record(const QString &title, std::function<void()> undo,
                            std::function<void()> redo, QObject *subject)
{
    addUndo(std::make_unique<OssFunctionUndo>(title, std::move(undo), std::move(redo), subject));
}

void OssUndoManager::store(std::unique_ptr<OssUndoStep> step)
{
    if (!m_open.empty()) {
        m_open.back()->steps.push_back(std::move(step));
        tellClean(); // a macro may stay open for long
        return;
    }
    const QString title = step->text();
    m_steps.erase(m_steps.begin() + m_index, m_steps.end());
    if (m_cleanIndex > m_index)
        m_cleanIndex = -1;
    if (!joinLast(*step)) {
        m_steps.push_back(std::move(step));
        ++m_index;
    }
    m_mayJoin = true;
    moved();
    Q_EMIT recorded(title);
}

bool OssUndoManager::joinLast(OssUndoStep &step)
{
    // What is saved must stay a place between steps.
    if (m_steps.empty() || !m_mayJoin || m_index == m_cleanIndex)
        return false;
    auto *last = dynamic_cast<Macro *>(m_steps.back().get());
    auto *later = dynamic_cast<Macro *>(&step);
    if (!last || !later || !last->isJoinedBy(*later))
        return false;
    last->join(*later);
    return true;
}

void OssUndoManager::moved()
{
    Q_EMIT changed();
    tellClean();
}

void OssUndoManager::tellClean()
{
    if (isClean() == m_toldClean)
        return;
    m_toldClean = !m_toldClean;
    Q_EMIT cleanChanged(m_toldClean);
}

OssUndoManager::Macro &OssUndoManager::openMacro(const QString &title, const QString &mergeKey,
                                                 bool joinsAlways)
{
    m_open.push_back(std::make_unique<Macro>(title, mergeKey));
    m_open.back()->joinsAlways = joinsAlways;
    return *m_open.back();
}

bool OssUndoManager::isOutermost(std::size_t level) const
{
    return std::all_of(m_open.begin(), m_open.begin() + int(level) - 1,
                       [](const auto &macro) { return macro->ofEdits; });
}

void OssUndoManager::closeMacro()
{
    const Macro &ending = *m_open.back();
    if (!ending.ofEdits && isOutermost(m_open.size()))
        Q_EMIT editEnding(!ending.cancelled && !ending.steps.empty());
    std::unique_ptr<Macro> macro = std::move(m_open.back());
    m_open.pop_back();
    if (macro->cancelled && !macro->steps.empty()) {
        const Pause pause;
        macro->undo();
        tellClean();
    } else if (macro->gathers && macro->steps.size() == 1) {
        store(std::move(macro->steps.front()));
    } else if (!macro->steps.empty()) {
        macro->made.start();
        store(std::move(macro));
    }
}

void OssUndoManager::cancelMacros(std::size_t level)
{
    {
        const Pause pause;
        for (std::size_t i = m_open.size(); i >= level; --i) {
            Macro &macro = *m_open[i - 1];
            macro.undo();
            macro.steps.clear();
            macro.cancelled = true;
        }
    }
    tellClean();
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
    return m_open.empty() && m_index > 0;
}

bool OssUndoManager::canRedo() const
{
    return m_open.empty() && m_index < count();
}

QString OssUndoManager::undoText() const
{
    return text(m_index - 1);
}

QString OssUndoManager::redoText() const
{
    return text(m_index);
}

int OssUndoManager::count() const
{
    return int(m_steps.size());
}

QString OssUndoManager::text(int index) const
{
    return index >= 0 && index < count() ? m_steps[std::size_t(index)]->text() : QString();
}

QStringList OssUndoManager::partTexts(int index) const
{
    QStringList texts;
    if (index < 0 || index >= count())
        return texts;
    if (const auto *macro = dynamic_cast<const Macro *>(m_steps[std::size_t(index)].get())) {
        for (const auto &step : macro->steps) {
            if (!step->text().isEmpty())
                texts.append(step->text());
        }
    }
    return texts;
}

QList<QObject *> OssUndoManager::subjects(int index) const
{
    return index >= 0 && index < count() ? m_steps[std::size_t(index)]->subjects()
                                         : QList<QObject *>();
}

void OssUndoManager::clear()
{
    {
        const Pause pause;
        for (const auto &macro : m_open)
            macro->steps.clear();
        m_index = 0;
        m_cleanIndex = 0;
        // The latest first: a step may hold what an earlier one made.
        while (!m_steps.empty())
            m_steps.pop_back();
    }
    moved();
}

bool OssUndoManager::isClean() const
{
    const bool stepsOnTheirWay = std::any_of(
        m_open.begin(), m_open.end(), [](const auto &macro) { return !macro->steps.empty(); });
    return m_index == m_cleanIndex && !stepsOnTheirWay;
}

void OssUndoManager::setClean()
{
    m_cleanIndex = m_index;
    tellClean();
}

void OssUndoManager::resetClean()
{
    if (!isRecording())
        return;
    m_cleanIndex = -1;
    tellClean();
    Q_EMIT changedWithoutStep();
}

void OssUndoManager::undo()
{
    Q_EMIT aboutToEdit();
    if (!canUndo())
        return;
    {
        const Pause pause;
        m_steps[std::size_t(m_index - 1)]->undo();
        --m_index;
        m_mayJoin = false;
    }
    moved();
    Q_EMIT undone();
}

void OssUndoManager::takeBack()
{
    bool taken = false;
    Q_EMIT takingBack(&taken);
    if (!taken)
        undo();
}

void OssUndoManager::redo()
{
    Q_EMIT aboutToEdit();
    if (!canRedo())
        return;
    {
        const Pause pause;
        m_steps[std::size_t(m_index)]->redo();
        ++m_index;
        m_mayJoin = false;
    }
    moved();
    Q_EMIT redone();
}

void OssUndoManager::setIndex(int index)
{
    const int wanted = std::clamp(index, 0, count());
    while (m_index > wanted && canUndo())
        undo();
    while (m_index < wanted && canRedo())
        redo();
}
