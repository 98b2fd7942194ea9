#include "OssInterface/Dialogs/OssNodeQuickFindDialog.h"
#include "OssInterface/Dialogs/OssNodeSearch.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssInterface/Dialogs/OssSearchNodeDialog.h"
#include "OssInterface/Dialogs/OssSearchRowDelegate.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTimer>

// The lists in which nodes and their types are looked up.

namespace {

enum Role { Place = Qt::UserRole, Explanation, Section, Favourite, Color };

QStringList column(const QAbstractItemModel &model, int role = Qt::DisplayRole)
{
    QStringList all;
    for (int row = 0; row < model.rowCount(); ++row)
        all.append(model.index(row, 0).data(role).toString());
    return all;
}

QStringList keys(const QAbstractItemModel &model)
{
    return column(model, OssNodeTypeListModel::PathKeyRole);
}

const QString Blur = text("Filter/Blur");

QColor magenta(const QString &)
{
    return Qt::magenta;
}

/// A row of which every part has its role.
class SearchRows : public testing::Test
{
protected:
    SearchRows()
    {
        model.appendRow(new QStandardItem(text("Blur")));
        index = model.index(0, 0);
        option.rect = QRect(0, 0, 300, 60);
    }

    static OssSearchRowDelegate::Roles roles()
    {
        OssSearchRowDelegate::Roles roles;
        roles.place = Place;
        roles.explanation = Explanation;
        roles.section = Section;
        roles.favourite = Favourite;
        roles.color = Color;
        return roles;
    }

    QImage picture(QStyle::State state = QStyle::State_Enabled)
    {
        QImage image(option.rect.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        option.state = state;
        delegate.paint(&painter, option, index);
        return image;
    }

    const OssSearchRowDelegate delegate{roles(), nullptr};
    QStandardItemModel model;
    QModelIndex index;
    QStyleOptionViewItem option;
};

using SearchLists = ModelFixture;

} // namespace

TEST_F(SearchRows, everyPartIsToBeSeenAndHasItsHeight)
{
    const QImage plain = picture();
    const int height = delegate.sizeHint(option, index).height();
    QVector<QImage> seen{plain};
    const std::tuple<int, QVariant, bool> parts[] = {
        {Place, text("Filter"), false},      {Explanation, text("Makes it soft"), true},
        {Section, text("Used last"), true},  {Favourite, true, false},
        {Color, QColor(Qt::magenta), false},
    };
    for (const auto &[role, value, isTaller] : parts) {
        model.setData(index, value, role);
        seen.append(picture());
        EXPECT_EQ(seen.indexOf(seen.last()), seen.size() - 1) << role;
        EXPECT_EQ(delegate.sizeHint(option, index).height() > height, isTaller) << role;
        model.setData(index, QVariant(), role);
        EXPECT_EQ(picture(), plain) << role;
    }
    bool isColored = false;
    for (int x = 0; x < plain.width(); ++x)
        isColored = isColored || seen.last().pixelColor(x, height / 2) == QColor(Qt::magenta);
    EXPECT_TRUE(isColored);
}

TEST_F(SearchRows, namesComeBeforePlacesAndLeaveRoomForTheStarThatAChosenRowOffers)
{
    const QRect star = OssSearchRowDelegate::starRect(option.rect);
    const QImage plain = picture();
    const QImage chosen = picture(QStyle::State_Enabled | QStyle::State_Selected).copy(star);
    QImage ground = chosen; // with the colours alone there would be nothing at its place
    ground.fill(chosen.pixel(0, 0));
    EXPECT_NE(chosen, ground);
    model.setData(index, QString(200, QLatin1Char('W')), Qt::DisplayRole);
    const QImage longName = picture();
    model.setData(index, text("Filter"), Place);
    EXPECT_EQ(picture(), longName);
    EXPECT_EQ(longName.copy(star), plain.copy(star));
}

TEST_F(SearchLists, typesAreListedOnceUnderTheirFirstHeading)
{
    OssNodeTypeListModel model;
    const QStringList all = keys(model);
    ASSERT_TRUE(all.contains(Blur));
    model.setLastUsed({Blur, text("None/Such")});
    model.setFavourites({Blur, all.last()});
    EXPECT_EQ(keys(model).size(), all.size()) << "nothing stands twice";
    EXPECT_EQ(keys(model).mid(0, 2), QStringList({Blur, all.last()}));
    EXPECT_EQ(column(model, OssNodeTypeListModel::SectionRole).mid(0, 4),
              texts({"Used last", "Favourites", "All nodes", ""}));

    model.toggleFavourite({});
    EXPECT_EQ(model.favourites().size(), 2);
    model.toggleFavourite(model.index(1, 0));
    EXPECT_EQ(model.favourites(), QStringList{Blur});
    model.toggleFavourite(model.index(1, 0));
    EXPECT_EQ(model.favourites().size(), 2);

    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.setColors(magenta);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(column(model, OssNodeTypeListModel::ColorRole).first(), QColor(Qt::magenta).name());
    model.setSearchText(text("no such thing at all"));
    EXPECT_EQ(model.rowCount(), 0);
    model.setColors({});
    EXPECT_EQ(changed.count(), 1) << "there are no rows";
    model.setSearchText(text("blur"));
    EXPECT_EQ(keys(model).first(), Blur);
    EXPECT_LT(model.rowCount(), all.size());
    EXPECT_FALSE(model.index(0, 0).data(OssNodeTypeListModel::ColorRole).value<QColor>().isValid());
}

TEST_F(SearchLists, typesAreFoundByWhatElseTheyAreCalledAfterThoseOfThatName)
{
    OssNodeTypeListModel model;
    const auto found = [&](const char *words) {
        model.setSearchText(text(words));
        return keys(model);
    };
    EXPECT_EQ(found("gauss").value(0), Blur);
    EXPECT_EQ(found("soften").value(0), Blur);
    EXPECT_GT(found("Ramp").indexOf(text("Adjust/Curve")), 0) << "what is called so comes first";
    EXPECT_TRUE(found("filter blur").contains(Blur)) << "by its folder";
}

TEST_F(SearchLists, nodesAreFoundByAllWordsAndShownWithTheirColours)
{
    add("Filter/Blur", "Soft");
    add("Filter/Blur", "Softer wall");
    add("Misc/Dot", "Wall");
    OssSearchNodeDialog dialog(m_network->nodes());
    dialog.show();
    auto *field = dialog.findChild<QLineEdit *>();
    auto *list = dialog.findChild<QListView *>();
    EXPECT_EQ(list->model()->rowCount(), m_network->nodes().size());
    const auto names = [&](const char *words) {
        field->setText(text(words));
        return column(*list->model());
    };
    EXPECT_EQ(names("soft wall"), texts({"Softer wall"}));
    EXPECT_EQ(names("zzqx"), QStringList());
    EXPECT_EQ(names("  ").size(), m_network->nodes().size());
    EXPECT_EQ(names("wall").size(), 2);

    const QImage plain = list->grab().toImage();
    dialog.setColors(magenta);
    names("");
    names("wall");
    EXPECT_NE(list->grab().toImage(), plain);

    // Tab stays, the arrows walk through the list, Return takes.
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.focusWidget(), field);
    const int row = list->currentIndex().row();
    QTest::keyClick(field, Qt::Key_Down);
    EXPECT_EQ(list->currentIndex().row(), row + 1);
    const QString wanted = list->currentIndex().data().toString();
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    ASSERT_NE(dialog.chosenNode(), nullptr);
    EXPECT_EQ(dialog.chosenNode()->name(), wanted);
}

TEST_F(SearchLists, longListsAreCut)
{
    QList<OssSnBaseNode *> many;
    for (int i = 0; i < 600; ++i)
        many.append(add("Misc/Dot"));
    const OssSearchNodeDialog dialog(many);
    const int shown = dialog.findChild<QListView *>()->model()->rowCount();
    EXPECT_GT(shown, 20);
    EXPECT_LT(shown, 600);
}

TEST_F(SearchLists, theQuickListFitsIntoTheViewAndStandsAtThePointer)
{
    const std::tuple<QSize, QPoint, QSize, QPoint> cases[] = {
        {{2000, 2000}, {10, 20}, {420, 460}, {10, 20}},
        {{600, 500}, {590, 490}, {420, 460}, {599 - 420, 499 - 460}},
        {{400, 300}, {-30, -40}, {360, 260}, {0, 0}},
        {{100, 100}, {50, 60}, {260, 200}, {0, 0}},
    };
    for (const auto &[room, pointer, size, corner] : cases) {
        QWidget view;
        view.resize(room);
        const OssNodeQuickFindDialog dialog({}, {}, 5, pointer, room, &view);
        EXPECT_EQ(dialog.size(), size) << room.width();
        EXPECT_EQ(view.mapFromGlobal(dialog.pos()), corner) << room.width();
        EXPECT_EQ(dialog.nodePosition(), pointer);
    }
}

TEST_F(SearchLists, lettersThatReachTheWindowBehindAQuickListAreNotLost)
{
    QWidget window;
    auto *view = new QWidget(&window);
    window.show();
    OssNodeQuickFindDialog dialog({}, {}, 5, {10, 10}, {600, 600}, view);
    QTimer::singleShot(0, &dialog, [&] {
        for (const auto key : {Qt::Key_B, Qt::Key_L})
            QTest::keyClick(window.windowHandle(), key);
        EXPECT_EQ(dialog.findChild<QLineEdit *>()->text(), text("bl"));
        QTest::keyClick(window.windowHandle(), Qt::Key_Return);
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
}

TEST_F(SearchLists, favouritesAreMarkedByAKeyOrTheStarAndChosenBesideIt)
{
    OssNodeQuickFindDialog dialog({}, {}, 5, {10, 10}, {600, 600});
    dialog.show();
    EXPECT_TRUE(takesShortcut(&dialog, Qt::Key_D)) << "keys typed in a popup are not the window's";
    auto *field = dialog.findChild<QLineEdit *>();
    auto *list = dialog.findChild<QListView *>();
    const auto click = [&](int row, bool star) {
        const QRect place = list->visualRect(list->model()->index(row, 0));
        const QPoint at = star ? OssSearchRowDelegate::starRect(place).center() : place.center();
        const int marked = dialog.favourites().size();
        QTest::mousePress(list->viewport(), Qt::LeftButton, {}, at);
        EXPECT_EQ(dialog.favourites().size(), marked + (star ? 1 : 0));
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, at);
    };
    QTest::keyClick(field, Qt::Key_Space);
    QTest::keyClick(field, Qt::Key_B, Qt::ControlModifier);
    EXPECT_TRUE(dialog.favourites().isEmpty());
    field->clear();
    const QString first = keys(*list->model()).first();
    QTest::keyClick(field, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(dialog.favourites(), QStringList{first});
    EXPECT_TRUE(field->text().isEmpty());
    const QString third = keys(*list->model()).at(2);
    click(2, true);
    EXPECT_EQ(dialog.favourites(), QStringList({first, third}));
    EXPECT_TRUE(dialog.isVisible()) << "marked, not taken";
    EXPECT_TRUE(dialog.chosenPathKey().isEmpty());

    field->setText(text("blur"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->viewport()->rect().bottomLeft() + QPoint(5, -5));
    field->setText(text("zzqx"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible()) << "there is nothing to take";
    field->clear();
    const QString taken = keys(*list->model()).at(1);
    click(1, false);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.chosenPathKey(), taken);
    EXPECT_EQ(dialog.favourites().size(), 2);
}

TEST_F(SearchLists, everyWordHasAReasonAndNamesComeFirst)
{
    OssSnBaseNode *node = add("Filter/Blur", "Soft wall");
    node->setDescription(text("for the northern side"));
    ASSERT_TRUE(node->setAttribute(text("Radius"), 6.25));
    const QString path = node->path();
    const QString value = text("Radius = 6.25");
    const std::tuple<const char *, QString, int, int> cases[] = {
        {"", path, 0, 0},
        {"  ", path, 0, 0},
        {"WALL", path, 2000, 9999},
        {"soft wall", path, 4000, 9999},
        {"unconn", text("unconnected"), 400, 400},
        {"filter/bl", Blur, 300, 300},
        {"northern", node->description(), 200, 200},
        {"6.25", value, 100, 100},
        {"radius=6.2", value, 500, 500},
        {"radi=6", value, 500, 500},
        {"wall northern", node->description(), 2200, 9999},
        {"northern wall", node->description(), 2200, 9999},
        {"sfwl", path, 0, 1999},
        {"radius=7", {}, 0, 0},
        {"size=6.25", {}, 0, 0},
        {"=6.25", {}, 0, 0},
        {"radius=", {}, 0, 0},
        {"wall zzqx", {}, 0, 9999},
        {"disabled", {}, 0, 0},
        {"bypassed", {}, 0, 0},
    };
    for (const auto &[words, why, least, most] : cases) {
        int score = -1;
        EXPECT_EQ(OssNodeSearch::whyFound(node, text(words), &score), why) << words;
        EXPECT_GE(score, least) << words;
        EXPECT_LE(score, most) << words;
    }
    node->setEnabled(0);
    node->setBypassed(true);
    for (const char *state : {"disabled", "bypassed"})
        EXPECT_EQ(OssNodeSearch::whyFound(node, text(state), nullptr), text(state));
    wire(add("Misc/Dot"), node);
    EXPECT_EQ(OssNodeSearch::whyFound(node, text("unconn"), nullptr), QString());
}
