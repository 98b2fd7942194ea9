#pragma once

#include <QRegularExpression>
#include <QStringList>
#include <QVector>

/// How a node's property panel is put together. As made: sections in the order of the node's
/// attributes, all of them open, nothing of the node itself.
struct OssPropertyPanelOptions
{
    QString title; ///< empty: the node's name, and it follows
    /// Sections whose whole title matches come first, in the order of the patterns.
    QVector<QRegularExpression> sectionOrder;
    QStringList hiddenSections;
    /// Properties of the node itself, such as "name", each with the path of the section that shows
    /// it, such as "/Node".
    QStringList nodeProperties;
    QStringList nodePropertyPaths;
    bool showNodeProperties = false;
    bool orderSections = false;
    bool foldUntouchedSections = false; ///< those in which every value is the default
};
