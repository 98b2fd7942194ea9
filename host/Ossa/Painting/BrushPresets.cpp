#include "Ossa/Painting/BrushPresets.h"

#include "Ossa/Painting/BrushFields.h"
#include "Ossa/Painting/BrushStamps.h"
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssSettings.h"
#include "OssModel/Images/OssColorManagement.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr qint64 largestFile = 1 << 16;
constexpr double largestWorldRadius = 1e6;
constexpr double largestColor = 1e4; // scene-linear
const QString radiusKey = QStringLiteral("radius");
const QString worldRadiusKey = QStringLiteral("worldRadius");
const QString stampKey = QStringLiteral("stamp");
const QString stencilKey = QStringLiteral("stencil");
const QString pictureKey = QStringLiteral("picture");
const QString colorKey = QStringLiteral("color");
const QString secondColorKey = QStringLiteral("secondColor");

struct Shipped
{
    const char *name;
    void (*set)(Brush *brush);
};

void stamped(Brush *brush, const char *name)
{
    brush->paint.stamp = BrushStamps::make(QLatin1String(name));
    brush->paint.spacing = 0.3;
}

// clang-format off
const Shipped shipped[] = {
    {QT_TRANSLATE_NOOP("BrushPresets", "Soft Round"), [](Brush *b) { b->paint.hardness = 0.2; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Hard Round"), [](Brush *b) { b->paint.hardness = 1.0; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Airbrush"), [](Brush *b) { b->paint.hardness = 0.0; b->paint.flow = 0.08; b->paint.pressureSizes = false; b->paint.pressureCovers = true; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Pencil"), [](Brush *b) { b->paint.radius = 4.0; b->paint.hardness = 0.8; b->paint.flow = 0.5; b->paint.flowJitter = 0.5; b->paint.pressureCovers = true; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Flat"), [](Brush *b) { b->paint.hardness = 0.9; b->paint.roundness = 0.25; b->paint.angle = 45.0; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Chalk"), [](Brush *b) { stamped(b, "Chalk"); b->paint.angleJitter = 1.0; b->paint.flow = 0.6; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Bristles"), [](Brush *b) { stamped(b, "Bristles"); b->paint.spacing = 0.06; b->paint.followsStroke = true; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Spatter"), [](Brush *b) { stamped(b, "Spatter"); b->paint.spacing = 1.2; b->paint.angleJitter = 1.0; b->paint.sizeJitter = 0.5; b->paint.placeJitter = 0.6; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Dust"), [](Brush *b) { stamped(b, "Cloud"); b->paint.spacing = 0.5; b->paint.angleJitter = 1.0; b->paint.flow = 0.4; b->paint.placeJitter = 0.4; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Clone"), [](Brush *b) { b->paint.tool = OssEvBrush::Tool::Clone; b->paint.hardness = 0.3; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Smear"), [](Brush *b) { b->paint.tool = OssEvBrush::Tool::Smear; b->paint.hardness = 0.2; b->paint.flow = 0.8; b->paint.spacing = 0.08; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Blur"), [](Brush *b) { b->paint.tool = OssEvBrush::Tool::Blur; b->paint.hardness = 0.2; b->paint.flow = 0.5; b->paint.spacing = 0.2; }},
    {QT_TRANSLATE_NOOP("BrushPresets", "Steady Line"), [](Brush *b) { b->paint.radius = 6.0; b->paint.hardness = 0.9; b->steadiness = 60.0; }},
};

// clang-format on

QString pathOf(const QString &name)
{
    return QDir(BrushPresets::ownFolder()).filePath(name + QStringLiteral(".json"));
}

OssResult refused(const QString &path, const QString &reason)
{
    return OssResult::failure(
        QCoreApplication::translate("BrushPresets", "Cannot use the brush \"%1\": %2")
            .arg(path, reason));
}

/// Numbers that are missing or no numbers stay as they are; those out of range come to its edge.
void readNumber(const QJsonObject &from, const QString &key, double least, double most,
                double *number)
{
    const double value = from.value(key).toDouble(*number);
    if (std::isfinite(value))
        *number = std::clamp(value, least, most);
}

OssResult readObject(const QString &path, QJsonObject *object)
{
    QByteArray content;
    const OssResult opened = OssAtomicFile::read(path, largestFile, &content);
    if (!opened)
        return opened;
    QJsonParseError error{};
    *object = QJsonDocument::fromJson(content, &error).object();
    return error.error == QJsonParseError::NoError ? OssResult()
                                                   : refused(path, error.errorString());
}

OssResult readBrush(const QJsonObject &object, Brush *brush)
{
    OssEvBrush &paint = brush->paint;
    readNumber(object, radiusKey, Brushes::smallestRadius, Brushes::largestRadius, &paint.radius);
    readNumber(object, worldRadiusKey, 1.0 / largestWorldRadius, largestWorldRadius,
               &paint.worldRadius);
    for (const BrushFields::Choice &field : BrushFields::choices()) {
        const QString word = object.value(QLatin1String(field.key)).toString();
        for (int i = 0; i < field.words.size(); ++i) {
            if (field.words.at(i).compare(word, Qt::CaseInsensitive) == 0)
                field.set(*brush, i);
        }
    }
    for (const BrushFields::Number &field : BrushFields::numbers())
        readNumber(object, QLatin1String(field.key), field.least / field.shown,
                   field.most / field.shown, &field.of(*brush));
    for (const BrushFields::Switch &field : BrushFields::switches()) {
        bool &value = field.of(*brush);
        value = object.value(QLatin1String(field.key)).toBool(value);
    }
    OssResult found = BrushPresets::readStamp(object.value(stampKey).toString(), &paint.stamp);
    if (found)
        found = BrushPresets::readStamp(object.value(stencilKey).toString(), &paint.stencil);
    if (found)
        found = BrushPresets::readPicture(object.value(pictureKey).toString(), &paint.picture);
    return found;
}

OssResult read(const QString &path, Brush *brush)
{
    QJsonObject object;
    const OssResult result = readObject(path, &object);
    return result ? readBrush(object, brush) : result;
}

void readColor(const QJsonValue &from, std::array<float, 3> *color)
{
    const QJsonArray values = from.toArray();
    for (std::size_t i = 0; i < color->size(); ++i) {
        const double value = values.at(int(i)).toDouble((*color)[i]);
        (*color)[i] = float(std::clamp(value, 0.0, largestColor));
    }
}

QJsonArray colorOf(const std::array<float, 3> &color)
{
    return {double(color[0]), double(color[1]), double(color[2])};
}

QJsonObject objectOf(Brush brush)
{
    const OssEvBrush &paint = brush.paint;
    QJsonObject object;
    object[radiusKey] = paint.radius;
    object[worldRadiusKey] = paint.worldRadius;
    for (const BrushFields::Choice &field : BrushFields::choices())
        object[QLatin1String(field.key)] = field.words.at(field.get(brush));
    for (const BrushFields::Number &field : BrushFields::numbers())
        object[QLatin1String(field.key)] = field.of(brush);
    for (const BrushFields::Switch &field : BrushFields::switches())
        object[QLatin1String(field.key)] = field.of(brush);
    if (paint.stamp)
        object[stampKey] = QString::fromStdString(paint.stamp->name());
    if (paint.stencil)
        object[stencilKey] = QString::fromStdString(paint.stencil->name());
    if (paint.picture)
        object[pictureKey] = QString::fromStdString(paint.picture->name());
    return object;
}

OssResult write(const QString &path, const QJsonObject &object)
{
    return OssAtomicFile::write(path, QJsonDocument(object).toJson());
}

QString pathOfInHand()
{
    return QDir(OssSettings::folderPath()).filePath(QStringLiteral("Brush.json"));
}

} // namespace

QString BrushPresets::ownFolder()
{
    return QDir(OssSettings::folderPath()).filePath(QStringLiteral("Brushes"));
}

QVector<BrushPresets::Entry> BrushPresets::all()
{
    QVector<Entry> found;
    for (const Shipped &row : shipped) {
        Entry entry;
        entry.name = QCoreApplication::translate("BrushPresets", row.name);
        row.set(&entry.brush);
        found.append(entry);
    }
    const QFileInfoList files = QDir(ownFolder())
                                    .entryInfoList({QStringLiteral("*.json")}, QDir::Files,
                                                   QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo &file : files) {
        Entry entry;
        entry.name = file.completeBaseName();
        entry.isOwn = true;
        entry.problem = read(file.filePath(), &entry.brush).error();
        found.append(entry);
    }
    return found;
}

OssResult BrushPresets::save(const QString &name, const Brush &brush)
{
    if (name.trimmed().isEmpty() || name.contains(QLatin1Char('/'))
        || name.startsWith(QLatin1Char('.')))
        return OssResult::failure(QCoreApplication::translate(
            "BrushPresets", "A brush needs a name that a file can have, without \"/\""));
    const OssResult folder = OssAtomicFile::makeFolder(ownFolder());
    return folder ? write(pathOf(name), objectOf(brush)) : folder;
}

OssResult BrushPresets::remove(const QString &name)
{
    QFile file(pathOf(name));
    return file.remove() ? OssResult() : refused(file.fileName(), file.errorString());
}

OssResult BrushPresets::keepInHand(const Brush &brush)
{
    QJsonObject object = objectOf(brush);
    object[colorKey] = colorOf(brush.paint.color);
    object[secondColorKey] = colorOf(brush.paint.secondColor);
    const OssResult folder = OssAtomicFile::makeFolder(OssSettings::folderPath());
    return folder ? write(pathOfInHand(), object) : folder;
}

std::optional<Brush> BrushPresets::keptInHand()
{
    QJsonObject object;
    Brush brush;
    if (!QFile::exists(pathOfInHand()) || !readObject(pathOfInHand(), &object)
        || !readBrush(object, &brush))
        return std::nullopt;
    readColor(object.value(colorKey), &brush.paint.color);
    readColor(object.value(secondColorKey), &brush.paint.secondColor);
    return brush;
}

QStringList BrushPresets::stamps()
{
    return BrushStamps::names();
}

OssResult BrushPresets::readStamp(const QString &name, OssEvStamp::Pointer *stamp)
{
    *stamp = BrushStamps::make(name);
    if (*stamp || name.isEmpty())
        return {};
    const OssEvResult result = OssEvStamp::read(name.toStdString(), stamp);
    return result ? OssResult() : OssResult::failure(QString::fromStdString(result.error()));
}

OssResult BrushPresets::readPicture(const QString &path, OssEvPaintPicture::Pointer *picture)
{
    picture->reset();
    if (path.isEmpty())
        return {};
    const OssEvResult result = OssEvPaintPicture::read(path.toStdString(),
                                                       OssColorManagement::spaces(), picture);
    return result ? OssResult() : OssResult::failure(QString::fromStdString(result.error()));
}
