#pragma once

#include "OssModel/OssModel_export.h"

#include <QString>
#include <QStringList>

/// What came of baking several bake points, by their names.
struct OSSMODEL_EXPORT OssBakeReport
{
    QStringList baked;
    QStringList upToDate;   ///< left alone
    QStringList neverBaked; ///< left alone, for only results that are there were to be updated
    QStringList filtered;   ///< left alone, for their filters name other objects
    QStringList forOthers;  ///< what is where now that was baked for something else, as sentences
    QStringList failures;   ///< why others could not be baked, each with its name
    bool isStopped = false; ///< by the user, with bake points left

    /// For the status line: what happened, but for the failures.
    QString inWords() const;
};
