#pragma once

#include "Ossa/Viewer/ViewerPixels.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class ObjectView;
class PaintBar;
class PaintSession;
class QButtonGroup;
class QComboBox;
class QDoubleSpinBox;
class QHBoxLayout;
class QLabel;
class QProgressBar;
class QSplitter;
class QToolButton;
class UvView;
class LightBar;
class ViewerPictures;
class ViewerSource;

/// Body of the "Viewer" palette: the pixels of what the current viewer looks at, patch by patch, on
/// the object, or both side by side.
class ViewerPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ViewerPanel(QWidget *parent = nullptr);
    ~ViewerPanel() override;

protected:
    /// Esc that no stroke takes stops what is computed, also where the palette floats.
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    enum Mode { Patches, Object, Both };

    QWidget *makeControls();
    QWidget *makeFoot();
    void addModes(QHBoxLayout *bar);
    void follow();
    void welcomeBrush(QWidget *canvas);
    void showName(const QString &node);
    void followProgress();
    /// Of the patches and the material together, which never leads back.
    void showProgress();
    void setMode(Mode mode);
    void setPainting(bool on);
    void setComparing(bool on);
    void followPaint();
    void followStrokes();
    void followHand();
    void showLightBar();
    /// What acts on a picture is off without a project.
    void forgetProject();
    void followProject();
    void fileCommands();
    void framePictures();
    void fillScreens();
    void makeScreens();
    void applyLook();

    ViewerSource *m_source;
    ViewerPictures *m_pictures;
    PaintSession *m_session;
    PaintBar *m_paintBar;
    UvView *m_view;
    ObjectView *m_object;
    QSplitter *m_views;
    QButtonGroup *m_modes = nullptr;
    QToolButton *m_light;
    LightBar *m_lightBar;
    QToolButton *m_paint;
    QToolButton *m_compare;
    QLabel *m_name;
    QLabel *m_values;
    QLabel *m_pass; ///< what is computed just now
    QProgressBar *m_progress;
    QElapsedTimer m_sinceBegin;
    bool m_isPaintSeen = false; ///< in what is evaluated
    QTimer m_hand;              ///< until what is evaluated has the stroke in hand
    bool m_hasHand = false;     ///< what is evaluated has it
    int m_tookPicture = 0;      ///< milliseconds, while one paints
    int m_patchesDone = 1000;   ///< thousandths
    int m_materialDone = 1000;
    int m_told = 0;
    bool m_makesWay = false; ///< for a stroke
    QString m_patchesPass;
    QComboBox *m_channels;
    QComboBox *m_resolution;
    QComboBox *m_display; ///< screens, and plain numbers
    QVector<ViewerScreen> m_screens;
    QDoubleSpinBox *m_exposure;
    QDoubleSpinBox *m_gamma;
};
