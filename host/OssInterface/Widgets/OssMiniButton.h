#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QPushButton>

/// A push button as small as its text, for headings and rows of panels.
class OSSINTERFACE_EXPORT OssMiniButton : public QPushButton
{
    Q_OBJECT

public:
    explicit OssMiniButton(const QString &text = {}, QWidget *parent = nullptr);

    QSize sizeHint() const override;

    QSize minimumSizeHint() const override { return sizeHint(); }
};
