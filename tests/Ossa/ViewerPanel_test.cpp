#include "Ossa/Viewer/ViewerPanel.h"

#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/ObjectView.h"
#include "Ossa/Viewer/PaintBar.h"
#include "Ossa/Viewer/UvView.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "Ossa/Viewer/ViewerSource.h"
#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/OssaFiles.h"
#include "support/PassTime.h"
#include "support/Text.h"

#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

namespace {

/// The Viewer of a network in which a red, a green and a half grey node stand.
class Viewing : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_network->geoEntity()->setGeometry(text("plane"));
        m_viewer = m_network->viewerNode();
        m_red = color("1,0,0,1");
        m_green = color("0,1,0,1");
        m_grey = color("0.25,0.25,0.25,1");
        OssUndoManager::instance()->clear();
        m_panel = std::make_unique<ViewerPanel>();
        m_source = m_panel->findChild<ViewerSource *>();
        m_pictures = m_panel->findChild<ViewerPictures *>();
        choose("Resolution of a patch", 0);
        m_panel->resize(500, 500);
        m_panel->show();
    }

    void TearDown() override
    {
        m_panel.reset();
        ModelFixture::TearDown();
    }

    OssSnBaseNode *color(const char *value)
    {
        OssSnBaseNode *node = add("Procedural/Color");
        node->setAttribute(text("Color"), text(value));
        return node;
    }

    void connect(int input, OssSnBaseNode *node)
    {
        m_viewer->setInputNode(QString::number(input), node,
                               node ? node->prefferedOutputPoint() : QString());
    }

    /// Connects it and looks at it.
    void show(OssSnBaseNode *node, int input = 1)
    {
        connect(input, node);
        m_network->setViewerNodeCurrentEdge(input, true);
    }

    void choose(const char *name, int row)
    {
        named<QComboBox>(m_panel.get(), name)->setCurrentIndex(row);
    }

    void setNumber(const char *name, double value)
    {
        named<QDoubleSpinBox>(m_panel.get(), name)->setValue(value);
    }

    QAbstractButton *button(const char *name) const { return ::button(m_panel.get(), name); }

    static bool comes(const std::function<bool()> &state) { return QTest::qWaitFor(state, 20000); }

    QColor shown() const
    {
        const QImage picture = m_pictures->picture(1001);
        return picture.isNull() ? QColor()
                                : picture.pixelColor(picture.width() - 3, picture.height() - 3);
    }

    ::testing::AssertionResult comesToShow(const QColor &wanted)
    {
        if (comes([&] { return shown() == wanted; }))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << "shows " << qPrintable(shown().name(QColor::HexArgb)) << " "
               << qPrintable(m_pictures->problem());
    }

    OssSnBaseNode *m_viewer = nullptr;
    OssSnBaseNode *m_red = nullptr;
    OssSnBaseNode *m_green = nullptr;
    OssSnBaseNode *m_grey = nullptr;
    std::unique_ptr<ViewerPanel> m_panel;
    ViewerSource *m_source = nullptr;
    ViewerPictures *m_pictures = nullptr;
};

TEST_F(Viewing, theResolutionIsTheUsersInTheNextSessionToo)
{
    choose("Resolution of a patch", 3);
    m_panel = std::make_unique<ViewerPanel>();
    EXPECT_EQ(named<QComboBox>(m_panel.get(), "Resolution of a patch")->currentData(), 2048);
    EXPECT_EQ(m_panel->findChild<ViewerSource *>()->resolution(), 2048);
    OssSettings().setValue(text("Viewer/resolution"), 1000);
    m_panel = std::make_unique<ViewerPanel>();
    EXPECT_EQ(m_panel->findChild<ViewerSource *>()->resolution(), 1024) << "there is no such size";
    OssSettings().remove(text("Viewer"));
}

TEST_F(Viewing, theDisplayIsTheUsersInTheNextSessionToo)
{
    auto *display = named<QComboBox>(m_panel.get(), "Display");
    display->setCurrentIndex(1);
    Q_EMIT display->activated(1);
    m_panel = std::make_unique<ViewerPanel>();
    m_pictures = m_panel->findChild<ViewerPictures *>();
    EXPECT_EQ(named<QComboBox>(m_panel.get(), "Display")->currentText(), text("Raw"));
    choose("Resolution of a patch", 0);
    m_panel->resize(500, 500);
    m_panel->show();
    show(m_grey);
    EXPECT_TRUE(comesToShow(QColor(64, 64, 64))) << "numbers as they are";
    OssSettings().remove(text("Viewer"));
}

TEST_F(Viewing, showsWhatTheViewerLooksAtAndEveryChangeOfIt)
{
    const auto paintGreen = [this](const char *value) {
        m_green->setAttribute(text("Color"), text(value));
    };
    connect(2, m_green);
    show(m_red);
    EXPECT_TRUE(comesToShow(Qt::red));
    EXPECT_TRUE(m_source->shows(m_red));
    EXPECT_TRUE(m_source->showsOnly(m_red));
    EXPECT_FALSE(m_source->shows(m_green));
    m_network->setViewerNodeCurrentEdge(2, true);
    EXPECT_TRUE(comesToShow(Qt::green));
    paintGreen("0,0,1,1");
    EXPECT_TRUE(comesToShow(Qt::blue));
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(comesToShow(Qt::green));
    {
        // A value under the user's hand is no step yet.
        const OssUndoManager::Pause pause;
        paintGreen("1,1,1,1");
        EXPECT_TRUE(comesToShow(Qt::white));
    }
    connect(2, m_red);
    EXPECT_TRUE(comesToShow(Qt::red));
    connect(2, nullptr);
    EXPECT_TRUE(comes([&] { return !m_pictures->problem().isEmpty(); }));
    EXPECT_TRUE(m_pictures->patches().isEmpty());
    connect(2, m_red);
    EXPECT_TRUE(comesToShow(Qt::red));
    EXPECT_TRUE(m_pictures->problem().isEmpty());
}

TEST_F(Viewing, beginsAnewOnlyForAnotherPicture)
{
    show(m_red);
    EXPECT_TRUE(comesToShow(Qt::red));
    passTime(200);
    QSignalSpy began(m_source, &ViewerSource::began);
    m_green->setAttribute(text("Color"), text("0,0,1,1"));
    m_red->setName(text("Renamed"));
    choose("Channels", 0);
    m_source->setLook({});
    m_source->setResolution(256);
    passTime(300);
    EXPECT_TRUE(began.isEmpty());
    const QList<QLabel *> labels = m_panel->findChildren<QLabel *>();
    EXPECT_TRUE(std::any_of(labels.cbegin(), labels.cend(), [](const QLabel *label) {
        return label->text() == text("Renamed");
    })) << "the picture is the same, its name is not";
    m_source->refresh();
    EXPECT_TRUE(began.wait(20000)) << "but when it is asked for";
}

TEST_F(Viewing, controlsSayHowItIsShown)
{
    show(m_grey);
    EXPECT_TRUE(comesToShow(QColor(137, 137, 137))) << "as a screen shows it";
    choose("Display", 1);
    EXPECT_TRUE(comesToShow(QColor(64, 64, 64)));
    setNumber("Exposure in stops", 1.0);
    EXPECT_TRUE(comesToShow(QColor(128, 128, 128)));
    choose("Channels", 4);
    EXPECT_TRUE(comesToShow(QColor(Qt::white)));
    setNumber("Exposure in stops", -1.0);
    EXPECT_TRUE(comesToShow(QColor(128, 128, 128))) << "alpha";
    choose("Channels", 0);
    choose("Display", 0);
    setNumber("Exposure in stops", 0.0);
    EXPECT_TRUE(comesToShow(QColor(137, 137, 137)));
    setNumber("Gamma", 2.0);
    EXPECT_TRUE(comes([&] { return shown().red() > 160; }));
    choose("Resolution of a patch", 1);
    EXPECT_TRUE(comes([&] { return m_pictures->picture(1001).width() == 512; }));
    EXPECT_TRUE(comes([&] { return shown().red() > 160; }));
}

TEST_F(Viewing, aCoarsePictureComesBeforeTheFineOne)
{
    choose("Resolution of a patch", 2);
    QList<int> tiles; // what resolution each is of
    QObject::connect(m_source, &ViewerSource::tileArrived,
                     [&tiles](int, int resolution) { tiles.append(resolution); });
    QSignalSpy progress(m_source, &ViewerSource::progressed);
    show(m_red);
    const int coarse = 256 * 256 / (OssEvTile::Size * OssEvTile::Size);
    const int all = coarse + 16 * coarse;
    EXPECT_TRUE(comes([&] { return tiles.size() >= all; })) << tiles.size();
    for (int i = 0; i < tiles.size(); ++i)
        EXPECT_EQ(tiles.at(i), i < coarse ? 256 : 1024) << i;
    QVector<float> values;
    EXPECT_TRUE(m_pictures->values(1001, {5, 5}, &values));
    EXPECT_TRUE(comes([&] { return progress.last().at(0).toInt() == 1000; }));
}

TEST_F(Viewing, computesNothingWhileNobodySeesIt)
{
    m_panel->hide();
    QSignalSpy began(m_source, &ViewerSource::began);
    show(m_red);
    passTime(200);
    EXPECT_TRUE(began.isEmpty());
    m_panel->show();
    EXPECT_TRUE(comesToShow(Qt::red));
}

TEST_F(Viewing, whatFailsWhileItIsComputedIsSaidInWordsUntilThereIsAPicture)
{
    auto *paint = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
    ASSERT_TRUE(paint && paint->imageSet());
    const QString damaged = OssPixelStore::newPath();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(damaged).path()));
    writeFile(damaged, "no picture");
    QString name;
    ASSERT_TRUE(OssPixelStore::adopt(damaged, &name));
    paint->imageSet()->setPixels({{1001, name}});
    show(paint);
    EXPECT_TRUE(comes([&] { return m_pictures->problem().contains(name); }))
        << qPrintable(m_pictures->problem());
    EXPECT_TRUE(m_pictures->patches().isEmpty());
    connect(1, m_red);
    EXPECT_TRUE(comesToShow(Qt::red));
    EXPECT_TRUE(m_pictures->problem().isEmpty());
}

TEST_F(Viewing, anotherProjectIsNotTakenForTheOneBefore)
{
    show(m_red);
    EXPECT_TRUE(comesToShow(Qt::red));
    m_project = OssProjectManager::instance()->newProject(text("Other"));
    EXPECT_TRUE(comes([&] { return !m_pictures->problem().isEmpty(); }));
    EXPECT_FALSE(m_source->shows(m_red));
}

/// The panel's parts, without a picture.
class ViewerParts : public Viewing
{
protected:
    std::string shownViews() const
    {
        const bool patches = m_panel->findChild<UvView *>()->isVisible();
        const bool object = m_panel->findChild<ObjectView *>()->isVisible();
        return std::string(patches ? "2D " : "") + (object ? "3D " : "")
               + (button("Light")->isVisible() ? "Light " : "")
               + (button("Paint")->isChecked() ? "Paint" : "");
    }
};

TEST_F(ViewerParts, modesAndPaintingGoTogether)
{
    const std::pair<const char *, const char *> steps[] = {
        {"2D", "2D "},
        {"Paint", "2D Paint"},
        {"Both", "2D 3D Light Paint"},
        {"3D", "3D Light Paint"}, // showing the object does not end it
        {"Paint", "3D Light "},
        {"Paint", "3D Light Paint"},
        {"2D", "2D Paint"},
        {"Paint", "2D "},
        {"3D", "3D Light "},
    };
    for (const auto &[name, wanted] : steps) {
        button(name)->click();
        EXPECT_EQ(shownViews(), wanted) << name;
        EXPECT_EQ(m_panel->findChild<PaintBar *>()->isVisible(), button("Paint")->isChecked());
    }
    const auto openAnew = [this] {
        m_panel = std::make_unique<ViewerPanel>();
        m_panel->show();
        return shownViews();
    };
    EXPECT_EQ(openAnew(), "3D Light ") << "as in the last session";
    OssSettings().setValue(text("Viewer/mode"), 77);
    EXPECT_EQ(openAnew(), "2D ") << "no such mode";
    OssSettings().remove(text("Viewer"));
}

TEST_F(ViewerParts, thePointerGivesTheBrushItsKeysUnlessTheUserWritesElsewhere)
{
    QWidget window;
    auto *column = new QVBoxLayout(&window);
    auto *line = new QLineEdit;
    auto *other = new QPushButton;
    column->addWidget(line);
    column->addWidget(other);
    column->addWidget(m_panel.get());
    window.show();
    window.activateWindow();
    auto *view = m_panel->findChild<UvView *>();
    auto *own = m_panel->findChild<QDoubleSpinBox *>();
    button("2D")->click();
    const std::tuple<bool, QWidget *, bool> cases[] = {
        {true, other, true}, {true, line, false}, {true, own, true}, {false, other, false}};
    for (const auto &[paints, focus, takes] : cases) {
        button("Paint")->setChecked(paints);
        focus->setFocus();
        QCoreApplication::processEvents();
        ASSERT_TRUE(focus->hasFocus() || window.focusWidget() != view);
        Q_EMIT view->entered();
        EXPECT_EQ(window.focusWidget() == view, takes)
            << paints << focus->metaObject()->className();
    }
    m_panel->setParent(nullptr);
}

TEST_F(ViewerParts, keysAreCommandsThatActInThePicturesAlone)
{
    auto *view = m_panel->findChild<UvView *>();
    auto *object = m_panel->findChild<ObjectView *>();
    m_panel->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_panel.get()));
    const auto press = [](QWidget *focus, Qt::Key key) {
        focus->setFocus();
        QTest::keyClick(focus, key);
    };
    button("Both")->click();
    const auto state = [&] {
        const OssEvBrush &brush = Brushes::instance()->brush();
        return std::tuple(brush.radius, brush.hardness, brush.erases(), object->isLit());
    };
    const auto keys = {Qt::Key_E, Qt::Key_BracketLeft, Qt::Key_BracketRight, Qt::Key_BraceLeft,
                       Qt::Key_BraceRight};
    for (const bool paints : {true, false}) {
        button("Paint")->setChecked(paints);
        for (const Qt::Key key : keys) {
            const auto before = state();
            press(named<QComboBox>(m_panel.get(), "Channels"), key);
            EXPECT_EQ(state(), before) << key;
            press(view, key);
            EXPECT_EQ(state() != before, paints) << key;
        }
    }
    for (QWidget *focus : {static_cast<QWidget *>(view), static_cast<QWidget *>(object)}) {
        const bool lit = object->isLit();
        press(focus, Qt::Key_L);
        EXPECT_NE(object->isLit(), lit);
        m_pictures->begin({1001}, 256, {});
        QSignalSpy framed(view, &UvView::focusMoved);
        press(focus, Qt::Key_F);
        EXPECT_EQ(framed.size(), focus == view ? 1 : 0) << "the other one stays as it is looked at";
    }
    const auto *tool = named<QComboBox>(m_panel.get(), "Tool");
    EXPECT_TRUE(tool->toolTip().contains(text("(E,")));
    OssShortcutManager::instance()->setKeys(text("/Ossa/Viewer/Toggle Eraser"), {});
    EXPECT_FALSE(tool->toolTip().contains(text("(E,")));
    OssShortcutManager::instance()->resetAll();
}

TEST_F(ViewerParts, theViewsStandSideBySideWhereThereIsRoom)
{
    auto *views = m_panel->findChild<QSplitter *>();
    m_panel->resize(900, 500);
    EXPECT_EQ(views->orientation(), Qt::Horizontal);
    m_panel->resize(400, 900);
    EXPECT_EQ(views->orientation(), Qt::Vertical);
}

TEST_F(Viewing, progressOnlyGrowsUntilAllPatchesAreThere)
{
    m_network->geoEntity()->setGeometry(text("cube"));
    ASSERT_GT(OssEvaluationService::instance()->patches(m_network->geoEntity()).size(), 1);
    for (const int row : {0, 2}) {
        QSignalSpy progress(m_source, &ViewerSource::progressed);
        choose("Resolution of a patch", row);
        show(row == 0 ? m_red : m_green);
        EXPECT_TRUE(comes([&] { return !progress.isEmpty() && progress.last().at(0) == 1000; }))
            << row;
        int before = 0;
        for (const auto &step : progress) {
            EXPECT_GE(step.at(0).toInt(), before);
            EXPECT_EQ(step.at(0).toInt() == 1000, &step == &progress.last());
            before = step.at(0).toInt();
        }
        EXPECT_EQ(progress.last().at(1), row == 0 ? text("256 pixels") : text("1024 pixels"));
    }
}

TEST_F(Viewing, aNodeIsLookedAtByItselfBesideAPictureThatWasKept)
{
    show(m_red);
    ASSERT_TRUE(comesToShow(Qt::red));
    auto *view = m_panel->findChild<UvView *>();
    const auto seen = [view](double across) {
        const QImage picture = view->grab().toImage();
        return QColor(picture.pixel(int(picture.width() * across), picture.height() / 3));
    };
    const QByteArray before = m_project->stateHash();
    ASSERT_TRUE(comes([&] { return seen(0.3) == QColor(Qt::red); })) << "the last tile, too";
    button("Compare")->click();
    QSignalSpy began(m_source, &ViewerSource::began);
    ASSERT_TRUE(OssSolo::instance()->look(m_green));
    ASSERT_TRUE(comesToShow(Qt::green));
    EXPECT_EQ(began.last().at(1), text("Solo: ") + m_green->name());
    EXPECT_TRUE(comes([&] { return seen(0.7) == QColor(Qt::green); }));
    EXPECT_EQ(seen(0.3), QColor(Qt::red));
    const QPoint line(view->width() / 2, view->height() / 2);
    const QPoint right(view->width() * 8 / 10, line.y());
    QTest::mousePress(view, Qt::LeftButton, {}, line);
    QMouseEvent move(QEvent::MouseMove, right, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &move);
    QTest::mouseRelease(view, Qt::LeftButton, {}, right);
    EXPECT_EQ(seen(0.7), QColor(Qt::red)) << "the line is right of it";
    QTest::keyClick(m_panel.get(), Qt::Key_Escape);
    EXPECT_TRUE(comesToShow(Qt::red)) << "what the viewer looks at";
    EXPECT_TRUE(button("Compare")->isChecked());
    QTest::keyClick(m_panel.get(), Qt::Key_Escape);
    EXPECT_FALSE(button("Compare")->isChecked());
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Viewing, nothingIsPaintedUnderAPictureThatWasKept)
{
    show(m_red);
    ASSERT_TRUE(comesToShow(Qt::red));
    button("Paint")->click();
    m_panel->findChild<PaintBar *>()->makeNode();
    auto *view = m_panel->findChild<UvView *>();
    auto *session = m_panel->findChild<PaintSession *>();
    button("Compare")->click();
    const QPoint left(view->width() * 3 / 10, view->height() / 2);
    const QPoint right(view->width() * 7 / 10, view->height() / 2);
    QTest::mousePress(view, Qt::LeftButton, {}, left);
    EXPECT_FALSE(session->isPainting());
    QTest::mouseRelease(view, Qt::LeftButton, {}, left);
    QTest::mousePress(view, Qt::LeftButton, {}, right);
    EXPECT_TRUE(session->isPainting());
    QTest::mouseRelease(view, Qt::LeftButton, {}, right);
    session->clear();
}

TEST_F(Viewing, escapeStopsThePictureUntilTheNextChange)
{
    choose("Resolution of a patch", 4);
    QSignalSpy progress(m_source, &ViewerSource::progressed);
    int tiles = 0;
    QObject::connect(m_source, &ViewerSource::tileArrived, m_panel.get(), [&tiles] { ++tiles; });
    show(m_red);
    ASSERT_TRUE(comes([&] { return tiles > 0; }));
    QTest::keyClick(m_panel.get(), Qt::Key_Escape);
    EXPECT_EQ(progress.last().at(0), 1000) << "nothing is computed";
    const int before = tiles;
    passTime(200);
    EXPECT_EQ(tiles, before);
    m_red->setAttribute(text("Color"), text("0,0,1,1"));
    EXPECT_TRUE(comesToShow(Qt::blue));
}

} // namespace
