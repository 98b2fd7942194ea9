#include "OssInterface/Properties/OssExpression.h"

#include <QCoreApplication>
#include <QVector>

#include <algorithm>
#include <cmath>

namespace {

constexpr double Pi = 3.14159265358979323846;
constexpr int LongestText = 1000;
constexpr int DeepestNesting = 100;

QString tr(const char *text)
{
    return QCoreApplication::translate("OssExpression", text);
}

struct Function
{
    const char *name;
    int arguments;
    double (*call)(const QVector<double> &a);
};

const Function Functions[] = {
    {"sqrt", 1,
     [](const QVector<double> &a) {
         return std::sqrt(a[0]);
     }},
    {"abs", 1,
     [](const QVector<double> &a) {
         return std::fabs(a[0]);
     }},
    {"floor", 1,
     [](const QVector<double> &a) {
         return std::floor(a[0]);
     }},
    {"ceil", 1,
     [](const QVector<double> &a) {
         return std::ceil(a[0]);
     }},
    {"round", 1,
     [](const QVector<double> &a) {
         return std::round(a[0]);
     }},
    {"exp", 1,
     [](const QVector<double> &a) {
         return std::exp(a[0]);
     }},
    {"log", 1,
     [](const QVector<double> &a) {
         return std::log(a[0]);
     }},
    {"sin", 1,
     [](const QVector<double> &a) {
         return std::sin(a[0]);
     }},
    {"cos", 1,
     [](const QVector<double> &a) {
         return std::cos(a[0]);
     }},
    {"tan", 1,
     [](const QVector<double> &a) {
         return std::tan(a[0]);
     }},
    {"rad", 1,
     [](const QVector<double> &a) {
         return a[0] * Pi / 180.0;
     }},
    {"deg", 1,
     [](const QVector<double> &a) {
         return a[0] * 180.0 / Pi;
     }},
    {"min", 2,
     [](const QVector<double> &a) {
         return std::min(a[0], a[1]);
     }},
    {"max", 2,
     [](const QVector<double> &a) {
         return std::max(a[0], a[1]);
     }},
    {"pow", 2,
     [](const QVector<double> &a) {
         return std::pow(a[0], a[1]);
     }},
    {"clamp", 3,
     [](const QVector<double> &a) {
         return std::min(std::max(a[0], a[1]), a[2]);
     }},
};

/// Recursive descent; the first fault is kept and everything after it gives 0.
class Parser
{
public:
    Parser(const QString &text, double present)
        : m_text(text)
        , m_present(present)
    {
    }

    double parse()
    {
        const double value = sum();
        skipBlanks();
        if (m_at < m_text.size())
            fail(tr("\"%1\" is not expected there").arg(m_text.mid(m_at)));
        return value;
    }

    QString fault() const { return m_fault; }

private:
    void fail(const QString &reason)
    {
        if (m_fault.isEmpty())
            m_fault = reason;
        m_at = m_text.size();
    }

    void skipBlanks()
    {
        while (m_at < m_text.size() && m_text.at(m_at).isSpace())
            ++m_at;
    }

    bool take(char c)
    {
        skipBlanks();
        if (m_at >= m_text.size() || m_text.at(m_at) != QLatin1Char(c))
            return false;
        ++m_at;
        return true;
    }

    double sum()
    {
        double value = product();
        for (;;) {
            if (take('+'))
                value += product();
            else if (take('-'))
                value -= product();
            else
                return value;
        }
    }

    double product()
    {
        double value = signedPower();
        for (;;) {
            if (take('*'))
                value *= signedPower();
            else if (take('/'))
                value /= signedPower();
            else
                return value;
        }
    }

    // The sign is weaker than the power: -2^2 is -4; but 2^-1 may be written.
    double signedPower()
    {
        if (++m_depth > DeepestNesting)
            fail(tr("it is nested too deep"));
        double value = 0.0;
        if (m_fault.isEmpty()) {
            if (take('-'))
                value = -signedPower();
            else if (take('+'))
                value = signedPower();
            else
                value = power();
        }
        --m_depth;
        return value;
    }

    double power()
    {
        double base = primary();
        while (take('%'))
            base /= 100.0;
        return take('^') ? std::pow(base, signedPower()) : base;
    }

    double primary()
    {
        if (take('(')) {
            const double value = sum();
            if (!take(')'))
                fail(tr("a parenthesis is not closed"));
            return value;
        }
        skipBlanks();
        if (m_at >= m_text.size()) {
            fail(tr("a number is missing"));
            return 0.0;
        }
        return m_text.at(m_at).isLetter() ? word() : number();
    }

    double number()
    {
        const int begin = m_at;
        const auto digits = [this] {
            while (m_at < m_text.size() && m_text.at(m_at).unicode() < 128
                   && m_text.at(m_at).isDigit())
                ++m_at;
        };
        digits();
        if (m_at < m_text.size() && m_text.at(m_at) == QLatin1Char('.')) {
            ++m_at;
            digits();
        }
        if (m_at < m_text.size() && m_text.at(m_at).toLower() == QLatin1Char('e')) {
            const int exponent = m_at++;
            if (m_at < m_text.size()
                && (m_text.at(m_at) == QLatin1Char('-') || m_text.at(m_at) == QLatin1Char('+')))
                ++m_at;
            const int first = m_at;
            digits();
            if (m_at == first)
                m_at = exponent;
        }
        bool ok = false;
        const double value = m_text.midRef(begin, m_at - begin).toDouble(&ok);
        if (!ok)
            fail(tr("\"%1\" is no number").arg(m_text.mid(begin)));
        return value;
    }

    double word()
    {
        const int begin = m_at;
        while (m_at < m_text.size() && m_text.at(m_at).isLetter())
            ++m_at;
        const QString name = m_text.mid(begin, m_at - begin);
        if (name == QLatin1String("pi"))
            return Pi;
        if (name == QLatin1String("x"))
            return m_present;
        for (const Function &function : Functions) {
            if (name == QLatin1String(function.name))
                return call(function);
        }
        fail(tr("\"%1\" is not known").arg(name));
        return 0.0;
    }

    double call(const Function &function)
    {
        QVector<double> arguments;
        bool closed = false;
        if (take('(')) {
            do
                arguments.append(sum());
            while (take(','));
            closed = take(')');
        }
        if (m_fault.isEmpty() && closed && arguments.size() == function.arguments)
            return function.call(arguments);
        fail(tr("\"%1\" wants %2 numbers in parentheses")
                 .arg(QLatin1String(function.name))
                 .arg(function.arguments));
        return 0.0;
    }

    QString m_text;
    double m_present;
    QString m_fault;
    int m_at = 0;
    int m_depth = 0;
};

} // namespace

OssResult OssExpression::evaluate(const QString &text, double present, double *value)
{
    QString whole = text.trimmed();
    if (whole.size() > LongestText)
        return OssResult::failure(tr("it is too long"));
    const bool sets = whole.startsWith(QLatin1String("+="))
                      || whole.startsWith(QLatin1String("-="));
    if (sets)
        whole = QStringLiteral("x %1 (%2)").arg(whole.at(0)).arg(whole.mid(2));
    else if (whole.startsWith(QLatin1Char('*')) || whole.startsWith(QLatin1Char('/')))
        whole.prepend(QLatin1Char('x'));
    Parser parser(whole, present);
    const double result = parser.parse();
    if (!parser.fault().isEmpty())
        return OssResult::failure(parser.fault());
    if (!std::isfinite(result))
        return OssResult::failure(tr("the result is no finite number"));
    *value = result;
    return {};
}
