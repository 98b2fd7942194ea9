#pragma once

#include "OssModel/Objects/OssMeshReader.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QProgressBar;
class QPushButton;

/// How a mesh file is to be understood, and what is wrong with it then. Reads the file on a thread of
/// its own, again after each change.
class MeshPanel : public QWidget
{
    Q_OBJECT

public:
    enum Purpose {
        MakesObjects, ///< asks what becomes an object
        GivesShape    ///< asks what of the file is taken
    };

    /// Empty when the user chose none. Starts where the last mesh was taken from.
    static QString askForFile(const QString &title, QWidget *parent);

    explicit MeshPanel(Purpose purpose, QWidget *parent = nullptr);

    /// What the panel begins with; reads it.
    void setSource(const OssGeometrySource &source);
    /// As the user has set it.
    OssGeometrySource source() const;

    /// Its rows, for whoever has others above them.
    const QFormLayout *form() const { return m_form; }

    /// Whether it was read and any part can be used.
    bool isUsable() const;

    const OssMeshReader &read() const { return *m_reader; }

    /// Reads no longer.
    void stop();

Q_SIGNALS:
    /// isUsable() may be another.
    void stateChanged();

private:
    void makeFields();
    void makeFoot();
    void choose();
    void begin();
    void finish();
    void fillSets();
    void fillTake();
    void tell();
    void unwrap();

    Purpose m_purpose;
    OssMeshReader *m_reader;
    OssGeometrySource m_source;
    QFormLayout *m_form;
    QComboBox *m_split;
    QComboBox *m_take; ///< parts; the first is everything
    QComboBox *m_uvSet;
    QComboBox *m_up;
    QDoubleSpinBox *m_scale;
    QCheckBox *m_unwraps;
    QLabel *m_contents;
    QLabel *m_findings;
    QPushButton *m_unwrapNow;
    QProgressBar *m_progress;
    bool m_isFilling = false;
};
