#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvPaintMask.h"
#include "OssEvaluation/Paint/OssEvPaintPicture.h"
#include "OssEvaluation/Paint/OssEvStamp.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <array>
#include <cstdint>

/// What a stroke is painted with.
struct OSSEVALUATION_EXPORT OssEvBrush
{
    enum class Tool {
        Brush,
        Eraser,
        Clone,    ///< paints with the colours of another place, as they were before the stroke
        Smear,    ///< takes colours along
        Blur,     ///< makes colours as those around them
        Fill,     ///< one press, and no dabs
        Gradient, ///< a line from where it is as the brush to where it ends, and no dabs
    };

    enum class GradientTo {
        Nothing, ///< it covers less and less
        Color,   ///< the second one
    };

    /// Where it may paint.
    enum class Within {
        Everywhere,
        Island,   ///< the piece of the texture where the stroke begins
        Face,     ///< of the mesh's file
        Material, ///< slot of the mesh
        Painted,  ///< in proportion to the alpha before the stroke
        Bare,     ///< where that is not
    };

    enum class PictureOn {
        Patches, ///< so many times across a patch
        Sheet,   ///< as it lies on the screen
    };

    /// What the size is counted in.
    enum class SizeIn {
        Texels, ///< of what is painted on
        Pixels, ///< of the screen
        World,  ///< of the object
    };

    Tool tool = Tool::Brush;
    std::array<float, 3> color{1.0F, 1.0F, 1.0F}; ///< scene-linear
    GradientTo gradientTo = GradientTo::Nothing;
    std::array<float, 3> secondColor{0.0F, 0.0F, 0.0F}; ///< scene-linear
    OssEvPaintPicture::Pointer picture; ///< paints instead of the colour; may be null
    PictureOn pictureOn = PictureOn::Patches;
    double pictureRepeats = 1.0; ///< across a patch
    int blend = 0; ///< one of OssEvMergeRows::modes(), of what is painted over what is there
    /// Of the space in which colours are, for modes that ask how bright they are.
    OssEvWorkingSpace::Weights luminance = OssEvWorkingSpace::Bt709Luminance;
    SizeIn sizeIn = SizeIn::Texels;
    double radius = 32.0;     ///< in texels or pixels
    double worldRadius = 0.1; ///< where the size is counted in the object's world
    double hardness = 0.5;    ///< part of the radius that is covered fully, 0 to 1
    double opacity = 1.0;     ///< of a whole stroke, however often it goes over a place
    double flow = 1.0; ///< of a dab, 0 to 1: below 1 dabs add up, to the stroke's opacity at most
    double spacing = 0.125; ///< from dab to dab, in parts of the radius
    double roundness = 1.0; ///< short axis by long axis
    double angle = 0.0;     ///< of the long axis, in degrees, against the clock
    /// By how much dabs differ by chance, 0 to 1: smaller by up to so much; turned by up to half a turn;
    /// put aside by up to so many radii; covering less by up to so much.
    double sizeJitter = 0.0;
    double angleJitter = 0.0;
    double placeJitter = 0.0;
    double flowJitter = 0.0;
    bool followsStroke = false;  ///< the angle is counted from where the stroke goes
    bool pressureSizes = true;   ///< a light hand makes dabs smaller
    bool pressureCovers = false; ///< a light hand makes dabs cover less
    OssEvStamp::Pointer stamp;   ///< null: round
    Within within = Within::Everywhere;
    OssEvPaintMask::Pointer mask; ///< lets more or less of everything through; null: all
    OssEvStamp::Pointer stencil;  ///< lies on the screen and lets paint through; null: none
    /// From places of a stroke to the sheet on the screen that stencil and picture lie on, from -1 to 1 and
    /// y downwards: x' = s[0] x + s[1] y + s[2], y' = s[3] x + s[4] y + s[5].
    std::array<double, 6> toSheet{};
    /// From a place of the stroke to that whose colours are cloned.
    std::array<double, 2> cloneFrom{};

    // On objects
    std::array<bool, 3> mirrors{}; ///< also on the other side of x = 0, y = 0, z = 0
    bool goesThrough = false;      ///< also on what is hidden or turned away

    bool erases() const { return tool == Tool::Eraser; }

    /// Whether its colour becomes the second one on the way.
    bool hasSecondColor() const
    {
        return tool == Tool::Gradient && gradientTo == GradientTo::Color;
    }

    /// Whether dabs change the colours that are there, one after the other, and lay none over them.
    bool changesColors() const { return tool == Tool::Smear || tool == Tool::Blur; }

    /// Whether what it leaves depends on the colours that are there.
    bool looksBeneath() const
    {
        return changesColors() || tool == Tool::Clone || (blend != 0 && !erases())
               || within == Within::Painted || within == Within::Bare;
    }
};

/// One dab: a brush as it touches a place once. Lengths in texels.
class OSSEVALUATION_EXPORT OssEvDabShape
{
public:
    /// `number` of the dab in its stroke, which decides what chance does; `heading`: where the stroke
    /// goes, in radians against the clock from the right.
    OssEvDabShape(const OssEvBrush &brush, double radius, double pressure, double heading,
                  std::uint32_t number);

    double radius() const { return m_radius; }

    /// Texels beyond it are not covered.
    double reach() const { return m_reach; }

    /// By which the dab lies beside its place.
    double asideX() const { return m_asideX; }

    double asideY() const { return m_asideY; }

    /// Whether coverage depends on the distance alone.
    bool isRound() const { return m_isRound; }

    /// How much a texel is covered whose centre lies so far from the dab's: falls smoothly from 1 to 0,
    /// over a texel at least. The distance comes squared: most texels need no root.
    float atSquare(double square) const;
    /// x to the right, y downwards.
    float at(double x, double y) const;

    /// Whether dabs cover no less than what lies below them: nothing adds up.
    bool isWhole() const { return m_isWhole; }

    /// Coverage of a place, with this dab's on it.
    float over(float covered, float dab) const
    {
        const float amount = dab * m_strength;
        if (!m_isWhole)
            return covered + (1.0F - covered) * amount;
        return covered > amount ? covered : amount;
    }

private:
    OssEvStamp::Pointer m_stamp;
    double m_radius;
    double m_reach;
    double m_core;
    double m_cosine = 1.0;
    double m_sine = 0.0;
    double m_flatness = 1.0; ///< long axis by short axis
    double m_asideX = 0.0;
    double m_asideY = 0.0;
    float m_strength = 1.0F;
    bool m_isRound = true;
    bool m_isWhole = true;
};
