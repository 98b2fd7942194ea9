#pragma once

#include "OssCore/Values/OssColor.h"
#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssAttributeEdit.h"
#include "OssInterface/Properties/OssColorPlane.h"

#include <QDialog>
#include <QVector>

#include <optional>

class OssNumberField;
class QLineEdit;
class QPushButton;

/// A window beside the others in which a colour is picked. Values are those of the attribute: of
/// scene-linear ones square, hues and code are what a display makes of them (OssDisplayColor), and a
/// colour brighter than the display keeps its brightness there. The numbers know no bounds but the
/// attribute's.
///
/// Says what the user wants and changes nothing itself; `parts` are those of OssAttributeEdit. Rejected, the user wants back what was there.
class OSSINTERFACE_EXPORT OssColorPicker : public QDialog
{
    Q_OBJECT

public:
    struct Space
    {
        bool isDisplay = false; ///< values are what is seen
        std::optional<double> minimum;
        std::optional<double> maximum;
    };

    OssColorPicker(const Space &space, const OssColor &color, QWidget *parent);
    ~OssColorPicker() override;

    const OssColor &color() const { return m_color; }

    /// Shows it; nothing is announced.
    void setColor(const OssColor &color);
    /// Which channels differ in what is edited together.
    void setMixed(const OssMixed &mixed);

    static QColor shown(const OssColor &color, bool isDisplay);

public Q_SLOTS:
    /// The next click, anywhere on the screen, takes the colour there. Widgets that know their pixels
    /// better than the screen have a method sceneColorAt(QPoint) of theirs, which gives an OssColor or
    /// nothing.
    void pickFromScreen();

Q_SIGNALS:
    // As OssPropertyEditor's.
    void edited(const OssColor &color, const QVector<int> &parts);
    void stepped(const OssColor &color, const QVector<int> &parts);
    void dragBegun();
    void dragged(const OssColor &color, const QVector<int> &parts);
    void dragEnded();

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    /// Keeps what was picked, unlike Escape.
    void closeEvent(QCloseEvent *event) override;

private:
    static constexpr int Channels = 4;
    using Signal = void (OssColorPicker::*)(const OssColor &, const QVector<int> &);

    void makeFields(class QGridLayout *grid);
    void makeBrightness(QGridLayout *grid);
    class QHBoxLayout *makeButtons();
    void showColor();
    void tell(Signal signal, const QVector<int> &parts);
    void takePlane();
    void takeBrightness(double brightness);
    void takeCode();
    OssColor bounded(const OssColor &color) const;
    double brightness() const;
    std::optional<OssColor> colorAt(const QPoint &global) const;
    void endScreenPick();

    const Space m_space;
    const OssColor m_start;
    OssColor m_color;
    double m_top =
        1.0; ///< what the upper edge of the square stands for, at least the display's white
    bool m_picking = false;
    OssColorPlane *m_plane;
    OssNumberField *m_fields[Channels] = {};
    OssNumberField *m_brightness = nullptr;
    QLineEdit *m_code;
    QPushButton *m_before;
    QPushButton *m_now;
};
