#pragma once

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "support/DialogAnswers.h"
#include "support/Text.h"

#include <QAction>
#include <QDropEvent>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QTabWidget>
#include <QTest>
#include <QVBoxLayout>
#include <QVector>

// What a user of the node graph does with the dialogs, menus and files around it.

/// The action of the graph's folder with that path, null when there is none.
inline QAction *graphAction(const QString &path)
{
    return OssActionTreeManager::instance()->findAction(text("/Ossa/NodeGraph/") + path);
}

inline QAction *graphAction(const char *path)
{
    return graphAction(text(path));
}

/// Types into the dialog that the next call opens, ends with the key and closes what is left.
inline void typeInDialog(const char *typed, Qt::Key end = Qt::Key_Return)
{
    whenOpen<QDialog>([typed, end](QDialog *dialog) {
        auto *field = dialog->findChild<QLineEdit *>();
        QTest::keyClicks(field, text(typed));
        QTest::keyClick(field, end);
        dialog->close();
    });
}

/// Acts on the menu that the next call opens.
inline void whenMenuOpens(const std::function<void(QMenu *)> &act)
{
    QTimer::singleShot(0, [act] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        act(menu);
    });
}

/// Chooses an action of such a menu, the last one at -1, and keeps what the menu offers.
inline void chooseInMenu(int index, QStringList *offered)
{
    whenMenuOpens([index, offered](QMenu *menu) {
        const QList<QAction *> actions = menu->actions();
        for (const QAction *action : actions)
            offered->append(action->text());
        menu->setActiveAction(index < 0 ? actions.last() : actions.at(index));
        QTest::keyClick(menu, Qt::Key_Return);
    });
}

/// Stands before the graph among its tabs, so that none of its views is current, while it lives.
class OtherPage
{
public:
    OtherPage()
    {
        m_tabs->addTab(&m_page, text("other"));
        m_tabs->setCurrentWidget(&m_page);
    }

    ~OtherPage() { m_tabs->removeTab(m_tabs->indexOf(&m_page)); }

    OtherPage(const OtherPage &) = delete;
    OtherPage &operator=(const OtherPage &) = delete;

private:
    QTabWidget *m_tabs = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    QWidget m_page;
};

/// A small picture in a new file, opened in the list of images.
inline OssImage *openPicture(const QString &path)
{
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    EXPECT_TRUE(picture.save(path)) << qPrintable(path);
    return OssImageManager::instance()->open(path, 0, {}).first().image;
}

/// Images as the list of images gives them to a drag.
inline void fillMime(QMimeData *mime, const QList<OssImage *> &images)
{
    QStringList ids;
    for (const OssImage *image : images)
        ids.append(image->uniqueId().toString());
    mime->setData(OssImage::MimeType, ids.join(QLatin1Char(',')).toUtf8());
}

/// What is dragged over a widget at a place and let go there.
struct Dragged
{
    QWidget *over = nullptr;
    const QMimeData *mime = nullptr;
    QPoint place;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;

    /// Whether the widget would take it.
    bool enter() const { return send<QDragEnterEvent>(); }

    void move() const { send<QDragMoveEvent>(); }

    /// Whether the widget took it.
    bool drop() const { return send<QDropEvent>(); }

private:
    template <class Event>
    bool send() const
    {
        Event event(place, Qt::CopyAction, mime, Qt::LeftButton, modifiers);
        event.ignore();
        QApplication::sendEvent(over, &event);
        return event.isAccepted();
    }
};

/// The graph and the panels in one window, as users have them, while it lives.
class InOneWindow
{
public:
    explicit InOneWindow(const QList<QWidget *> &bodies)
        : elsewhere(new QLineEdit(&m_window))
        , m_layout(&m_window)
    {
        for (QWidget *body : bodies) {
            m_before.append(qMakePair(body, body->parentWidget()));
            m_layout.addWidget(body);
            body->show();
        }
        m_layout.addWidget(elsewhere);
        m_window.show();
        activate();
    }

    ~InOneWindow()
    {
        for (const auto &[body, parent] : qAsConst(m_before)) {
            body->setParent(parent);
            parent->layout()->addWidget(body);
        }
    }

    InOneWindow(const InOneWindow &) = delete;
    InOneWindow &operator=(const InOneWindow &) = delete;

    void activate() { QApplication::setActiveWindow(&m_window); }

private:
    QWidget m_window;

public:
    QLineEdit *elsewhere;

private:
    QVBoxLayout m_layout;
    QVector<QPair<QWidget *, QWidget *>> m_before;
};
