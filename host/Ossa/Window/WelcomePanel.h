#pragma once

#include <QWidget>

class QListWidget;
class QListWidgetItem;
class QVBoxLayout;

/// Stands in the place of the graph while no project is open, and says how to go on: a new one, those
/// opened last, the guided examples, the others.
class WelcomePanel : public QWidget
{
    Q_OBJECT

public:
    explicit WelcomePanel(QWidget *parent = nullptr);

    /// Lists the projects anew.
    void refresh();

Q_SIGNALS:
    void projectChosen(const QString &path);

protected:
    void showEvent(QShowEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    QListWidget *addList(const QString &title, QVBoxLayout *layout);
    void addButton(const QString &command, QLayout *layout);
    QListWidget *firstList() const;
    void choose(const QListWidgetItem *row);

    QListWidget *m_recent;
    QListWidget *m_guides;
    QListWidget *m_examples;
};
