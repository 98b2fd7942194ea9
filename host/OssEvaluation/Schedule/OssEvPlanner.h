#pragma once

#include "OssEvaluation/Schedule/OssEvPlan.h"

#include <map>
#include <vector>

/// Turns a graph into values and values into stages; lives for one plan, on the one thread that
/// makes it: a worker of the pool, or whoever bakes. Takes no lock and is called with none held: it reads
/// the target, which is immutable, and asks the image provider, which may look at files.
class OssEvPlanner
{
public:
    /// The target must outlive the planner.
    explicit OssEvPlanner(const OssEvTarget &target);

    /// Once. Throws std::bad_alloc, and whatever kernels throw when they make operations.
    OssEvResult run(OssEvPlan *plan);

private:
    enum class Kind { Constant, Point, Area, Image };

    struct ValueInput
    {
        /// -1 for an input that is not connected.
        int value = -1;
        int wanted = 1;
        std::array<float, 4> fallback{};
    };

    /// Pixels that a node makes at an output, perhaps halved a few times.
    struct Value
    {
        Kind kind = Kind::Constant;
        int node = -1;
        const char *kernel = "";
        std::shared_ptr<const OssEvOperation> operation;
        std::vector<ValueInput> inputs;
        OssEvFrame frame;
        int channels = 1;
        bool precise = false;
        bool usesSurface = false;
        bool uniform = false;
        bool costly = false;
        OssEvKey key;
        std::array<float, 4> constant{};
        OssEvImageProvider::Image image;
        int imageReduction = 0;
        bool isSequential = false;
        int uses = 0;
        bool kept = false;
        int stage = -1;
    };

    using Output = std::pair<int, int>;

    // Values: OssEvPlanner_values.cpp. Called within run() alone, as what follows.

    void findOperations(const std::vector<int> &order);
    OssEvResult makeValues(const std::vector<int> &order);
    OssEvResult makeValue(const Output &output, int *result);
    /// Asks the provider: the only part that may wait, for a file's header.
    OssEvResult makeImage(const Output &output, const OssEvImageOperation &operation, int *result);
    void connectInputs(const Output &output, Value *value);
    void describeOutput(const Output &output, Value *value) const;
    OssEvKey keyOf(const Output &output, const Value &value) const;
    /// Runs a point operation on constants, on this thread.
    void fold(Value *value) const;
    int reduced(int value, int times);
    int resampled(int value, const OssEvFrame &frame);
    int add(Value value);

    // Stages: OssEvPlanner.cpp. Nothing but lists of its own.

    void chooseKept(int target);
    void makeStages(int target, OssEvPlan *plan);
    void makeStage(int index, OssEvPlanStage *stage, std::vector<int> *needed);
    std::vector<int> runOf(int value, int *head) const;
    void keepOtherAreas(const std::vector<int> &run, int head);
    void addHead(int head, OssEvPlanStage *stage, std::vector<int> *needed) const;
    void addSteps(const std::vector<int> &run, int head, OssEvPlanStage *stage,
                  std::vector<int> *needed) const;
    OssEvPlanSource sourceOf(const ValueInput &input, const std::map<int, int> &steps, int head,
                             std::vector<int> *needed) const;
    static void assignBuffers(OssEvPlanStage *stage);

    const OssEvTarget &m_target;
    OssEvFrame m_frame;
    OssEvKey m_surfaceKey;
    std::map<Output, std::shared_ptr<const OssEvOperation>> m_operations;
    std::map<Output, int> m_outputs;
    std::map<std::pair<int, int>, int> m_reduced;
    std::vector<Value> m_values;
};
