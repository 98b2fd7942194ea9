#pragma once

#include "OssEvaluation/Values/OssEvResult.h"

#include <array>
#include <cstdint>
#include <map>
#include <string_view>
#include <tuple>
#include <vector>

/// A text in the language of the node Expression as steps for registers, each of which holds one number of
/// every texel. Equal parts are computed once, what is constant not at all, nor what nobody asks for.
///
/// Colours are red, green, blue and alpha, not premultiplied. What is computed with them is computed with red,
/// green and blue; alpha is that of the first colour among the operands, but `mix` and conditions mix and choose
/// it, too.
class OssEvExpression
{
public:
    enum class Op : std::uint8_t {
        Constant,
        Input, ///< slot: input times four plus channel
        Place, ///< slot: of Places
        // One operand.
        Not,
        Abs,
        Sign,
        Floor,
        Round,
        Sqrt,
        Exp,
        Log,
        Sin,
        Cos,
        // Two.
        Add,
        Subtract,
        Multiply,
        Divide,
        Modulo,
        Power,
        Minimum,
        Maximum,
        Less,
        LessOrEqual,
        Equal,
        Angle,
        // Three.
        Mix,
        Smooth,
        Select,
        Luminance,
        Noise,
        Fractal,
        Random
    };

    enum Places { U, V, Patch, Column, Row, X, Y, Z, NormalX, NormalY, NormalZ, PlaceCount };

    struct Step
    {
        Op op = Op::Constant;
        int to = 0;
        std::array<int, 3> from{-1, -1, -1};
        float number = 0.0F;
        int slot = 0;
    };

    /// Numbers that have names in the text.
    using Numbers = std::map<std::string_view, float, std::less<>>;

    static constexpr std::size_t LongestText = 4096;
    static constexpr int MostSteps = 1024;
    static constexpr int MostRegisters = 64;
    static constexpr int Deepest = 96;
    static constexpr int Inputs = 4;

    /// Fails with the line and column of what is wrong; throws std::bad_alloc at most.
    static OssEvResult read(std::string_view text, const Numbers &numbers,
                            OssEvExpression *expression);

    const std::vector<Step> &steps() const { return m_steps; }

    int registers() const { return m_registers; }

    /// Of red, green, blue and alpha.
    const std::array<int, 4> &result() const { return m_result; }

    /// Whether it is one number, which all three colours are.
    bool isScalar() const { return m_isScalar; }

    bool readsInput(int input) const { return ((m_inputs >> input) & 1U) != 0; }

    bool readsPlace(int place) const { return ((m_places >> place) & 1U) != 0; }

    static int operands(Op op);

private:
    friend class OssEvExpressionBuilder;

    void note(const Step &step);

    std::vector<Step> m_steps;
    int m_registers = 0;
    std::array<int, 4> m_result{};
    bool m_isScalar = false;
    unsigned m_inputs = 0;
    unsigned m_places = 0;
};

/// Gathers the steps of an expression while it is read. Numbers of parts count up from 0.
class OssEvExpressionBuilder
{
public:
    using Op = OssEvExpression::Op;

    int constant(float number);

    int input(int slot) { return part({Op::Input, 0, {-1, -1, -1}, 0.0F, slot}); }

    int place(int slot) { return part({Op::Place, 0, {-1, -1, -1}, 0.0F, slot}); }

    int apply(Op op, int a, int b = -1, int c = -1);

    bool isConstant(int index, float *number) const;

    std::size_t size() const { return m_parts.size(); }

    /// Leaves out what the result does not need and shares registers; false where there are too many.
    bool finish(const std::array<int, 4> &result, bool isScalar, OssEvExpression *expression) const;

private:
    using Step = OssEvExpression::Step;
    using Key = std::tuple<Op, int, int, int, std::uint32_t, int>;

    /// What no result needs is never used.
    static constexpr int Never = -1;

    int part(const Step &step);
    /// The part that looks at each one last; the number of parts for the result's.
    std::vector<int> lastUses(const std::array<int, 4> &result) const;

    std::vector<Step> m_parts;
    std::map<Key, int> m_known;
};
