#include "Ossa/Window/WelcomePanel.h"

#include "Ossa/Commands/RecentProjects.h"
#include "OssCore/Program/OssIcon.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssInterface/Actions/OssActionTreeManager.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int pathRole = Qt::UserRole;
constexpr int mostWidth = 980;
constexpr int mostHeight = 460;
constexpr QSize pictureSize(64, 40);

void addRow(QListWidget *list, const QString &path, const QString &explanation, const QIcon &icon)
{
    const QString name = QFileInfo(path).completeBaseName();
    auto *row = new QListWidgetItem(
        icon, explanation.isEmpty() ? name : name + QLatin1Char('\n') + explanation, list);
    row->setData(pathRole, path);
    row->setToolTip(QDir::toNativeSeparators(path));
}

/// In the middle of the place of a picture, so that names stand below each other.
QIcon withinPicture(const QIcon &icon)
{
    QPixmap place(pictureSize);
    place.fill(Qt::transparent);
    QPainter painter(&place);
    icon.paint(&painter, place.rect());
    return place;
}

/// Those of a folder, each with the picture beside it.
void listProjects(QListWidget *list, const QString &path)
{
    list->clear();
    const QDir folder(path);
    const QFileInfoList projects = folder.entryInfoList({QStringLiteral("*.ossa")}, QDir::Dirs,
                                                        QDir::Name);
    for (const QFileInfo &project : projects) {
        const QString picture = folder.filePath(project.completeBaseName() + QLatin1String(".png"));
        addRow(list, project.absoluteFilePath(), {},
               QFileInfo::exists(picture) ? QIcon(picture)
                                          : withinPicture(OssIcon::createIconFromFilename(
                                              QStringLiteral("NodeGraph.png"))));
    }
}

} // namespace

WelcomePanel::WelcomePanel(QWidget *parent)
    : QWidget(parent)
{
    setAutoFillBackground(true);
    auto *title = new QLabel(tr("No project is open"), this);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    title->setFont(large);
    auto *hint = new QLabel(tr("Begin a new one, open one, or drop a project's folder here."),
                            this);
    hint->setObjectName(QStringLiteral("Muted"));
    auto *buttons = new QHBoxLayout;
    addButton(QStringLiteral("/Ossa/File/New"), buttons);
    addButton(QStringLiteral("/Ossa/File/New Project..."), buttons);
    addButton(QStringLiteral("/Ossa/File/Open..."), buttons);
    buttons->addStretch(1);
    auto *recent = new QVBoxLayout;
    m_recent = addList(tr("Opened last"), recent);
    auto *examples = new QVBoxLayout;
    m_examples = addList(tr("Examples"), examples);
    m_examples->setIconSize(pictureSize);
    auto *guides = new QVBoxLayout;
    m_guides = addList(tr("Guided examples"), guides);
    m_guides->setIconSize(pictureSize);
    auto *lists = new QHBoxLayout;
    lists->setSpacing(16);
    lists->addLayout(recent, 3);
    lists->addLayout(guides, 3);
    lists->addLayout(examples, 2);

    auto *column = new QWidget(this);
    column->setMaximumSize(mostWidth, mostHeight);
    auto *layout = new QVBoxLayout(column);
    layout->setSpacing(10);
    layout->addWidget(title);
    layout->addWidget(hint);
    layout->addLayout(buttons);
    layout->addLayout(lists, 1);
    auto *around = new QHBoxLayout(this);
    around->addWidget(column);
}

void WelcomePanel::addButton(const QString &command, QLayout *layout)
{
    QAction *action = OssActionTreeManager::instance()->findAction(command);
    if (!action)
        return;
    auto *button = new QPushButton(action->text(), this);
    button->setToolTip(action->toolTip());
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    layout->addWidget(button);
}

QListWidget *WelcomePanel::addList(const QString &title, QVBoxLayout *layout)
{
    auto *heading = new QLabel(title, this);
    heading->setObjectName(QStringLiteral("Muted"));
    auto *list = new QListWidget(this);
    list->setAccessibleName(title);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setTextElideMode(Qt::ElideMiddle);
    connect(list, &QListWidget::itemClicked, this, &WelcomePanel::choose);
    connect(list, &QListWidget::itemActivated, this, &WelcomePanel::choose);
    layout->addWidget(heading);
    layout->addWidget(list, 1);
    return list;
}

void WelcomePanel::refresh()
{
    m_recent->clear();
    const QStringList recent = RecentProjects::list();
    for (const QString &path : recent)
        addRow(m_recent, path, QDir::toNativeSeparators(QFileInfo(path).path()), {});
    if (recent.isEmpty()) {
        auto *none = new QListWidgetItem(tr("None yet"), m_recent);
        none->setFlags(Qt::NoItemFlags);
    }
    const QString examples = OssResourceInfo::instance()->examplePath();
    listProjects(m_examples, examples);
    listProjects(m_guides, examples + QStringLiteral("/Guides"));
    firstList()->setCurrentRow(0);
}

QListWidget *WelcomePanel::firstList() const
{
    return m_recent->item(0)->flags() == Qt::NoItemFlags ? m_guides : m_recent;
}

void WelcomePanel::choose(const QListWidgetItem *row)
{
    const QString path = row->data(pathRole).toString();
    // A double click is a click and more.
    if (!path.isEmpty() && isVisible())
        Q_EMIT projectChosen(path);
}

void WelcomePanel::showEvent(QShowEvent *event)
{
    refresh();
    QWidget::showEvent(event);
}

void WelcomePanel::focusInEvent(QFocusEvent *)
{
    firstList()->setFocus();
}
