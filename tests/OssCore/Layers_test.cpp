#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>

namespace {

// Which layers the sources of a folder may include, besides their own.
const QMap<QString, QStringList> &allowed()
{
    static const QMap<QString, QStringList> table{
        {QStringLiteral("host/ZelGL"), {}},
        {QStringLiteral("host/OssCore"), {}},
        {QStringLiteral("host/OssEvaluation"), {}},
        {QStringLiteral("host/OssNodeGraph"), {QStringLiteral("OssCore")}},
        {QStringLiteral("host/OssCoreModules"),
         {QStringLiteral("OssCore"), QStringLiteral("OssEvaluation")}},
        {QStringLiteral("host/OssScripting"),
         {QStringLiteral("OssCore"), QStringLiteral("OssCoreModules")}},
        {QStringLiteral("OssShaderNetworkNodeGraphViewContext"),
         {QStringLiteral("OssCore"), QStringLiteral("OssCoreModules"),
          QStringLiteral("OssNodeGraph"), QStringLiteral("ZelGL")}},
        {QStringLiteral("host/Ossa"),
         {QStringLiteral("OssCore"), QStringLiteral("OssCoreModules"),
          QStringLiteral("OssNodeGraph"), QStringLiteral("OssEvaluation"),
          QStringLiteral("OssScripting"), QStringLiteral("ZelGL")}},
    };
    return table;
}

TEST(Layers, everyIncludeStaysWithinWhatTheLayerMayUse)
{
    const QString root = qEnvironmentVariable("OSSA_ROOT");
    ASSERT_FALSE(root.isEmpty()) << "OSSA_ROOT names the source tree";
    // A folder inside the plug-in is included by its own name.
    const QRegularExpression include(QStringLiteral("^\\s*#include \"(?!OssAPI/)(\\w+)/"),
                                     QRegularExpression::MultilineOption);
    int files = 0;
    for (auto layer = allowed().cbegin(); layer != allowed().cend(); ++layer) {
        const QString own = layer.key().section(QLatin1Char('/'), -1);
        QDirIterator sources(root + QLatin1Char('/') + layer.key(),
                             {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                             QDirIterator::Subdirectories);
        while (sources.hasNext()) {
            QFile file(sources.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            ++files;
            auto matches = include.globalMatch(QString::fromUtf8(file.readAll()));
            while (matches.hasNext()) {
                const QString used = matches.next().captured(1);
                const bool ours = used.startsWith(QLatin1String("Oss"))
                                  || used.startsWith(QLatin1String("Zel"));
                EXPECT_TRUE(!ours || used == own || layer->contains(used))
                    << qPrintable(file.fileName()) << " includes " << qPrintable(used);
            }
        }
    }
    EXPECT_GT(files, 100);
}

// The thread sanitizer can see standard locks, not Qt's.
TEST(Layers, pixelsAreComputedWithoutQt)
{
    const QString folder = qEnvironmentVariable("OSSA_ROOT")
                           + QStringLiteral("/host/OssEvaluation");
    const QRegularExpression include(QStringLiteral("^\\s*#include [<\"]Q"),
                                     QRegularExpression::MultilineOption);
    QDirIterator sources(folder, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                         QDirIterator::Subdirectories);
    EXPECT_TRUE(sources.hasNext()) << qPrintable(folder);
    while (sources.hasNext()) {
        QFile file(sources.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(include.match(QString::fromUtf8(file.readAll())).hasMatch())
            << qPrintable(file.fileName());
    }
}

} // namespace
