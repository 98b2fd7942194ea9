#include "OssInterface/Dialogs/OssNodeQuickFindDialog.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssInterface/Dialogs/OssSearchNodeDialog.h"
#include "OssInterface/Dialogs/OssSearchRowDelegate.h"
#include "support/ModelFixture.h"

#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

// The lists in which nodes and their types are looked up.

namespace {

enum Role { Place = Qt::UserRole, Explanation, Section, Favourite, Color };

class SearchLists : public ModelFixture
{
protected:
    static QString key(const QAbstractItemModel &model, int row)
    {
        return model.index(row, 0).data(OssNodeTypeListModel::PathKeyRole).toString();
    }
};

} // namespace

TEST(SearchRows, everyPartOfARowIsToBeSeenAndHasItsHeight)
{
    OssSearchRowDelegate::Roles roles;
    roles.place = Place;
    roles.explanation = Explanation;
    roles.section = Section;
    roles.favourite = Favourite;
    roles.color = Color;
    const OssSearchRowDelegate delegate(roles, nullptr);
    QStandardItemModel model;
    model.appendRow(new QStandardItem(QStringLiteral("Blur")));
    const QModelIndex index = model.index(0, 0);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 300, 60);
    const auto picture = [&](QStyle::State state = QStyle::State_Enabled) {
        QImage image(option.rect.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        option.state = state;
        delegate.paint(&painter, option, index);
        painter.end();
        return image;
    };
    const QImage plain = picture();
    const int height = delegate.sizeHint(option, index).height();
    QVector<QImage> seen{plain};

    const struct
    {
        int role;
        QVariant value;
        bool taller;
    } parts[] = {
        {Place, QStringLiteral("Filter"), false},
        {Explanation, QStringLiteral("Makes it soft"), true},
        {Section, QStringLiteral("Used last"), true},
        {Favourite, true, false},
        {Color, QColor(Qt::magenta), false},
    };

    for (const auto &part : parts) {
        model.setData(index, part.value, part.role);
        seen.append(picture());
        EXPECT_EQ(seen.indexOf(seen.last()), seen.size() - 1) << part.role;
        EXPECT_EQ(delegate.sizeHint(option, index).height() > height, part.taller) << part.role;
        model.setData(index, QVariant(), part.role);
        EXPECT_EQ(picture(), plain) << part.role;
    }
    model.setData(index, QColor(Qt::magenta), Color);
    const QImage colored = picture();
    model.setData(index, QVariant(), Color);
    int magenta = 0;
    for (int x = 0; x < colored.width(); ++x)
        magenta += colored.pixelColor(x, height / 2) == QColor(Qt::magenta) ? 1 : 0;
    EXPECT_GT(magenta, 0);
    // The chosen row offers the star: with the colours alone there would be nothing at its place.
    const auto star = [&](QStyle::State state) {
        return picture(state).copy(OssSearchRowDelegate::starRect(option.rect));
    };
    const QImage withStar = star(QStyle::State_Enabled | QStyle::State_Selected);
    bool drawn = false;
    for (int y = 0; y < withStar.height(); ++y) {
        for (int x = 0; x < withStar.width(); ++x)
            drawn = drawn || withStar.pixel(x, y) != withStar.pixel(0, y);
    }
    EXPECT_TRUE(drawn);

    // Names come before places, and neither runs over the star.
    model.setData(index, QString(200, QLatin1Char('W')), Qt::DisplayRole);
    const QImage longName = picture();
    model.setData(index, QStringLiteral("Filter"), Place);
    EXPECT_EQ(picture(), longName);
    EXPECT_EQ(star(QStyle::State_Enabled), plain.copy(OssSearchRowDelegate::starRect(option.rect)));
}

TEST_F(SearchLists, typesAreListedOnceUnderTheirFirstHeading)
{
    OssNodeTypeListModel model;
    const QString blur = QStringLiteral("Filter/Blur");
    const int all = model.rowCount();
    QStringList keys;
    for (int i = 0; i < all; ++i)
        keys.append(key(model, i));
    ASSERT_TRUE(keys.contains(blur));
    model.setLastUsed({blur, QStringLiteral("None/Such")});
    model.setFavourites({blur, keys.last()});
    EXPECT_EQ(model.rowCount(), all) << "nothing stands twice";
    EXPECT_EQ(key(model, 0), blur);
    EXPECT_EQ(key(model, 1), keys.last());
    const auto section = [&](int row) {
        return model.index(row, 0).data(OssNodeTypeListModel::SectionRole).toString();
    };
    EXPECT_EQ(section(0), QStringLiteral("Used last"));
    EXPECT_EQ(section(1), QStringLiteral("Favourites"));
    EXPECT_EQ(section(2), QStringLiteral("All nodes"));
    EXPECT_EQ(section(3), QString());

    model.toggleFavourite({});
    EXPECT_EQ(model.favourites().size(), 2);
    model.toggleFavourite(model.index(1, 0));
    EXPECT_EQ(model.favourites(), QStringList{blur});
    model.toggleFavourite(model.index(1, 0));
    EXPECT_EQ(model.favourites().size(), 2);

    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.setColors([](const QString &) { return QColor(Qt::magenta); });
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(model.index(0, 0).data(OssNodeTypeListModel::ColorRole).value<QColor>(),
              QColor(Qt::magenta));
    model.setSearchText(QStringLiteral("no such thing at all"));
    EXPECT_EQ(model.rowCount(), 0);
    model.setColors({});
    EXPECT_EQ(changed.count(), 1) << "there are no rows";
    model.setSearchText(QStringLiteral("blur"));
    EXPECT_EQ(key(model, 0), blur);
    EXPECT_LT(model.rowCount(), all);
    EXPECT_FALSE(model.index(0, 0).data(OssNodeTypeListModel::ColorRole).value<QColor>().isValid());
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
    const int all = list->model()->rowCount();
    EXPECT_EQ(all, m_network->nodes().size());
    const auto names = [&](const char *text) {
        field->setText(QString::fromUtf8(text));
        QStringList found;
        for (int i = 0; i < list->model()->rowCount(); ++i)
            found.append(list->model()->index(i, 0).data().toString());
        found.sort();
        return found;
    };
    EXPECT_EQ(names("soft wall"), QStringList{QStringLiteral("Softer wall")});
    EXPECT_EQ(names("zzqx"), QStringList());
    EXPECT_EQ(names("  ").size(), all);
    EXPECT_EQ(names("wall").size(), 2);

    const QImage plain = list->grab().toImage();
    dialog.setColors([](const QString &) { return QColor(Qt::magenta); });
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

TEST_F(SearchLists, theQuickListFitsIntoTheView)
{
    const struct
    {
        QSize view;
        QSize wanted;
    } cases[] = {
        {{2000, 2000}, {420, 460}},
        {{400, 300}, {360, 260}},
        {{100, 100}, {260, 200}},
    };

    for (const auto &c : cases) {
        const OssNodeQuickFindDialog dialog({}, {}, 5, {10, 10}, c.view);
        EXPECT_EQ(dialog.size(), c.wanted) << c.view.width();
        EXPECT_EQ(dialog.nodePosition(), QPoint(10, 10));
    }
}

TEST_F(SearchLists, theQuickListStandsAtThePointerAndWhollyOverTheView)
{
    QWidget view;
    view.resize(600, 500);

    const struct
    {
        QPoint pointer;
        QPoint corner;
    } cases[] = {
        {{10, 20}, {10, 20}},
        {{590, 490}, {599 - 420, 499 - 460}},
        {{-30, -40}, {0, 0}},
    };

    for (const auto &c : cases) {
        const OssNodeQuickFindDialog dialog({}, {}, 5, c.pointer, view.size(), &view);
        EXPECT_EQ(view.mapFromGlobal(dialog.pos()), c.corner) << c.pointer.x();
    }
    view.resize(100, 100);
    const OssNodeQuickFindDialog larger({}, {}, 5, {50, 60}, view.size(), &view);
    EXPECT_EQ(view.mapFromGlobal(larger.pos()), QPoint(0, 0));
}

TEST_F(SearchLists, favouritesAreMarkedByAKeyOrTheStarAndChosenBesideIt)
{
    OssNodeQuickFindDialog dialog({}, {}, 5, {10, 10}, {600, 600});
    dialog.show();
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
    const QString first = key(*list->model(), 0);
    QTest::keyClick(field, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(dialog.favourites(), QStringList{first});
    EXPECT_TRUE(field->text().isEmpty());
    const QString third = key(*list->model(), 2);
    click(2, true);
    EXPECT_EQ(dialog.favourites(), QStringList({first, third}));
    EXPECT_TRUE(dialog.isVisible()) << "marked, not taken";
    EXPECT_TRUE(dialog.chosenPathKey().isEmpty());

    field->setText(QStringLiteral("blur"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->viewport()->rect().bottomLeft() + QPoint(5, -5));
    field->setText(QStringLiteral("zzqx"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible()) << "there is nothing to take";
    field->clear();
    const QString taken = key(*list->model(), 1);
    click(1, false);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.chosenPathKey(), taken);
    EXPECT_EQ(dialog.favourites().size(), 2);
}

TEST_F(SearchLists, typesAreFoundByWhatElseTheyAreCalledAfterThoseOfThatName)
{
    OssNodeTypeListModel model;
    const auto found = [&](const char *text) {
        model.setSearchText(QString::fromLatin1(text));
        QStringList keys;
        for (int i = 0; i < model.rowCount(); ++i)
            keys.append(key(model, i));
        return keys;
    };
    EXPECT_EQ(found("gauss").value(0), QStringLiteral("Filter/Blur"));
    EXPECT_EQ(found("soften").value(0), QStringLiteral("Filter/Blur"));
    EXPECT_EQ(found("Ramp").indexOf(QStringLiteral("Adjust/Curve")) > 0, true)
        << "what is called so comes first";
    EXPECT_TRUE(found("filter blur").contains(QStringLiteral("Filter/Blur"))) << "by its folder";
}

TEST_F(SearchLists, keysTypedInAPopupAreNotTheWindows)
{
    OssNodeQuickFindDialog dialog({}, {}, 5, {10, 10}, {600, 600});
    QKeyEvent key(QEvent::ShortcutOverride, Qt::Key_D, {}, QStringLiteral("d"));
    key.ignore();
    EXPECT_TRUE(QApplication::sendEvent(&dialog, &key));
    EXPECT_TRUE(key.isAccepted());
}
