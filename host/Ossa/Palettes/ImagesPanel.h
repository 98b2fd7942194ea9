#pragma once

#include <QWidget>

class ImageListModel;
class QListView;

/// The images of the project: opened with the button or dropped here, dragged into the graph from
/// here, or put there with the menu.
class ImagesPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ImagesPanel(QWidget *parent = nullptr);

private:
    void openImages();
    void tellRefused(const QStringList &reasons);
    /// Images know whether they are selected; commands on them ask for it.
    void passSelectionOn();
    void showMenu(const QPoint &place);
    /// Those that are offered for images now.
    static void fileCommands();

    ImageListModel *m_model;
    QListView *m_list;
};
