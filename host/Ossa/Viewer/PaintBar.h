#pragma once

#include "Ossa/Painting/PaintSession.h"
#include "OssEvaluation/Paint/OssEvBrush.h"

#include <QColor>
#include <QIcon>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>
#include <tuple>

class OssShaderNetwork;
class OssSnBaseNode;
class OssFlowLayout;
class OssSnImageSetNodeBase;
class QComboBox;
class QDoubleSpinBox;
class QHBoxLayout;
class QLabel;
class QSpinBox;
class QToolButton;
class ViewerSource;

/// What the brush is and what it paints on: the second bar of the Viewer while painting. A paint
/// node that the user selects in the graph becomes the one that is painted on.
class PaintBar : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive the bar.
    PaintBar(PaintSession *session, const ViewerSource *source, QWidget *parent = nullptr);

    /// Looks which paint nodes there are and which one is selected.
    void refresh();
    /// Puts a new paint node over what the viewer shows and paints on it. One undo step.
    void makeNode();
    /// Paint over several channels of the shown material, painted on at once. One undo step.
    void makeLayer();
    /// Tells the user when it fails.
    void bake();

Q_SIGNALS:
    /// The user is done with a choice and goes on painting.
    void chosen();

private:
    QHBoxLayout *makeNodeRow();
    OssFlowLayout *makeBrushRow();
    OssFlowLayout *makeToolRow();
    OssFlowLayout *makeGradientRow();
    QComboBox *makeChoice(int at);
    void makeMaskMenu();
    void maskBySelection();
    void showMask();
    QSpinBox *makeField(const QString &prefix, const QString &suffix, int least, int most,
                        const QString &name);
    void followSelection(const OssShaderNetwork *network);
    void chooseNode(int index);
    void showAlong();
    void fillAlong(OssFlowLayout *row, const QString &title, PaintSession::ColorOf of);
    QWidget *makeColorAlong(OssSnImageSetNodeBase *node, PaintSession::ColorOf of);
    QWidget *makeNumberAlong(OssSnImageSetNodeBase *node, PaintSession::ColorOf of);
    void pickColorAlong(OssSnImageSetNodeBase *node, PaintSession::ColorOf of);
    void pickColor();
    void pickSecondColor();
    void showBrush();
    void showSize();
    void showState();
    QString whyUnseen() const;
    void applyBrush();
    void keepColor();

    static QIcon swatch(const QColor &color);
    /// Whether a field has this value, as far as it shows digits.
    static bool isShown(const QDoubleSpinBox &field, double value);

    PaintSession *m_session;
    const ViewerSource *m_source;
    QComboBox *m_nodes;
    QVector<QPointer<OssSnImageSetNodeBase>> m_choices; ///< those of m_nodes
    QToolButton *m_color;
    QColor m_seen; ///< of the brush, on the screen
    QLabel *m_gradientTo;
    QToolButton *m_second; ///< color
    QColor m_secondSeen;
    QDoubleSpinBox *m_size; ///< what the brush takes across, in what it is counted in
    std::optional<OssEvBrush::SizeIn> m_sizeIn; ///< that the field is set up for
    QSpinBox *m_hardness;
    QSpinBox *m_opacity;
    QVector<std::function<void()>> m_showChoices; ///< one for each choice
    QToolButton *m_mask;
    QToolButton *m_clear;
    QToolButton *m_bake;
    QLabel *m_hint;
    QPointer<const OssShaderNetwork> m_followed; ///< whose selection is heard of
    QTimer m_selectionSeen;
    QVector<QPointer<OssSnImageSetNodeBase>> m_selected; ///< paint nodes when it was last looked
    QVector<std::tuple<const void *, QString, bool>> m_shownAlong; ///< nodes, and whether scalar
    QVector<std::function<void()>> m_showColors;                   ///< of these
    bool m_showsSecond = false;
    OssFlowLayout *m_along;    ///< a button for each other node that is painted on
    OssFlowLayout *m_alongEnd; ///< the same, for what gradients end with
};
