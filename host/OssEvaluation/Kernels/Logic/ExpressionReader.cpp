// From the text of an expression to its steps: a recursive descent that applies what it reads at once.

#include "OssEvaluation/Kernels/Logic/Expression.h"
#include "OssEvaluation/Kernels/Logic/ExpressionValues.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string>
#include <utility>

namespace {

using Op = OssEvExpression::Op;
using Value = OssEvExpressionValues::Value;

/// What is wrong, and where in the text.
struct Fault
{
    std::size_t place = 0;
    std::string reason{};
};

struct Named
{
    const char *name;
    int slot;
};

constexpr Named PlaceNames[] = {
    {"u", OssEvExpression::U},         {"v", OssEvExpression::V},
    {"patch", OssEvExpression::Patch}, {"column", OssEvExpression::Column},
    {"row", OssEvExpression::Row},     {"x", OssEvExpression::X},
    {"y", OssEvExpression::Y},         {"z", OssEvExpression::Z},
    {"nx", OssEvExpression::NormalX},  {"ny", OssEvExpression::NormalY},
    {"nz", OssEvExpression::NormalZ}};

constexpr std::string_view InputNames = "abcd";

template <std::size_t Count>
int slotOf(const Named (&table)[Count], std::string_view name)
{
    const auto *found = std::find_if(std::begin(table), std::end(table),
                                     [name](const Named &row) { return row.name == name; });
    return found == std::end(table) ? -1 : found->slot;
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Not the first byte of a character.
bool isContinued(char c)
{
    return (std::uint8_t(c) & 0xC0U) == 0x80U;
}

class Reader
{
public:
    Reader(std::string_view text, const OssEvExpression::Numbers &numbers)
        : m_text(text)
        , m_numbers(numbers)
    {
    }

    /// The value of the whole text; meaningless where there is a fault.
    Value program()
    {
        for (;;) {
            skip();
            const std::size_t begin = m_at;
            const std::string_view name = readName();
            skip();
            const bool isNaming = !name.empty() && peek() == '=' && peek(1) != '=';
            if (!isNaming) {
                m_at = begin;
                break;
            }
            ++m_at;
            if (isKnown(name))
                fail(begin, "\"" + std::string(name) + "\" has a meaning already");
            const Value value = expression();
            expect(';', "\";\" ends what gets a name");
            if (m_hasFailed)
                return value;
            m_own[name] = value;
        }
        const Value value = expression();
        accept(";");
        skip();
        if (m_at < m_text.size())
            failHere();
        return value;
    }

    bool hasFailed() const { return m_hasFailed; }

    const Fault &fault() const { return m_fault; }

    OssEvResult finish(const Value &value, OssEvExpression *expression)
    {
        return m_values.finish(value, expression);
    }

private:
    // Text.

    char peek(std::size_t ahead = 0) const
    {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0';
    }

    void skip()
    {
        for (; m_at < m_text.size(); ++m_at) {
            const char c = m_text[m_at];
            if (c == '#') {
                const std::size_t end = m_text.find('\n', m_at);
                m_at = (end == std::string_view::npos ? m_text.size() : end) - 1;
            } else if (c != ' ' && c != '\t' && c != '\n' && c != '\r') {
                return;
            }
        }
    }

    bool accept(std::string_view sign)
    {
        skip();
        if (m_text.substr(m_at, sign.size()) != sign)
            return false;
        m_at += sign.size();
        return true;
    }

    void expect(char sign, const char *otherwise)
    {
        if (!accept(std::string_view(&sign, 1)))
            fail(m_at, otherwise);
    }

    std::string_view readName()
    {
        const std::size_t begin = m_at;
        while (isLetter(peek()) || (m_at > begin && isDigit(peek())))
            ++m_at;
        return m_text.substr(begin, m_at - begin);
    }

    /// The first one counts. Reading ends with it: nothing is left to be read.
    void fail(std::size_t place, std::string reason)
    {
        if (!m_hasFailed)
            m_fault = {place, std::move(reason)};
        m_hasFailed = true;
        m_at = m_text.size();
    }

    /// Names the character that is there, all of its bytes.
    void failHere()
    {
        if (m_at >= m_text.size()) {
            fail(m_at, "something is missing at the end");
            return;
        }
        std::size_t end = m_at + 1;
        while (end < m_text.size() && end < m_at + 4 && isContinued(m_text[end]))
            ++end;
        fail(m_at, "\"" + std::string(m_text.substr(m_at, end - m_at)) + "\" is not expected here");
    }

    bool isKnown(std::string_view name) const
    {
        return slotOf(PlaceNames, name) >= 0 || inputOf(name) >= 0 || m_numbers.count(name) != 0;
    }

    static int inputOf(std::string_view name)
    {
        const std::size_t found = name.size() == 1 ? InputNames.find(name[0])
                                                   : std::string_view::npos;
        return found == std::string_view::npos ? -1 : int(found);
    }

    template <class... Values>
    Value each(Op op, const Values &...values)
    {
        return m_values.each(op, {values...});
    }

    // Grammar.

    Value number(float value) { return m_values.number(value); }

    Value expression()
    {
        if (++m_depth > OssEvExpression::Deepest)
            fail(m_at, "this is nested too deeply");
        const Value condition = alternative();
        Value result = condition;
        if (accept("?")) {
            const Value yes = expression();
            expect(':', "\":\" is missing after \"?\"");
            const Value no = expression();
            result = m_values.select(condition, yes, no);
        }
        --m_depth;
        return result;
    }

    Value alternative()
    {
        Value left = conjunction();
        while (accept("||"))
            left = each(Op::Maximum, m_values.truth(left), m_values.truth(conjunction()));
        return left;
    }

    Value conjunction()
    {
        Value left = comparison();
        while (accept("&&"))
            left = each(Op::Minimum, m_values.truth(left), m_values.truth(comparison()));
        return left;
    }

    Value comparison()
    {
        Value left = sum();
        for (;;) {
            if (accept("<="))
                left = each(Op::LessOrEqual, left, sum());
            else if (accept(">="))
                left = turned(Op::LessOrEqual, left);
            else if (accept("<"))
                left = each(Op::Less, left, sum());
            else if (accept(">"))
                left = turned(Op::Less, left);
            else if (accept("=="))
                left = each(Op::Equal, left, sum());
            else if (accept("!="))
                left = each(Op::Not, each(Op::Equal, left, sum()));
            else
                return left;
        }
    }

    Value turned(Op op, const Value &left)
    {
        const Value right = sum();
        return each(op, right, left);
    }

    Value sum()
    {
        Value left = product();
        for (;;) {
            if (accept("+"))
                left = each(Op::Add, left, product());
            else if (accept("-"))
                left = each(Op::Subtract, left, product());
            else
                return left;
        }
    }

    Value product()
    {
        Value left = signedValue();
        for (;;) {
            if (accept("*"))
                left = each(Op::Multiply, left, signedValue());
            else if (accept("/"))
                left = each(Op::Divide, left, signedValue());
            else if (accept("%"))
                left = each(Op::Modulo, left, signedValue());
            else
                return left;
        }
    }

    Value signedValue()
    {
        if (++m_depth > OssEvExpression::Deepest)
            fail(m_at, "this is nested too deeply");
        skip();
        Value value;
        if (accept("-"))
            value = each(Op::Subtract, number(0.0F), signedValue());
        else if (peek() == '!' && peek(1) != '=' && accept("!"))
            value = each(Op::Not, signedValue());
        else
            value = raised();
        --m_depth;
        return value;
    }

    Value raised()
    {
        const Value base = part();
        if (!accept("^"))
            return base;
        return m_values.power(base, signedValue());
    }

    Value part()
    {
        Value value = atom();
        for (skip(); peek() == '.' && isLetter(peek(1)); skip()) {
            const std::size_t place = m_at++;
            const std::string_view name = readName();
            const std::size_t channel = std::string_view("rgba").find(name);
            if (name.size() != 1 || channel == std::string_view::npos)
                fail(place, "a color has .r, .g, .b and .a");
            else
                value = m_values.channel(value, channel);
        }
        return value;
    }

    Value atom()
    {
        skip();
        if (m_values.isTooMuch())
            fail(m_at, "this is more than can be computed");
        const std::size_t place = m_at;
        if (isDigit(peek()) || (peek() == '.' && isDigit(peek(1))))
            return literal();
        if (accept("(")) {
            const Value value = expression();
            expect(')', "\")\" is missing");
            return value;
        }
        const std::string_view name = readName();
        if (name.empty()) {
            failHere();
            return number(0.0F);
        }
        skip();
        if (peek() == '(')
            return call(name, place);
        return named(name, place);
    }

    Value literal()
    {
        float value = 0.0F;
        const char *begin = m_text.data() + m_at;
        const auto read = std::from_chars(begin, m_text.data() + m_text.size(), value);
        if (read.ec != std::errc()) {
            fail(m_at, "this number is too large or too small");
            return number(0.0F);
        }
        m_at += std::size_t(read.ptr - begin);
        return number(value);
    }

    Value named(std::string_view name, std::size_t place)
    {
        const auto own = m_own.find(name);
        if (own != m_own.end())
            return own->second;
        const auto given = m_numbers.find(name);
        if (given != m_numbers.end())
            return number(given->second);
        if (name == "pi")
            return number(3.14159265F);
        if (inputOf(name) >= 0)
            return m_values.input(inputOf(name));
        const int slot = slotOf(PlaceNames, name);
        if (slot >= 0)
            return m_values.place(slot);
        fail(place, "there is no \"" + std::string(name) + "\"");
        return number(0.0F);
    }

    std::vector<Value> arguments()
    {
        constexpr std::size_t Most = 6;
        std::vector<Value> values;
        expect('(', "\"(\" is missing");
        if (accept(")"))
            return values;
        do {
            values.push_back(expression());
        } while (accept(",") && values.size() < Most);
        expect(')', "\")\" is missing");
        return values;
    }

    Value call(std::string_view name, std::size_t place)
    {
        const std::vector<Value> values = arguments();
        Value result = number(0.0F);
        std::string reason;
        if (!m_hasFailed && !m_values.call(name, values, &result, &reason))
            fail(place, reason);
        return result;
    }

    std::string_view m_text;
    const OssEvExpression::Numbers &m_numbers;
    std::map<std::string_view, Value> m_own;
    OssEvExpressionValues m_values;
    std::size_t m_at = 0;
    int m_depth = 0;
    bool m_hasFailed = false;
    Fault m_fault;
};

std::string placeOf(std::string_view text, std::size_t at)
{
    const std::string_view before = text.substr(0, at);
    const auto lines = std::count(before.begin(), before.end(), '\n');
    const std::size_t begin = lines == 0 ? 0 : before.rfind('\n') + 1;
    // Characters of several bytes count once.
    const auto column = 1
                        + std::count_if(before.begin() + std::ptrdiff_t(begin), before.end(),
                                        [](char c) { return !isContinued(c); });
    return (lines > 0 ? "line " + std::to_string(lines + 1) + ", " : std::string()) + "column "
           + std::to_string(column);
}

} // namespace

OssEvResult OssEvExpression::read(std::string_view text, const Numbers &numbers,
                                  OssEvExpression *expression)
{
    if (text.size() > LongestText)
        return OssEvResult::failure("the expression is longer than " + std::to_string(LongestText)
                                    + " characters");
    Reader reader(text, numbers);
    const Value value = reader.program();
    if (reader.hasFailed())
        return OssEvResult::failure(placeOf(text, reader.fault().place) + ": "
                                    + reader.fault().reason);
    return reader.finish(value, expression);
}
