#include "OssEvaluation/Schedule/OssEvPlanner.h"

#include "OssEvaluation/Kernels/Sampler.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <exception>
#include <set>

OssEvPlanner::OssEvPlanner(const OssEvTarget &target)
    : m_target(target)
{
}

OssEvResult OssEvPlanner::run(OssEvPlan *plan)
{
    if (!OssEvPatch::isValid(m_target.patch)) {
        return OssEvResult::failure("There is no patch " + std::to_string(m_target.patch));
    }
    const auto sizeIsGood = [](int size) {
        return size > 0 && size <= OssEvPlan::MaximumSize;
    };
    if (!sizeIsGood(m_target.width) || !sizeIsGood(m_target.height)) {
        return OssEvResult::failure("A patch of " + std::to_string(m_target.width) + " x "
                                    + std::to_string(m_target.height)
                                    + " texels cannot be computed");
    }
    if (m_target.graph == nullptr)
        return OssEvResult::failure("There is nothing to compute");
    const OssEvResult good = m_target.graph->check(m_target.node);
    if (!good)
        return good;
    const auto &kernel = *m_target.graph->nodes()[std::size_t(m_target.node)].kernel;
    if (m_target.output < 0 || m_target.output >= int(kernel.outputs.size()))
        return OssEvResult::failure("There is no such output");

    m_frame = OssEvReduced({m_target.width, m_target.height, m_target.patch, 1.0},
                           std::clamp(m_target.level, 0, 15));
    if (m_target.mesh != nullptr) {
        m_surfaceKey = OssEvKeyBuilder()
                           .add(m_target.mesh->key())
                           .add(m_frame.patch)
                           .add(m_frame.width)
                           .add(m_frame.height)
                           .add(m_target.bleed)
                           .key();
    }
    const std::vector<int> order = m_target.graph->upstream(m_target.node);
    findOperations(order);
    const OssEvResult made = makeValues(order);
    if (!made)
        return made;
    const int target = reduced(m_outputs[{m_target.node, m_target.output}],
                               std::clamp(m_target.mip, 0, 15));
    chooseKept(target);
    makeStages(target, plan);
    plan->m_target = m_target;
    plan->m_surfaceFrame = m_frame;
    plan->m_surfaceKey = m_surfaceKey;
    return {};
}

// Decides which values become tiles: what area operations read, what several nodes read, images,
// cache points, and what is worth it.
void OssEvPlanner::chooseKept(int target)
{
    m_values[std::size_t(target)].kept = true;
    for (Value &value : m_values) {
        for (const ValueInput &input : value.inputs) {
            if (input.value < 0)
                continue;
            Value &source = m_values[std::size_t(input.value)];
            ++source.uses;
            source.kept = source.kept || value.kind == Kind::Area || source.uses > 1;
        }
        const bool worth = value.kind == Kind::Area || value.costly;
        value.kept = value.kept || value.kind == Kind::Image
                     || (worth && m_target.keepIntermediates);
    }
}

// Nodes from the value back to what is kept, sources first; at most one area operation among them,
// which comes as `head`.
std::vector<int> OssEvPlanner::runOf(int value, int *head) const
{
    std::vector<int> run;
    std::set<int> seen{value};
    std::vector<std::pair<int, std::size_t>> path{{value, 0}};
    *head = -1;
    while (!path.empty()) {
        auto &[current, next] = path.back();
        const Value &node = m_values[std::size_t(current)];
        if (node.kind == Kind::Area) {
            *head = current;
            path.pop_back();
            continue;
        }
        if (next == node.inputs.size()) {
            run.push_back(current);
            path.pop_back();
            continue;
        }
        const int source = node.inputs[next++].value;
        if (source < 0 || !seen.insert(source).second)
            continue;
        const Value &found = m_values[std::size_t(source)];
        if (found.kind == Kind::Constant || found.kept)
            continue;
        path.emplace_back(source, 0);
    }
    return run;
}

void OssEvPlanner::makeStages(int target, OssEvPlan *plan)
{
    // Values whose stages are still to be made; the target's stage is made first and comes last.
    std::vector<int> open{target};
    std::vector<OssEvPlanStage> stages;
    m_values[std::size_t(target)].stage = 0;
    stages.emplace_back();
    while (!open.empty()) {
        const int value = open.back();
        open.pop_back();
        std::vector<int> needed;
        OssEvPlanStage stage;
        makeStage(value, &stage, &needed);
        for (const int source : needed) {
            Value &input = m_values[std::size_t(source)];
            if (input.stage < 0) {
                input.stage = int(stages.size());
                stages.emplace_back();
                open.push_back(source);
            }
            stage.inputs.push_back(input.stage);
        }
        stages[std::size_t(m_values[std::size_t(value)].stage)] = std::move(stage);
    }
    // The order of values is an order of dependence; stages take it over.
    std::vector<int> values;
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        if (m_values[i].stage >= 0)
            values.push_back(int(i));
    }
    std::vector<int> places(stages.size(), 0);
    for (std::size_t i = 0; i < values.size(); ++i)
        places[std::size_t(m_values[std::size_t(values[i])].stage)] = int(i);
    for (const int value : values) {
        OssEvPlanStage &stage = stages[std::size_t(m_values[std::size_t(value)].stage)];
        OssEvKeyBuilder key;
        key.add(stage.key);
        for (int &input : stage.inputs) {
            input = places[std::size_t(input)];
            // Tiles round what is computed. Where they are cut is part of the pixels.
            key.add(plan->m_stages[std::size_t(input)].key);
        }
        if (!stage.inputs.empty())
            stage.key = key.key();
        plan->m_stages.push_back(std::move(stage));
    }
}

void OssEvPlanner::makeStage(int index, OssEvPlanStage *stage, std::vector<int> *needed)
{
    const Value &value = m_values[std::size_t(index)];
    stage->key = value.key;
    stage->frame = value.frame;
    stage->channels = value.channels;
    stage->format = value.precise ? OssEvTile::Format::Float : OssEvTile::Format::Half;
    stage->node = value.node;
    if (value.kind == Kind::Image) {
        stage->isImage = true;
        stage->image = value.image;
        stage->imageReduction = value.imageReduction;
        stage->isSequential = value.isSequential;
        stage->headKernel = value.kernel;
        return;
    }
    OssEvPlanSource &result = stage->result;
    result.channels = result.wanted = value.channels;
    result.connected = true;
    if (value.kind == Kind::Constant) {
        result.kind = OssEvPlanSource::Kind::Constant;
        result.constant = value.constant;
        return;
    }
    int head = -1;
    const std::vector<int> run = runOf(index, &head);
    keepOtherAreas(run, head);
    if (head >= 0)
        addHead(head, stage, needed);
    addSteps(run, head, stage, needed);
    result.kind = run.empty() ? OssEvPlanSource::Kind::Head : OssEvPlanSource::Kind::Step;
    result.index = run.empty() ? 0 : int(run.size()) - 1;
    assignBuffers(stage);
}

// A second area operation in reach needs tiles of its own.
void OssEvPlanner::keepOtherAreas(const std::vector<int> &run, int head)
{
    for (const int node : run) {
        for (const ValueInput &input : m_values[std::size_t(node)].inputs) {
            const bool area = input.value >= 0
                              && m_values[std::size_t(input.value)].kind == Kind::Area;
            if (area && input.value != head)
                m_values[std::size_t(input.value)].kept = true;
        }
    }
}

void OssEvPlanner::addHead(int head, OssEvPlanStage *stage, std::vector<int> *needed) const
{
    const Value &area = m_values[std::size_t(head)];
    stage->head = std::static_pointer_cast<const OssEvAreaOperation>(area.operation);
    stage->headChannels = area.channels;
    stage->headUsesSurface = area.usesSurface;
    stage->headKernel = area.kernel;
    stage->headNode = area.node;
    stage->usesSurface = area.usesSurface;
    for (const ValueInput &input : area.inputs)
        stage->headInputs.push_back(sourceOf(input, {}, -1, needed));
}

void OssEvPlanner::addSteps(const std::vector<int> &run, int head, OssEvPlanStage *stage,
                            std::vector<int> *needed) const
{
    std::map<int, int> steps;
    for (const int node : run) {
        const Value &point = m_values[std::size_t(node)];
        OssEvPlanStep step;
        step.operation = std::static_pointer_cast<const OssEvPointOperation>(point.operation);
        step.channels = point.channels;
        step.usesSurface = point.usesSurface;
        step.kernel = point.kernel;
        step.node = point.node;
        stage->usesSurface = stage->usesSurface || point.usesSurface;
        for (const ValueInput &input : point.inputs)
            step.inputs.push_back(sourceOf(input, steps, head, needed));
        steps[node] = int(stage->steps.size());
        stage->steps.push_back(std::move(step));
    }
}

OssEvPlanSource OssEvPlanner::sourceOf(const ValueInput &input, const std::map<int, int> &steps,
                                       int head, std::vector<int> *needed) const
{
    OssEvPlanSource source;
    source.wanted = input.wanted;
    source.connected = input.value >= 0;
    source.constant = input.fallback;
    source.channels = input.wanted;
    if (input.value < 0)
        return source;
    const Value &value = m_values[std::size_t(input.value)];
    source.channels = value.channels;
    const auto step = steps.find(input.value);
    if (value.kind == Kind::Constant) {
        source.constant = value.constant;
    } else if (step != steps.end()) {
        source.kind = OssEvPlanSource::Kind::Step;
        source.index = step->second;
    } else if (input.value == head) {
        source.kind = OssEvPlanSource::Kind::Head;
    } else {
        source.kind = OssEvPlanSource::Kind::Input;
        const auto found = std::find(needed->begin(), needed->end(), input.value);
        source.index = int(found - needed->begin());
        if (found == needed->end())
            needed->push_back(input.value);
    }
    return source;
}

// A step's buffer is free again after the last step that reads it.
void OssEvPlanner::assignBuffers(OssEvPlanStage *stage)
{
    std::vector<std::size_t> lastUse(stage->steps.size(), 0);
    for (std::size_t i = 0; i < stage->steps.size(); ++i) {
        for (const OssEvPlanSource &input : stage->steps[i].inputs) {
            if (input.kind == OssEvPlanSource::Kind::Step)
                lastUse[std::size_t(input.index)] = i;
        }
    }
    std::vector<int> idle;
    for (std::size_t i = 0; i < stage->steps.size(); ++i) {
        if (idle.empty())
            idle.push_back(stage->buffers++);
        stage->steps[i].buffer = idle.back();
        idle.pop_back();
        for (std::size_t earlier = 0; earlier < i; ++earlier) {
            if (lastUse[earlier] == i)
                idle.push_back(stage->steps[earlier].buffer);
        }
    }
}

OssEvResult OssEvPlan::make(const OssEvTarget &target, std::shared_ptr<const OssEvPlan> *plan)
{
    try {
        auto made = std::make_shared<OssEvPlan>();
        const OssEvResult result = OssEvPlanner(target).run(made.get());
        if (result)
            *plan = std::move(made);
        return result;
    } catch (const std::bad_alloc &) {
        return OssEvResult::failure("There is not enough memory");
    } catch (const std::exception &fault) {
        return OssEvResult::failure(fault.what());
    }
}

const std::string &OssEvPlan::nodeName(int node) const
{
    static const std::string none;
    return node < 0 ? none : m_target.graph->nodes()[std::size_t(node)].name;
}
