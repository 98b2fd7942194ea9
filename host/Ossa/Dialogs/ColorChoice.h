#pragma once

#include "OssModel/Images/OssColorManagement.h"

#include <QObject>

class QComboBox;
class QFormLayout;
class QLabel;
class QWidget;

/// Rows of a form in which a project's colour configuration and working space are chosen. What cannot
/// be had is told below them.
class ColorChoice : public QObject
{
    Q_OBJECT

public:
    /// The rows belong to the form's widget, `parent`.
    ColorChoice(QFormLayout *form, QWidget *parent);

    /// Keeps the file rules for settings().
    void setSettings(const OssColorSettings &settings);

    const OssColorSettings &settings() const { return m_settings; }

    /// Of the configuration that is chosen, or stands in.
    const OssEvColorSpaces &spaces() const { return *m_spaces; }

    /// Whether what is chosen can be had.
    bool isUsable() const { return m_isUsable; }

    /// Chooses the file as if the user had.
    void setFile(const QString &path);

Q_SIGNALS:
    void changed();

private:
    void chooseConfig(int index);
    void askForFile();
    void setConfig(const QString &config);
    void fillConfigs();
    void fillSpaces();
    void look();

    QWidget *m_parent;
    QComboBox *m_config;
    QComboBox *m_working;
    QLabel *m_problem;
    OssColorSettings m_settings;
    OssEvColorSpaces::Pointer m_spaces;
    bool m_isUsable = true;
};
