#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvParameter.h"
#include "OssEvaluation/Values/OssEvRegion.h"
#include "OssEvaluation/Values/OssEvResult.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Attribute of a kernel. The fallback's type is the parameter's type.
struct OssEvParameterDescription
{
    std::string name;
    OssEvParameter fallback;
    double minimum = -std::numeric_limits<double>::infinity();
    double maximum = std::numeric_limits<double>::infinity();
    /// Texts of a choice, whose value is their number.
    std::vector<std::string> choices;
};

struct OssEvKernelInput
{
    std::string name;
    /// 1, 3 or 4; 0 takes what is connected as it is.
    int channels = 0;
    /// Nothing sensible can be computed without it.
    bool required = false;
    /// Parameter that names an image to use while nothing is connected.
    std::string imageParameter = {};
    /// Kernel that is computed while nothing is connected, from parameters that have the same names, and
    /// its output: a node of its own to the engine, so what only its consumer asks for leaves it in the cache.
    std::string standIn = {};
    std::string standInOutput = {};
};

struct OssEvKernelOutput
{
    std::string name;
    /// 1, 3 or 4; 0 is as many as the first input has, or the only one that is read.
    int channels = 0;
    /// Cached in full precision.
    bool precise = false;
};

class OssEvKernelSetup;

/// One kind of computation and what it takes, by the names that node types give it.
struct OSSEVALUATION_EXPORT OssEvKernel
{
    std::string name;
    /// Raised whenever the same parameters begin to give other pixels.
    int version = 1;
    std::vector<OssEvKernelInput> inputs;
    std::vector<OssEvKernelOutput> outputs;
    std::vector<OssEvParameterDescription> parameters;
    /// Reads the surface of the mesh that is textured.
    bool usesSurface = false;
    /// Result does not depend on the place: constant inputs give a constant.
    bool uniform = false;
    /// Worth a place in the cache even where a run would go on.
    bool costly = false;
    /// Results are as precise as the most precise input.
    bool keepsPrecision = false;
    std::function<std::shared_ptr<const OssEvOperation>(const OssEvKernelSetup &setup)> make;
    /// Channels of an output that depend on parameters; not set otherwise.
    std::function<int(const OssEvKernelSetup &setup)> outputChannels = {};
    /// Why nothing can be made of parameters that are complete; not set where something always can.
    std::function<OssEvResult(const OssEvParameters &parameters)> check = {};

    /// -1 when there is none of that name.
    int inputIndex(std::string_view inputName) const;
    int outputIndex(std::string_view outputName) const;

    /// Completes parameters from defaults, brings them to their types and ranges and leaves out
    /// what the kernel does not know. Fails when a value is of no use.
    OssEvResult normalise(const OssEvParameters &given, OssEvParameters *complete) const;
};

/// What an operation is made from. The parameters are complete and of the right types.
class OSSEVALUATION_EXPORT OssEvKernelSetup
{
public:
    /// The parameters must outlive the setup.
    OssEvKernelSetup(const OssEvParameters &parameters, std::vector<bool> connected, int output,
                     const OssEvFrame &frame, const OssEvWorkingSpace &working = {});

    double real(std::string_view name) const;
    int integer(std::string_view name) const;
    bool flag(std::string_view name) const;
    OssEvColor color(std::string_view name) const;
    /// The colour with its channels multiplied by alpha, as it flows through wires.
    std::array<float, 4> premultiplied(std::string_view name) const;
    OssEvVector2 vector(std::string_view name) const;
    std::string text(std::string_view name) const;
    OssEvCurve curve(std::string_view name) const;
    OssEvRamp ramp(std::string_view name) const;

    bool isConnected(std::size_t input) const { return m_connected[input]; }

    int output() const { return m_output; }

    const OssEvFrame &frame() const { return m_frame; }

    const OssEvWorkingSpace &working() const { return m_working; }

private:
    template <class T>
    T value(std::string_view name) const;

    const OssEvParameters &m_parameters;
    std::vector<bool> m_connected;
    int m_output;
    OssEvFrame m_frame;
    OssEvWorkingSpace m_working;
};

/// Short forms for tables of parameters.
namespace OssEvDescribe {

OssEvParameterDescription real(std::string name, double fallback,
                               double minimum = -std::numeric_limits<double>::infinity(),
                               double maximum = std::numeric_limits<double>::infinity());
OssEvParameterDescription integer(std::string name, int fallback, int minimum, int maximum);
OssEvParameterDescription flag(std::string name, bool fallback);
OssEvParameterDescription color(std::string name, const OssEvColor &fallback);
OssEvParameterDescription vector(std::string name, const OssEvVector2 &fallback);
OssEvParameterDescription text(std::string name);
OssEvParameterDescription curve(std::string name);
OssEvParameterDescription ramp(std::string name);
/// The first choice is the fallback unless another is named.
OssEvParameterDescription choice(std::string name, std::vector<std::string> choices,
                                 int fallback = 0);

} // namespace OssEvDescribe
