#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <functional>
#include <memory>
#include <vector>

/// How the values of a channel are spread.
class OssEvDistribution
{
public:
    /// Of no value at all: everything is 0.
    OssEvDistribution() = default;
    explicit OssEvDistribution(const std::vector<float> &values);

    double low() const { return m_low; }

    double high() const { return m_high; }

    double mean() const { return m_mean; }

    /// The standard deviation.
    double spread() const { return m_spread; }

    /// The value below which a part of all lies, from 0 to 1; evenly between the bins' ends.
    double valueAt(double part) const;
    /// The part that lies below a value.
    double partBelow(double value) const;

private:
    double m_low = 0.0;
    double m_high = 0.0;
    double m_mean = 0.0;
    double m_spread = 0.0;
    std::vector<double> m_below; ///< parts below the ends of the bins, the first of which is 0
};

/// What is known of a whole picture: of its channels, and of its luminance, which of a picture with one
/// channel is that channel.
struct OssEvPictureStatistics
{
    std::vector<OssEvDistribution> channels;
    OssEvDistribution luminance;
};

/// Changes a picture by what all of it is like. That is found in the picture halved until it is no
/// larger than MeasuredSize, each time anew and the same for every block, so that neither tiles nor
/// the size of the patch matter. Texels that are transparent, or that no face covers, do not count.
/// Each patch is looked at by itself.
class OssEvMeasuredOperation : public OssEvAreaOperation
{
public:
    static constexpr int MeasuredSize = 256;

    /// Makes what is done to each texel from the statistics of the measured inputs: an operation as
    /// OssEvMasked has it.
    using Make = std::function<std::shared_ptr<const OssEvPointOperation>(
        const std::vector<OssEvPictureStatistics> &statistics)>;

    /// `measured` counts inputs of the kernel; the first one is what is changed.
    OssEvMeasuredOperation(const OssEvFrame &frame, const std::vector<std::size_t> &measured,
                           std::size_t mask, const OssEvWorkingSpace::Weights &luminance,
                           Make make);

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override;
    void run(const OssEvBlock &block) const override;

    /// Whether the mask is connected.
    bool isMasked = false;

private:
    OssEvPictureStatistics measure(const OssEvBlock &block, std::size_t tap) const;

    OssEvFrame m_reduced;
    OssEvWorkingSpace::Weights m_luminance;
    Make m_make;
};
