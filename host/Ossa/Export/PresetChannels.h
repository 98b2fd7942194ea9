#pragma once

#include "OssModel/Export/OssExportPreset.h"

#include <QWidget>

#include <array>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;

/// What goes into red, green, blue and alpha of a file: a channel of the material or a constant, as it is
/// or inverse.
class PresetChannels : public QWidget
{
    Q_OBJECT

public:
    using Channels = std::array<OssExportPreset::Channel, 4>;

    /// `names`: of channels, that are offered beside those that the preset has already.
    explicit PresetChannels(const QStringList &names, QWidget *parent = nullptr);

    void setChannels(const Channels &channels);
    Channels channels() const;

Q_SIGNALS:
    void changed();

private:
    struct Row
    {
        QComboBox *from;
        QComboBox *component;
        QDoubleSpinBox *value;
        QCheckBox *inverts;
    };

    void refresh();

    std::array<Row, 4> m_rows{};
};
