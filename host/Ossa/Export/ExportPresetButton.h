#pragma once

#include <QToolButton>

/// The menu beside the choice of a preset: a copy of one's own, its file, away with it.
class ExportPresetButton : public QToolButton
{
    Q_OBJECT

public:
    explicit ExportPresetButton(QWidget *parent = nullptr);

    /// The preset that the menu acts on.
    void setPreset(const QString &name) { m_name = name; }

Q_SIGNALS:
    /// The presets are others; the one to choose now.
    void presetsChanged(const QString &chosen);

private:
    void fillMenu();
    void copy();
    void openFile(const QString &path);
    void remove();

    QString m_name;
};
