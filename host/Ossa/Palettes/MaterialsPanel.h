#pragma once

#include <QWidget>

class MaterialListModel;
class MaterialPictures;
class QComboBox;
class QLabel;
class QLineEdit;
class QListView;

/// The materials to begin from, as balls in light: those that are installed, and groups that the user
/// published below "Materials". They are dragged into the graph or onto the object. A double click or
/// Return makes one in the middle of the graph.
class MaterialsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit MaterialsPanel(QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void readFolders();
    void readTypes();
    /// Says so where nothing fits.
    void showCount();
    void create(const QModelIndex &index);
    void showMenu(const QPoint &place);
    static void openFolder();

    MaterialPictures *m_pictures;
    MaterialListModel *m_model = nullptr;
    QLineEdit *m_search;
    QComboBox *m_folder;
    QListView *m_list;
    QLabel *m_hint;
};
