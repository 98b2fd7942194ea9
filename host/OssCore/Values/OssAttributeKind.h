#pragma once

#include "OssCore/OssCore_export.h"

#include <QLatin1String>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

class OssCustomAttribute;

/// One kind of value that attributes have, and the table of all of them: what files, scripts and
/// people see of such a value. What only higher rooms know is told there, by the type or the name of
/// the kind: OssSnParameter has what a kernel sees, OssPropertyEditor the widgets.
class OSSCORE_EXPORT OssAttributeKind
{
public:
    /// What all values of one meta-type have in common.
    struct Form
    {
        int type = 0;
        bool isNumber = false;
        /// What such an attribute takes: "a number".
        QLatin1String words;
        /// For files: exact, the same on every machine and in every locale.
        QString (*toText)(const QVariant &value) = nullptr;
        /// Invalid when the text is no value of the type.
        QVariant (*fromText)(const QString &text) = nullptr;
        /// See plain().
        QVariant (*toPlain)(const QVariant &value) = nullptr;
        /// See like().
        QVariant (*convert)(const QVariant &example, const QVariant &value) = nullptr;
    };

    /// In descriptions of node types: "real". Of the kinds that share a type the first is the plain
    /// one; for the others, the name is also the `editor` of the attribute's definition.
    QLatin1String name;
    Form form;
    /// What a description means that gives no default, in the form for files. Of a choice it is the
    /// first of the list.
    QLatin1String defaultText;
    /// Whether a text of this kind consists of numbers that commas and blanks part.
    bool isNumbers = false;

    static const QVector<OssAttributeKind> &all();
    /// Null when there is none of that name.
    static const OssAttributeKind *named(const QString &name);
    /// The plain kind of a meta-type; null for types that attributes do not have.
    static const OssAttributeKind *ofType(int type);
    /// Null when the value's type is none of the table.
    static const OssAttributeKind *of(const OssCustomAttribute &attribute);

    bool isPlain() const;
    /// Whether values are chosen from a list.
    bool hasChoices() const;

    /// An empty value of a meta-type; `choices` is for those that are chosen from a list.
    static QVariant empty(int type, const QStringList &choices);
    /// What a value is chosen from; empty for those that are not.
    static QStringList choices(const QVariant &value);

    /// `value` in the form of `example`: of its type and, for a choice, from its list. Takes values
    /// of other types, the text form and the plain form. A choice goes by its name where the lists
    /// differ, by its number where its list is empty. Invalid when there is no such value; the
    /// numbers of colours and points are finite.
    static QVariant like(const QVariant &example, const QVariant &value);
    /// The value as a number, text or truth value or a list of those: what a script writes.
    static QVariant plain(const QVariant &value);

    /// The form for people: that for files, but a choice's name.
    static QString toWords(const QVariant &value);
    /// Invalid when the text is no value that could stand for `example`.
    static QVariant fromWords(const QVariant &example, const QString &text);

    /// The numbers that a value consists of and that can be edited one by one: channels, coordinates,
    /// those of a ramp and of a curve. Empty for other kinds.
    QVector<double> parts(const QVariant &value) const;
    /// `value` with some parts of `from`; `from` itself when none are named or it has more or fewer.
    QVariant withParts(const QVariant &value, const QVariant &from,
                       const QVector<int> &which) const;
    /// The parts in which values differ; empty, too, when one has more than the other.
    QVector<int> differingParts(const QVariant &a, const QVariant &b) const;

    /// Makes comparisons and conversions of our own types known to QVariant.
    static void registerTypes();
};
