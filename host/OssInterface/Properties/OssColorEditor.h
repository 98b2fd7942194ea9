#pragma once

#include "OssCore/Values/OssColor.h"
#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssPropertyEditor.h"

class OssNumberField;
class QColorDialog;
class QPushButton;

/// Edits a colour: a swatch that opens a picker, and the channels as numbers. Values are scene-linear
/// and swatch and picker show what a display makes of them (OssDisplayColor); a colour brighter than
/// the display keeps its brightness in the picker. With the definition's editor "displaycolor" values
/// are the display's own.
class OSSINTERFACE_EXPORT OssColorEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssColorEditor(QWidget *parent);
    ~OssColorEditor() override;
    void showValue(const OssCustomAttribute &attribute, bool mixed) override;

    /// A dialog whose colours are seen at once, and are one edit together.
    void openPicker();

private:
    static constexpr int Channels = 4;

    OssColor color() const;
    QColor shown(const OssColor &color) const;
    void paintSwatch();

    QPushButton *m_swatch;
    OssNumberField *m_fields[Channels] = {};
    QColorDialog *m_picker = nullptr;
    double m_brightness = 1.0; ///< of the colour being picked, above the display's white
    bool m_display = false;
    bool m_mixed = false;
};
