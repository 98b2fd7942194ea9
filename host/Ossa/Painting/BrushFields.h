#pragma once

#include "Ossa/Painting/Brushes.h"

#include <QVector>

/// What a brush has beside its size, colour and stamp: one table for the panel and for files.
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

const QVector<Number> &numbers();
const QVector<Switch> &switches();

} // namespace BrushFields
