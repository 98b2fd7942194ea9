#include "Ossa/Help/ManualWindow.h"

#include "Ossa/Common/Theme.h"
#include "OssCore/Program/OssIcon.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssInterface/Widgets/OssHelpBrowser.h"

#include <QDesktopServices>
#include <QDir>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QSplitter>
#include <QToolButton>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr QSize firstSize(1040, 760);
constexpr int addressRole = Qt::UserRole;

QToolButton *button(const QString &text, const QString &tip)
{
    auto *made = new QToolButton;
    made->setText(text);
    made->setToolTip(tip);
    made->setAccessibleName(tip);
    return made;
}

} // namespace

ManualWindow::ManualWindow(QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_manual(Manual::InProgram, OssResourceInfo::instance()->manualPath())
    , m_browser(new OssHelpBrowser)
    , m_search(new QLineEdit)
    , m_contents(new QTreeWidget)
    , m_back(button(tr("Back"), tr("Go back to the page before")))
    , m_forward(button(tr("Forward"), tr("Go to the page that was left by going back")))
    , m_outside(button(tr("Open in Browser"), tr("Read this page in the desktop's browser")))
{
    setObjectName(QStringLiteral("ManualWindow"));
    setWindowTitle(tr("Manual"));
    setWindowModality(Qt::NonModal);
    auto *sides = new QSplitter;
    sides->addWidget(makeSide());
    sides->addWidget(m_browser);
    sides->setStretchFactor(1, 1);
    sides->setSizes({260, 780});
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(makeBar());
    layout->addWidget(sides, 1);
    m_browser->setAccessibleName(tr("Page"));
    connect(m_browser, &QTextBrowser::anchorClicked, this, &ManualWindow::follow);
    fillContents();
    resize(Theme::fitting(firstSize));
}

QWidget *ManualWindow::makeBar()
{
    auto *bar = new QWidget;
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_back);
    layout->addWidget(m_forward);
    layout->addStretch(1);
    layout->addWidget(m_outside);
    connect(m_back, &QToolButton::clicked, this, [this] { step(-1); });
    connect(m_forward, &QToolButton::clicked, this, [this] { step(1); });
    connect(m_outside, &QToolButton::clicked, this, &ManualWindow::openInBrowser);
    const QDir built(OssResourceInfo::instance()->manualPath());
    m_outside->setVisible(built.exists(Manual::firstAddress()));
    return bar;
}

QWidget *ManualWindow::makeSide()
{
    auto *side = new QWidget;
    auto *layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_search);
    layout->addWidget(m_contents, 1);
    m_search->setPlaceholderText(tr("Search the manual"));
    m_search->setAccessibleName(m_search->placeholderText());
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::textChanged, this, &ManualWindow::find);
    m_contents->setHeaderHidden(true);
    m_contents->setAccessibleName(tr("Contents"));
    connect(m_contents, &QTreeWidget::currentItemChanged, this,
            [this](const QTreeWidgetItem *item) {
                const QString address = item ? item->data(0, addressRole).toString() : QString();
                if (!address.isEmpty())
                    go(address);
            });
    return side;
}

void ManualWindow::fillContents()
{
    QTreeWidgetItem *group = nullptr;
    for (const Manual::Page &page : m_manual.pages()) {
        if (page.group.isEmpty())
            group = nullptr;
        else if (!group || group->text(0) != page.group)
            group = new QTreeWidgetItem(m_contents, {page.group});
        auto *item = group ? new QTreeWidgetItem(group, {page.title})
                           : new QTreeWidgetItem(m_contents, {page.title});
        item->setData(0, addressRole, page.address);
    }
}

void ManualWindow::open(const QString &address)
{
    go(m_manual.find(address) ? address : Manual::firstAddress());
    show();
    raise();
    activateWindow();
}

void ManualWindow::go(const QString &address)
{
    if (address == m_address)
        return;
    m_visited = m_visited.mid(0, m_place + 1);
    m_visited.append(address);
    step(1);
}

void ManualWindow::step(int by)
{
    const int place = m_place + by;
    if (place < 0 || place >= m_visited.size())
        return;
    m_place = place;
    m_address = m_visited.at(place);
    m_back->setEnabled(place > 0);
    m_forward->setEnabled(place + 1 < m_visited.size());
    m_browser->showPage(m_manual.body(m_address), OssResourceInfo::instance()->manualPath());
    m_browser->verticalScrollBar()->setValue(0);
    const Manual::Page *page = m_manual.find(m_address);
    setWindowTitle(page ? tr("%1 \u2013 Manual").arg(page->title) : tr("Manual"));
    const QList<QTreeWidgetItem *> items = m_contents->findItems(
        page ? page->title : QString(), Qt::MatchExactly | Qt::MatchRecursive);
    for (QTreeWidgetItem *item : items) {
        if (item->data(0, addressRole).toString() == m_address)
            m_contents->setCurrentItem(item);
    }
}

void ManualWindow::follow(const QUrl &link)
{
    const QString text = QUrl::fromPercentEncoding(link.toEncoded());
    const QString ending = QStringLiteral(".ossa");
    if (text.startsWith(Manual::exampleScheme())) {
        const QDir examples(OssResourceInfo::instance()->examplePath());
        Q_EMIT projectChosen(examples.filePath(text.mid(Manual::exampleScheme().size()) + ending));
    } else if (text.endsWith(ending)) {
        Q_EMIT projectChosen(QDir(OssResourceInfo::instance()->manualPath()).filePath(text));
    } else if (m_manual.find(text)) {
        go(text);
    } else if (!link.isRelative()) {
        QDesktopServices::openUrl(link);
    }
}

void ManualWindow::find(const QString &text)
{
    if (m_words.isEmpty()) {
        for (const Manual::Page &page : m_manual.pages())
            m_words.append(page.title + QLatin1Char('\n') + m_manual.plainText(page.address));
    }
    const QStringList wanted = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    int number = 0;
    const auto fits = [&](const QString &words) {
        for (const QString &word : wanted) {
            if (!words.contains(word, Qt::CaseInsensitive))
                return false;
        }
        return true;
    };
    const auto show = [&](QTreeWidgetItem *item) {
        const bool shown = fits(m_words.at(number++));
        item->setHidden(!shown);
        return shown;
    };
    for (int row = 0; row < m_contents->topLevelItemCount(); ++row) {
        QTreeWidgetItem *item = m_contents->topLevelItem(row);
        if (item->childCount() == 0) {
            show(item);
            continue;
        }
        bool any = false;
        for (int child = 0; child < item->childCount(); ++child)
            any = show(item->child(child)) || any;
        item->setHidden(!any);
        item->setExpanded(any && !wanted.isEmpty());
    }
}

void ManualWindow::openInBrowser()
{
    const QDir built(OssResourceInfo::instance()->manualPath());
    QDesktopServices::openUrl(QUrl::fromLocalFile(built.filePath(m_address)));
}

void ManualWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->matches(QKeySequence::Find))
        m_search->setFocus();
    else
        QWidget::keyPressEvent(event);
}
