#pragma once

#include "OssModel/Export/OssExportPreset.h"

#include <QWidget>

class PresetChannels;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLayout;
class QLineEdit;
class QSpinBox;

/// One file of a preset: its name, form and channels.
class PresetFileEditor : public QWidget
{
    Q_OBJECT

public:
    explicit PresetFileEditor(const QStringList &channels, QWidget *parent = nullptr);

    void setFile(const OssExportPreset::File &file);
    /// What is chosen, whether it can be written or not.
    OssExportPreset::File file() const;

Q_SIGNALS:
    void changed();

private:
    void addFields(QFormLayout *form);
    QLayout *tokenButtons();
    void fillByFormat();
    void edited();

    bool m_isSetting = false;
    QLineEdit *m_name;
    QCheckBox *m_each;
    QComboBox *m_format;
    QComboBox *m_depth;
    QCheckBox *m_dithers;
    QComboBox *m_compression;
    QSpinBox *m_quality;
    QComboBox *m_space;
    QComboBox *m_size;
    QSpinBox *m_padding;
    QComboBox *m_normal;
    PresetChannels *m_channels;
};
