#pragma once

#include "Ossa/ViewerPixels.h"

#include <QWidget>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QProgressBar;
class UvView;
class ViewerSource;

/// Body of the "Viewer" palette: the pixels of what the current viewer looks at, patch by patch.
class ViewerPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ViewerPanel(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *makeControls();
    void applyLook();

    ViewerSource *m_source;
    UvView *m_view;
    QLabel *m_name;
    QLabel *m_values;
    QProgressBar *m_progress;
    QComboBox *m_channels;
    QComboBox *m_resolution;
    QComboBox *m_display;
    QDoubleSpinBox *m_exposure;
    QDoubleSpinBox *m_gamma;
};
