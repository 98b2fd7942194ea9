#include "OssCore/Program/OssResourceInfo.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace {

using namespace OssCommandTable;

/// "Edit 2.1, Context 2.1" as menu and place.
QVector<QPair<QString, QString>> placesOf(const char *written)
{
    QVector<QPair<QString, QString>> places;
    const QStringList all = text(written).split(text(", "), Qt::SkipEmptyParts);
    for (const QString &place : all) {
        const int blank = place.lastIndexOf(QLatin1Char(' '));
        places.append({place.left(blank), place.mid(blank + 1)});
    }
    return places;
}

/// Every place that a row or a submenu takes, with who takes it.
QVector<QPair<QString, QPair<QString, QString>>> allPlaces()
{
    QVector<QPair<QString, QPair<QString, QString>>> all;
    const auto add = [&all](const QString &owner, const char *places) {
        for (const auto &place : placesOf(places))
            all.append({owner, place});
    };
    for (const Row &row : rows())
        add(path(row), row.places);
    for (const Menu &menu : menus())
        add(text(menu.name), menu.places);
    return all;
}

} // namespace

TEST(CommandTable, placesNameMenusAndNoneIsTakenTwice)
{
    static const QRegularExpression number(text("\\A[1-9]\\.[0-9]{1,2}\\z"));
    QSet<QString> names;
    for (const Menu &menu : menus())
        names.insert(text(menu.name));
    EXPECT_EQ(std::size_t(names.size()), menus().size());
    QSet<QString> taken;
    QSet<QString> used;
    for (const auto &entry : allPlaces()) {
        const QString menu = entry.second.first;
        const QString place = menu + QLatin1Char(' ') + entry.second.second;
        EXPECT_TRUE(names.contains(menu)) << qPrintable(entry.first);
        EXPECT_TRUE(number.match(entry.second.second).hasMatch()) << qPrintable(place);
        EXPECT_FALSE(taken.contains(place)) << qPrintable(place);
        taken.insert(place);
        used.insert(menu);
    }
    EXPECT_EQ(used, names) << "a menu that nothing stands in";
}

TEST(CommandTable, everyRowSaysWhatItDoes)
{
    for (const Row &row : rows()) {
        if (text(row.name) != text("*"))
            EXPECT_GT(tip(row).size(), 7) << qPrintable(path(row));
    }
}

TEST(CommandTable, pathsAreUniqueAndKeysCanBeReadAndDoNotBlockEachOther)
{
    QSet<QString> paths;
    QHash<QString, QString> owners; // of a key where it acts
    const auto placeOf = [](const Row &row) {
        const QString folder = text(row.folder);
        const bool isApart = folder == text("/Ossa/Viewer") || folder == text("/Ossa/Properties");
        return isApart ? folder : QString();
    };
    for (const Row &row : rows()) {
        const QString path = OssCommandTable::path(row);
        EXPECT_EQ(OssActionTreeManager::normalizedPath(path), path);
        EXPECT_FALSE(paths.contains(path)) << qPrintable(path);
        paths.insert(path);
        EXPECT_EQ(keys(path).size(),
                  text(row.keys).split(QLatin1Char(' '), Qt::SkipEmptyParts).size());
        for (const QKeySequence &key : keys(path)) {
            EXPECT_FALSE(key.isEmpty()) << qPrintable(path);
            EXPECT_EQ(key.count(), 1) << qPrintable(path);
            const QString taken = placeOf(row) + key.toString();
            EXPECT_FALSE(owners.contains(taken))
                << qPrintable(path) << " and " << qPrintable(owners.value(taken));
            owners.insert(taken, path);
        }
    }
}

TEST(CommandTable, iconsAreThere)
{
    for (const Row &row : rows()) {
        const QString file = OssResourceInfo::instance()->iconPath() + QLatin1Char('/')
                             + text(row.icon);
        EXPECT_TRUE(QFileInfo::exists(file)) << qPrintable(file);
    }
}

TEST(CommandTable, separatorsStandBetweenSectionsAndNowhereElse)
{
    using Item = OssMenuDefinition::Item;
    for (const Menu &menu : menus()) {
        QSet<QString> sections;
        for (const auto &[owner, place] : allPlaces()) {
            if (place.first == text(menu.name))
                sections.insert(place.second.section(QLatin1Char('.'), 0, 0));
        }
        int separators = 0;
        int depth = 0;
        auto before = Item::Separator; // there is none at the begin, the end and beside another
        for (const Item &item : OssCommandTable::menu(text(menu.name)).items) {
            depth -= item.kind == Item::End ? 1 : 0;
            if (depth == 0 && item.kind == Item::Separator) {
                EXPECT_NE(before, Item::Separator) << menu.name;
                ++separators;
            }
            before = item.kind;
            depth += item.kind == Item::Submenu ? 1 : 0;
        }
        EXPECT_NE(before, Item::Separator) << menu.name;
        EXPECT_EQ(separators, std::max(0, sections.size() - 1)) << menu.name;
    }
}
