#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QFormLayout>

/// A form of labelled editors as panels use it: labels at the right of their column, editors as
/// wide as there is room.
class OSSINTERFACE_EXPORT OssFormLayout : public QFormLayout
{
    Q_OBJECT

public:
    explicit OssFormLayout(QWidget *parent = nullptr);

    /// Gives the label columns of all forms inside `panel` one width, so that their editors stand
    /// in one line.
    static void alignLabels(QWidget *panel);
};
