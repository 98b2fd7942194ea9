#include "OssEvaluation/Schedule/OssEvPlanner.h"

#include "OssEvaluation/Kernels/Halving.h"
#include "OssEvaluation/Kernels/Sampler.h"
#include "OssEvaluation/Values/Texels.h"

#include <algorithm>
#include <set>

namespace {

constexpr std::size_t FoldTexels = 64;

/// Texels of a uniform operation on constants: enough for one call of the vector code.
struct alignas(64) FoldPlanes
{
    std::array<std::array<float, FoldTexels>, 4> channel;

    void fill(const std::array<float, 4> &texel)
    {
        for (std::size_t k = 0; k < 4; ++k)
            channel[k].fill(texel[k]);
    }
};

OssEvKey constantKey(const std::array<float, 4> &texel, int channels)
{
    OssEvKeyBuilder key;
    key.add("constant").add(channels);
    for (std::size_t k = 0; k < std::size_t(channels); ++k)
        key.add(double(texel[k]));
    return key.key();
}

void addWorking(const OssEvWorkingSpace &working, OssEvKeyBuilder *key)
{
    for (const float weight : working.luminance)
        key->add(double(weight));
    for (const float number : working.fromBt709)
        key->add(double(number));
}

std::vector<bool> connectedInputs(const OssEvGraph::Node &node)
{
    std::vector<bool> connected;
    for (const OssEvGraph::Link &link : node.inputs)
        connected.push_back(link.node >= 0);
    return connected;
}

} // namespace

// From the target upwards: an operation tells which inputs are looked at, so that nothing is
// planned which nobody reads.
void OssEvPlanner::findOperations(const std::vector<int> &order)
{
    const auto &nodes = m_target.graph->nodes();
    std::set<Output> wanted{{m_target.node, m_target.output}};
    for (auto index = order.rbegin(); index != order.rend(); ++index) {
        const OssEvGraph::Node &node = nodes[std::size_t(*index)];
        for (int output = 0; output < int(node.kernel->outputs.size()); ++output) {
            if (wanted.count({*index, output}) == 0)
                continue;
            const OssEvKernelSetup setup(node.parameters, connectedInputs(node), output, m_frame,
                                         m_target.graph->working());
            const auto operation = node.kernel->make(setup);
            for (std::size_t i = 0; i < node.inputs.size(); ++i) {
                if (node.inputs[i].node >= 0 && operation->readsInput(i))
                    wanted.insert({node.inputs[i].node, node.inputs[i].output});
            }
            m_operations.emplace(Output{*index, output}, operation);
        }
    }
}

OssEvResult OssEvPlanner::makeValues(const std::vector<int> &order)
{
    for (const int node : order) {
        const int outputs = int(m_target.graph->nodes()[std::size_t(node)].kernel->outputs.size());
        for (int output = 0; output < outputs; ++output) {
            if (m_operations.count({node, output}) == 0)
                continue;
            int value = -1;
            const OssEvResult result = makeValue({node, output}, &value);
            if (!result)
                return result;
            m_outputs[{node, output}] = value;
        }
    }
    return {};
}

OssEvResult OssEvPlanner::makeValue(const Output &output, int *result)
{
    const auto &operation = m_operations[output];
    if (const auto *image = dynamic_cast<const OssEvImageOperation *>(operation.get()))
        return makeImage(output, *image, result);
    const OssEvGraph::Node &node = m_target.graph->nodes()[std::size_t(output.first)];
    const bool passes = node.kernel->name == "pass" && !node.cachePoint;
    if (passes && node.inputs[0].node >= 0) {
        *result = m_outputs[{node.inputs[0].node, node.inputs[0].output}];
        return {};
    }
    Value value;
    value.node = output.first;
    value.kernel = node.kernel->name.c_str();
    value.operation = operation;
    value.frame = m_frame;
    value.usesSurface = node.kernel->usesSurface && m_target.mesh != nullptr;
    value.uniform = node.kernel->uniform;
    value.costly = node.kernel->costly;
    value.kept = node.cachePoint;
    const bool area = dynamic_cast<const OssEvAreaOperation *>(operation.get()) != nullptr;
    value.kind = area ? Kind::Area : Kind::Point;
    connectInputs(output, &value);
    describeOutput(output, &value);
    value.key = keyOf(output, value);
    fold(&value);
    *result = add(std::move(value));
    return {};
}

// Point operations have their kernel's inputs, area operations their taps.
void OssEvPlanner::connectInputs(const Output &output, Value *value)
{
    const OssEvGraph::Node &node = m_target.graph->nodes()[std::size_t(output.first)];
    std::vector<OssEvTap> taps;
    if (value->kind == Kind::Area) {
        taps = static_cast<const OssEvAreaOperation &>(*value->operation).taps();
    } else {
        for (std::size_t i = 0; i < node.inputs.size(); ++i)
            taps.push_back({i, 0});
    }
    for (const OssEvTap &tap : taps) {
        const OssEvGraph::Link &link = node.inputs[tap.input];
        const int wanted = node.kernel->inputs[tap.input].channels;
        ValueInput input;
        input.fallback = value->operation->inputDefault(tap.input);
        input.wanted = wanted;
        if (link.node >= 0 && value->operation->readsInput(tap.input)) {
            input.value = reduced(m_outputs[{link.node, link.output}], tap.reduction);
            if (wanted == 0)
                input.wanted = m_values[std::size_t(input.value)].channels;
        } else if (wanted == 0) {
            input.wanted = 4;
        }
        value->inputs.push_back(input);
    }
}

void OssEvPlanner::describeOutput(const Output &output, Value *value) const
{
    const OssEvGraph::Node &node = m_target.graph->nodes()[std::size_t(output.first)];
    const OssEvKernelOutput &description = node.kernel->outputs[std::size_t(output.second)];
    value->channels = description.channels;
    if (node.kernel->outputChannels) {
        value->channels = node.kernel->outputChannels(
            OssEvKernelSetup(node.parameters, connectedInputs(node), output.second, m_frame,
                             m_target.graph->working()));
    } else if (value->channels == 0) {
        const int first = std::max(0, value->operation->onlyInput);
        const OssEvGraph::Link &link = node.inputs[std::size_t(first)];
        const auto found = m_outputs.find({link.node, link.output});
        value->channels = found == m_outputs.end() ? 4
                                                   : m_values[std::size_t(found->second)].channels;
    }
    value->precise = description.precise;
    for (const ValueInput &input : value->inputs) {
        if (node.kernel->keepsPrecision && input.value >= 0)
            value->precise = value->precise || m_values[std::size_t(input.value)].precise;
    }
}

OssEvKey OssEvPlanner::keyOf(const Output &output, const Value &value) const
{
    const OssEvGraph::Node &node = m_target.graph->nodes()[std::size_t(output.first)];
    OssEvKeyBuilder key;
    key.add(node.kernel->name).add(node.kernel->version).add(output.second).add(value.channels);
    key.add(m_frame.width).add(m_frame.height).add(m_frame.scale).add(m_frame.patch);
    for (const auto &[name, parameter] : node.parameters) {
        key.add(name);
        OssEvAddToKey(&key, parameter);
    }
    for (const ValueInput &input : value.inputs) {
        key.add(input.value >= 0 ? 1 : 0);
        if (input.value >= 0)
            key.add(m_values[std::size_t(input.value)].key);
    }
    if (value.usesSurface)
        key.add(m_surfaceKey);
    const OssEvWorkingSpace &working = m_target.graph->working();
    if (!working.isBt709)
        addWorking(working, &key);
    return key.key();
}

// A uniform operation on constants is computed here and now.
void OssEvPlanner::fold(Value *value) const
{
    if (value->kind != Kind::Point || !value->uniform)
        return;
    for (const ValueInput &input : value->inputs) {
        if (input.value >= 0 && m_values[std::size_t(input.value)].kind != Kind::Constant)
            return;
    }
    std::vector<FoldPlanes> planes(value->inputs.size() + 1);
    std::vector<OssEvStripInput> inputs(value->inputs.size());
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const ValueInput &input = value->inputs[i];
        inputs[i].connected = input.value >= 0;
        inputs[i].channels = input.wanted;
        std::array<float, 4> texel = input.fallback;
        if (input.value >= 0) {
            const Value &source = m_values[std::size_t(input.value)];
            texel = OssEvTexels::convert(source.constant, source.channels, input.wanted,
                                         m_target.graph->working().luminance);
        }
        planes[i].fill(texel);
        for (std::size_t k = 0; k < 4; ++k)
            inputs[i].plane[k] = planes[i].channel[k].data();
    }
    OssEvStrip strip;
    strip.frame = m_frame;
    strip.width = int(FoldTexels);
    strip.rows = 1;
    strip.inputs = inputs.data();
    strip.outputChannels = value->channels;
    planes.back().fill({});
    for (std::size_t k = 0; k < 4; ++k)
        strip.output[k] = planes.back().channel[k].data();
    static_cast<const OssEvPointOperation &>(*value->operation).run(strip);
    for (std::size_t k = 0; k < std::size_t(value->channels); ++k)
        value->constant[k] = planes.back().channel[k][0];
    value->kind = Kind::Constant;
    value->key = constantKey(value->constant, value->channels);
}

OssEvResult OssEvPlanner::makeImage(const Output &output, const OssEvImageOperation &operation,
                                    int *result)
{
    Value value;
    value.node = output.first;
    value.kernel = "image";
    value.image = {operation.name, operation.colorSpace, m_target.patch, {}, operation.space};
    value.kept = m_target.graph->nodes()[std::size_t(output.first)].cachePoint;
    OssEvImageInfo info;
    if (m_target.images != nullptr && !operation.name.empty()) {
        const OssEvResult described = m_target.images->describe(value.image, &info);
        if (!described) {
            const auto &name = m_target.graph->nodes()[std::size_t(output.first)].name;
            return OssEvResult::failureOf(name, described.error());
        }
    }
    value.channels = info.channels;
    if (info.width <= 0 || info.height <= 0) {
        value.frame = m_frame;
        value.key = constantKey(value.constant, value.channels);
        *result = add(std::move(value));
        return {};
    }
    value.kind = Kind::Image;
    value.image.content = info.content;
    value.precise = info.format == OssEvTile::Format::Float;
    value.isSequential = info.isSequential;
    // The reader halves as long as nothing is lost by it.
    OssEvFrame native{info.width, info.height, m_target.patch, 1.0};
    while (OssEvReduced(native, 1).width >= m_frame.width
           && OssEvReduced(native, 1).height >= m_frame.height) {
        native = OssEvReduced(native, 1);
        ++value.imageReduction;
    }
    value.frame = {native.width, native.height, m_target.patch, m_frame.scale};
    value.key = OssEvKeyBuilder()
                    .add("image")
                    .add(info.content)
                    .add(value.imageReduction)
                    .add(value.channels)
                    .key();
    *result = resampled(add(std::move(value)), m_frame);
    return {};
}

int OssEvPlanner::resampled(int value, const OssEvFrame &frame)
{
    const Value &source = m_values[std::size_t(value)];
    if (source.frame.width == frame.width && source.frame.height == frame.height)
        return value;
    Value result;
    result.kind = Kind::Area;
    result.node = source.node;
    result.kernel = "resample";
    result.operation = OssEvHidden::resampling(source.frame, frame);
    result.inputs = {{value, source.channels, {}}};
    result.frame = frame;
    result.channels = source.channels;
    result.precise = source.precise;
    result.key =
        OssEvKeyBuilder().add("resample").add(source.key).add(frame.width).add(frame.height).key();
    return add(std::move(result));
}

int OssEvPlanner::reduced(int value, int times)
{
    if (times == 0 || m_values[std::size_t(value)].kind == Kind::Constant)
        return value;
    const auto found = m_reduced.find({value, times});
    if (found != m_reduced.end())
        return found->second;
    const int before = reduced(value, times - 1);
    const Value &source = m_values[std::size_t(before)];
    Value result;
    result.kind = Kind::Area;
    result.node = source.node;
    result.kernel = "halve";
    result.operation = OssEvHidden::halving();
    result.inputs = {{before, source.channels, {}}};
    result.frame = OssEvReduced(source.frame, 1);
    result.channels = source.channels;
    result.precise = source.precise;
    result.key = OssEvKeyBuilder().add("halve").add(source.key).key();
    const int index = add(std::move(result));
    m_reduced[{value, times}] = index;
    return index;
}

int OssEvPlanner::add(Value value)
{
    m_values.push_back(std::move(value));
    return int(m_values.size()) - 1;
}
