#include "OssCore/Values/OssAttributeKind.h"

#include "OssCore/Values/OssColor.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssCore/Values/OssNumberText.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssCore/Values/OssValueText.h"

#include <QPointF>

#include <cmath>
#include <limits>

namespace {

// --- any kind

QString textOf(const QVariant &value)
{
    return value.toString();
}

QVariant sameValue(const QVariant &value)
{
    return value;
}

QVariant converted(const QVariant &example, const QVariant &value)
{
    if (value.userType() == example.userType())
        return value;
    if (value.userType() == QMetaType::QString)
        return OssAttributeKind::ofType(example.userType())->form.fromText(value.toString());
    QVariant other = value;
    return other.convert(example.userType()) ? other : QVariant();
}

/// The numbers of a plain list; empty when something in it is none.
QVector<double> numbersOf(const QVariant &list)
{
    QVector<double> numbers;
    const QVariantList entries = list.toList();
    for (const QVariant &entry : entries) {
        bool good = false;
        numbers.append(entry.toDouble(&good));
        if (!good)
            return {};
    }
    return numbers;
}

// --- numbers and texts

QString realToText(const QVariant &value)
{
    return OssNumberText::of(value.toDouble());
}

QVariant realFromText(const QString &text)
{
    double number = 0.0;
    return OssNumberText::read(text, 1, &number) ? QVariant(number) : QVariant();
}

QVariant integerFromText(const QString &text)
{
    bool good = false;
    const int number = text.toInt(&good);
    return good ? QVariant(number) : QVariant();
}

QVariant integerLike(const QVariant &example, const QVariant &value)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (!isNumber || value.userType() == QMetaType::QString)
        return converted(example, value);
    constexpr double Largest = std::numeric_limits<int>::max();
    return std::abs(number) <= Largest ? QVariant(qRound(number)) : QVariant();
}

QString flagToText(const QVariant &value)
{
    return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
}

QVariant flagFromText(const QString &text)
{
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    return text == QLatin1String("false") || text == QLatin1String("0") ? QVariant(false)
                                                                        : QVariant();
}

QVariant textFromText(const QString &text)
{
    return text;
}

// --- colours

QString colorToText(const QVariant &value)
{
    return value.value<OssColor>().toString();
}

QVariant colorFromText(const QString &text)
{
    bool good = false;
    const OssColor color = OssColor::fromString(text, &good);
    return good ? QVariant::fromValue(color) : QVariant();
}

QVariant colorToPlain(const QVariant &value)
{
    const auto color = value.value<OssColor>();
    return QVariantList{color.red(), color.green(), color.blue(), color.alpha()};
}

QVariant colorLike(const QVariant &example, const QVariant &value)
{
    QVariant found = converted(example, value);
    if (value.userType() == QMetaType::QVariantList) {
        const QVector<double> v = numbersOf(value);
        if (v.size() != 3 && v.size() != 4)
            return {};
        found = QVariant::fromValue(OssColor(v[0], v[1], v[2], v.size() == 4 ? v[3] : 1.0));
    }
    const auto color = found.value<OssColor>();
    return std::isfinite(color.red() + color.green() + color.blue() + color.alpha()) ? found
                                                                                     : QVariant();
}

// --- points

QString pointToText(const QVariant &value)
{
    return OssNumberText::of({value.toPointF().x(), value.toPointF().y()});
}

QVariant pointFromText(const QString &text)
{
    double v[2] = {};
    return OssNumberText::read(text, 2, v) ? QVariant(QPointF(v[0], v[1])) : QVariant();
}

QVariant pointToPlain(const QVariant &value)
{
    return QVariantList{value.toPointF().x(), value.toPointF().y()};
}

QVariant pointLike(const QVariant &example, const QVariant &value)
{
    QVariant found = converted(example, value);
    if (value.userType() == QMetaType::QVariantList) {
        const QVector<double> v = numbersOf(value);
        found = v.size() == 2 ? QVariant(QPointF(v[0], v[1])) : QVariant();
    }
    const QPointF point = found.toPointF();
    return std::isfinite(point.x() + point.y()) ? found : QVariant();
}

// --- choices

QString choiceToText(const QVariant &value)
{
    return QString::number(value.value<OssUserEnum>().currentValue());
}

QVariant choiceFromText(const QString &text)
{
    bool good = false;
    const int number = text.toInt(&good);
    return good ? QVariant::fromValue(OssUserEnum({}, number)) : QVariant();
}

QVariant choiceToPlain(const QVariant &value)
{
    return value.value<OssUserEnum>().currentName();
}

QVariant choiceLike(const QVariant &example, const QVariant &value)
{
    auto choice = example.value<OssUserEnum>();
    if (value.userType() == example.userType()) {
        const auto other = value.value<OssUserEnum>();
        // Any number is kept: it may be a newer type's.
        if (other.names().isEmpty() || other.names() == choice.names()) {
            choice.setCurrentValue(other.currentValue());
            return QVariant::fromValue(choice);
        }
    }
    int index = choice.names().indexOf(value.toString());
    if (index < 0 && value.userType() != example.userType()) {
        // As a real, for a conversion to a whole number takes what is none, and what is too large.
        bool good = false;
        const double number = value.toDouble(&good);
        const bool names = good && number >= 0.0 && number < choice.names().size()
                           && number == std::floor(number);
        index = names ? int(number) : -1;
    }
    choice.setCurrentValue(index);
    return index < 0 ? QVariant() : QVariant::fromValue(choice);
}

// --- lists

/// A list of one empty text must differ from the empty list.
const QString OneEmptyText = QStringLiteral("\\");

QString listToText(const QVariant &value)
{
    const QStringList list = value.toStringList();
    QString text;
    for (int i = 0; i < list.size(); ++i) {
        if (i > 0)
            text += QLatin1Char(',');
        for (const QChar c : list.at(i)) {
            if (c == QLatin1Char(',') || c == QLatin1Char('\\'))
                text += QLatin1Char('\\');
            text += c;
        }
    }
    return list.size() == 1 && list.first().isEmpty() ? OneEmptyText : text;
}

QVariant listFromText(const QString &text)
{
    if (text.isEmpty())
        return QStringList();
    QStringList list{QString()};
    for (int i = 0; i < text.size() && text != OneEmptyText; ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\') && i + 1 < text.size())
            list.last() += text.at(++i);
        else if (c == QLatin1Char(','))
            list.append(QString());
        else
            list.last() += c;
    }
    return list;
}

// --- the table

QVector<OssAttributeKind> makeTable()
{
    OssAttributeKind::registerTypes();
    using Form = OssAttributeKind::Form;
    using Name = QLatin1String;
    const Form real{QMetaType::Double, true,      Name("a number"), realToText,
                    realFromText,      sameValue, converted};
    const Form integer{QMetaType::Int,  true,      Name("a number"), textOf,
                       integerFromText, sameValue, integerLike};
    const Form flag{QMetaType::Bool, false,    Name("True or False"), flagToText, flagFromText,
                    sameValue,       converted};
    const Form text{QMetaType::QString, false,     Name("a text"), textOf,
                    textFromText,       sameValue, converted};
    const Form color{qMetaTypeId<OssColor>(), false,        Name("a colour"), colorToText,
                     colorFromText,           colorToPlain, colorLike};
    const Form point{QMetaType::QPointF, false,        Name("a point"), pointToText,
                     pointFromText,      pointToPlain, pointLike};
    const Form choice{qMetaTypeId<OssUserEnum>(),
                      false,
                      Name("a choice"),
                      choiceToText,
                      choiceFromText,
                      choiceToPlain,
                      choiceLike};
    const Form list{QMetaType::QStringList, false,     Name("a text"), listToText,
                    listFromText,           sameValue, converted};
    return {{Name("real"), real, Name("0")},
            {Name("integer"), integer, Name("0")},
            {Name("boolean"), flag, Name("false")},
            {Name("choice"), choice, Name("0")},
            {Name("text"), text, Name("")},
            {Name("paragraph"), text, Name("")},
            {Name("file"), text, Name("")},
            {Name("colorspace"), text, Name("")},
            {Name("curve"), text, Name("0,0 1,1"), true},
            {Name("ramp"), text, Name("0,0,0,0,1 1,1,1,1,1"), true},
            {Name("color"), color, Name("0,0,0,1")},
            {Name("displaycolor"), color, Name("0,0,0,1")},
            {Name("vector2"), point, Name("0,0")},
            {Name("images"), list, Name("")}};
}

} // namespace

const QVector<OssAttributeKind> &OssAttributeKind::all()
{
    static const QVector<OssAttributeKind> table = makeTable();
    return table;
}

const OssAttributeKind *OssAttributeKind::named(const QString &name)
{
    for (const OssAttributeKind &kind : all()) {
        if (kind.name == name)
            return &kind;
    }
    return nullptr;
}

const OssAttributeKind *OssAttributeKind::ofType(int type)
{
    for (const OssAttributeKind &kind : all()) {
        if (kind.form.type == type)
            return &kind;
    }
    return nullptr;
}

const OssAttributeKind *OssAttributeKind::of(const OssCustomAttribute &attribute)
{
    const int type = attribute.value().userType();
    const OssAttributeKind *kind = named(attribute.definition().editor);
    return kind && kind->form.type == type ? kind : ofType(type);
}

bool OssAttributeKind::isPlain() const
{
    return ofType(form.type)->name == name;
}

bool OssAttributeKind::hasChoices() const
{
    return form.type == qMetaTypeId<OssUserEnum>();
}

QVariant OssAttributeKind::empty(int type, const QStringList &choices)
{
    return type == qMetaTypeId<OssUserEnum>() ? QVariant::fromValue(OssUserEnum(choices))
                                              : QVariant(type, nullptr);
}

QStringList OssAttributeKind::choices(const QVariant &value)
{
    return value.userType() == qMetaTypeId<OssUserEnum>() ? value.value<OssUserEnum>().names()
                                                          : QStringList();
}

QVariant OssAttributeKind::like(const QVariant &example, const QVariant &value)
{
    if (const OssAttributeKind *kind = ofType(example.userType()))
        return kind->form.convert(example, value);
    QVariant converted = value;
    return converted.convert(example.userType()) ? converted : QVariant();
}

QVariant OssAttributeKind::plain(const QVariant &value)
{
    const OssAttributeKind *kind = ofType(value.userType());
    return kind ? kind->form.toPlain(value) : value;
}

QString OssAttributeKind::toWords(const QVariant &value)
{
    return value.userType() == qMetaTypeId<OssUserEnum>() ? value.value<OssUserEnum>().currentName()
                                                          : OssValueText::toText(value);
}

QVariant OssAttributeKind::fromWords(const QVariant &example, const QString &text)
{
    if (example.userType() != qMetaTypeId<OssUserEnum>())
        return OssValueText::fromText(text, example.userType());
    auto choice = example.value<OssUserEnum>();
    const int index = choice.names().indexOf(text);
    choice.setCurrentValue(index);
    return index < 0 ? QVariant() : QVariant::fromValue(choice);
}

QVector<double> OssAttributeKind::parts(const QVariant &value) const
{
    if (!isNumbers)
        return form.toPlain == sameValue ? QVector<double>() : numbersOf(form.toPlain(value));
    QVariantList numbers;
    const QStringList groups = value.toString().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &group : groups) {
        const QStringList texts = group.split(QLatin1Char(','));
        for (const QString &text : texts)
            numbers.append(text);
    }
    return numbersOf(numbers);
}

QVariant OssAttributeKind::withParts(const QVariant &value, const QVariant &from,
                                     const QVector<int> &which) const
{
    const QVector<double> given = parts(from);
    QVector<double> own = parts(value);
    if (which.isEmpty() || own.size() != given.size())
        return from;
    for (const int part : which) {
        if (part >= 0 && part < own.size())
            own[part] = given.at(part);
    }
    QVariantList list;
    for (const double number : qAsConst(own))
        list.append(number);
    if (!isNumbers)
        return like(value, list);
    QStringList groups;
    int next = 0;
    const QStringList shape = from.toString().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &group : shape) {
        QStringList numbers;
        for (int i = 0; i <= group.count(QLatin1Char(',')); ++i)
            numbers.append(OssNumberText::of(own.at(next++)));
        groups.append(numbers.join(QLatin1Char(',')));
    }
    return groups.join(QLatin1Char(' '));
}

QVector<int> OssAttributeKind::differingParts(const QVariant &a, const QVariant &b) const
{
    const QVector<double> one = parts(a);
    const QVector<double> other = parts(b);
    QVector<int> differing;
    for (int i = 0; i < one.size() && one.size() == other.size(); ++i) {
        if (one.at(i) != other.at(i))
            differing.append(i);
    }
    return differing;
}

void OssAttributeKind::registerTypes()
{
    OssColor::registerMetaType();
    OssUserEnum::registerMetaType();
}
