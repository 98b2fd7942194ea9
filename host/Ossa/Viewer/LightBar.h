#pragma once

#include <QWidget>

#include <functional>

class ObjectView;
class QComboBox;
class QDoubleSpinBox;
class QToolButton;

/// How the object is seen in light: what of its material, what surrounds it, what is behind. Files the
/// commands for it. What was chosen is kept from session to session.
class LightBar : public QWidget
{
    Q_OBJECT

public:
    /// The view must outlive the bar.
    explicit LightBar(ObjectView *view, QWidget *parent = nullptr);

private:
    void fileShows();
    void fileLight();
    void followLight();
    /// A switch in the menu and as a command; `key` is where it is kept.
    void addSwitch(const char *command, const char *key, bool usual,
                   const std::function<void(bool)> &set);
    void choose(int shows);
    void fillSurroundings();
    void setSurroundings(const QString &nameOrFile);
    void nextSurroundings();
    void chooseFile();
    void setBehind(int behind);

    ObjectView *m_view;
    QComboBox *m_shows;
    QComboBox *m_surroundings;
    QDoubleSpinBox *m_intensity;
    QToolButton *m_more;
};
