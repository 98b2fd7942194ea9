#pragma once

#include "Ossa/Painting/Brushes.h"

#include <QVector>
#include <QWidget>

#include <functional>

class QComboBox;
class QFormLayout;
class QLineEdit;
class QListWidget;
class QToolButton;

/// Body of the palette "Brushes": kept brushes as pictures of their strokes, and all that can be tuned of
/// the one in hand.
class BrushesPanel : public QWidget
{
    Q_OBJECT

public:
    explicit BrushesPanel(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QWidget *makeShelf();
    QWidget *makeFields();
    void addNumbers(QFormLayout *form);
    void addSwitches(QFormLayout *form);
    void addChoices(QFormLayout *form);
    void addPictures(QFormLayout *form);
    void fillShelf();
    void takeFromShelf(int row);
    void keep();
    void removeKept();
    void showBrush();
    /// Changes the brush in hand.
    void edit(const std::function<void(Brush &)> &change);

    QListWidget *m_shelf;
    QLineEdit *m_name;
    QToolButton *m_remove;
    QVector<std::function<void(Brush)>> m_show; ///< one for each field
    bool m_isShown = false;
};
