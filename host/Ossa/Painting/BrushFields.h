#pragma once

#include "Ossa/Painting/Brushes.h"

#include <QStringList>
#include <QVector>

/// What a brush has beside its size, colour and pictures: one table for the panels and for files.
namespace BrushFields {

/// A number.
struct Number
{
    const char *key;  ///< in files
    const char *name; ///< to be translated, as the two that follow
    const char *tip;
    const char *suffix;
    double shown; ///< by which the number is multiplied for people
    double least; ///< as people see it
    double most;
    int decimals; ///< that people see and may write
    double &(*of)(Brush &brush);
};

/// Yes or no.
struct Switch
{
    const char *key;
    const char *name;
    const char *tip;
    bool &(*of)(Brush &brush);
};

/// One of several.
struct Choice
{
    const char *key = nullptr;
    const char *name = nullptr;
    const char *tip = nullptr;
    QStringList words; ///< in files, and to be translated
    int (*get)(const Brush &brush) = nullptr;
    void (*set)(Brush &brush, int choice) = nullptr;
};

const QVector<Number> &numbers();
const QVector<Switch> &switches();

/// By their places in choices().
enum ChoiceOf { ToolChoice, BlendChoice, WithinChoice, SizeChoice, PictureChoice, GradientChoice };

const QVector<Choice> &choices();

/// In the user's language.
QString words(const char *text);
QStringList words(const QStringList &texts);

} // namespace BrushFields
