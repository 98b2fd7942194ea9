#pragma once

#include "OssCore/Values/OssColor.h"
#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssPropertyEditor.h"

#include <functional>
#include <optional>

class OssNumberField;
class OssColorPicker;
class QPushButton;

/// Edits a colour: a swatch that opens a picker, and the channels as numbers. Values are scene-linear
/// and the swatch shows what a display makes of them; with the definition's editor "displaycolor" they
/// are the display's own.
class OSSINTERFACE_EXPORT OssColorEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssColorEditor(QWidget *parent);
    ~OssColorEditor() override;
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;

    QString joinKey() const override;

    /// A window whose colours are seen at once and are one step together; everything else goes on
    /// beside it. It closes with the editor, when that is disabled, and with Escape in the windows beside.
    void openPicker();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    static constexpr int Channels = 4;

    OssColor color() const;
    void paintSwatch();
    /// Something that the picker says.
    void tell(const std::function<void()> &what);
    void closed(int result, const OssColor &start, int firstStep);

    QPushButton *m_swatch;
    OssNumberField *m_fields[Channels] = {};
    OssColorPicker *m_picker = nullptr;
    QString m_session;  ///< of the picker, while it is open
    int m_lastStep = 0; ///< of the history, after what the picker said last
    bool m_telling = false;
    bool m_display = false;
    OssMixed m_mixed;
    std::optional<double> m_minimum;
    std::optional<double> m_maximum;
};
