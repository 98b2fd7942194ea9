#pragma once

#include "Ossa/Help/Manual.h"

#include <QStringList>
#include <QWidget>

class OssHelpBrowser;
class QLineEdit;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;
class QUrl;

/// The manual in a window beside the program's: contents and search on the left, the page on the right.
class ManualWindow : public QWidget
{
    Q_OBJECT

public:
    explicit ManualWindow(QWidget *parent = nullptr);

    /// Shows a page, and the window if need be. An unknown address shows the first page.
    void open(const QString &address);

    /// Of the page that is shown.
    QString address() const { return m_address; }

Q_SIGNALS:
    /// The user asked for the project of an example.
    void projectChosen(const QString &path);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeBar();
    QWidget *makeSide();
    void fillContents();
    void follow(const QUrl &link);
    void go(const QString &address);
    void step(int by);
    void find(const QString &text);
    void openInBrowser();

    Manual m_manual;
    OssHelpBrowser *m_browser;
    QLineEdit *m_search;
    QTreeWidget *m_contents;
    QToolButton *m_back;
    QToolButton *m_forward;
    QToolButton *m_outside;
    QString m_address;
    QStringList m_visited;
    int m_place = -1; ///< in m_visited
    /// Words of the pages, in their order, made when something is searched for.
    QStringList m_words;
};
