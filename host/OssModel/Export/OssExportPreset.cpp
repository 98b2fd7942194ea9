#include "OssModel/Export/OssExportPreset.h"

#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssModel/Images/OssColorManagement.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>

namespace {

using File = OssExportPreset::File;
using Channel = OssExportPreset::Channel;

constexpr int LargestFile = 1 << 20; ///< bytes of a preset
constexpr int MostFiles = 200;
constexpr int LargestResolution = 16384;
constexpr int Endless = -1; ///< padding
constexpr int LargestPadding = 16384;
const QString EndlessWord = QStringLiteral("all");
const QString Letters = QStringLiteral("RGBA");

QString tr(const char *text)
{
    return QCoreApplication::translate("OssExportPreset", text);
}

QString depthName(OssEvDepth depth)
{
    const std::string_view name = OssEvDepthNames[std::size_t(depth)];
    return QString::fromLatin1(name.data(), int(name.size()));
}

/// Reads one preset; the first fault ends it.
class Reader
{
public:
    Reader(const QByteArray &xml, OssExportPreset *preset)
        : m_xml(xml)
        , m_preset(preset)
    {
    }

    /// Why it is none; empty when it is.
    QString run()
    {
        while (!m_xml.atEnd() && m_xml.readNext() != QXmlStreamReader::StartElement)
            refuseDocumentType();
        if (!m_xml.isStartElement() || m_xml.name() != QLatin1String("ExportPreset"))
            fail(tr("it is no export preset"));
        m_preset->name = m_xml.attributes().value(QLatin1String("Name")).toString();
        while (!m_xml.hasError() && m_xml.readNextStartElement()) {
            if (m_xml.name() == QLatin1String("Description"))
                m_preset->description = m_xml.readElementText().simplified();
            else if (m_xml.name() == QLatin1String("File"))
                readFile();
            else
                fail(tr("\"%1\" is not known").arg(m_xml.name().toString()));
        }
        while (!m_xml.atEnd()) {
            m_xml.readNext();
            refuseDocumentType();
        }
        return m_xml.hasError() ? tr("line %1: %2").arg(m_xml.lineNumber()).arg(m_xml.errorString())
                                : QString();
    }

private:
    void fail(const QString &reason)
    {
        if (!m_xml.hasError())
            m_xml.raiseError(reason);
    }

    void refuseDocumentType()
    {
        if (m_xml.tokenType() == QXmlStreamReader::DTD)
            fail(tr("a document type is not allowed"));
    }

    QString text(const char *name) const
    {
        return m_xml.attributes().value(QLatin1String(name)).toString();
    }

    bool flag(const char *name)
    {
        const QString value = text(name);
        if (!value.isEmpty() && value != QLatin1String("true") && value != QLatin1String("false"))
            fail(tr("%1 is \"true\" or \"false\", not \"%2\"").arg(QLatin1String(name), value));
        return value == QLatin1String("true");
    }

    int whole(const char *name)
    {
        const QString value = text(name);
        bool isNumber = true;
        const int number = value.isEmpty() ? 0 : value.toInt(&isNumber);
        if (!isNumber)
            fail(tr("%1 is no number: \"%2\"").arg(QLatin1String(name), value));
        return number;
    }

    void checkNames(const QStringList &known)
    {
        const QXmlStreamAttributes attributes = m_xml.attributes();
        for (const QXmlStreamAttribute &attribute : attributes) {
            if (!known.contains(attribute.name().toString()))
                fail(tr("\"%1\" is not known of a %2")
                         .arg(attribute.name().toString(), m_xml.name().toString()));
        }
    }

    std::optional<OssEvDepth> depth()
    {
        const QString name = text("Depth");
        for (std::size_t i = 0; i < OssEvDepthNames.size(); ++i) {
            if (depthName(OssEvDepth(i)) == name)
                return OssEvDepth(i);
        }
        if (!name.isEmpty())
            fail(tr("there is no depth \"%1\"").arg(name));
        return {};
    }

    void readFile()
    {
        checkNames({QStringLiteral("Name"), QStringLiteral("Format"), QStringLiteral("Depth"),
                    QStringLiteral("Space"), QStringLiteral("Compression"),
                    QStringLiteral("Quality"), QStringLiteral("Dither"),
                    QStringLiteral("Resolution"), QStringLiteral("Padding"),
                    QStringLiteral("Normal"), QStringLiteral("Each")});
        File file;
        file.name = text("Name");
        file.format = text("Format").toLower();
        file.form.depth = depth();
        file.form.space = text("Space").toStdString();
        file.form.compression = text("Compression").toStdString();
        file.form.quality = whole("Quality");
        file.form.dithers = flag("Dither");
        file.resolution = whole("Resolution");
        file.isEach = flag("Each");
        if (text("Padding") == EndlessWord)
            file.padding = Endless;
        else if (!text("Padding").isEmpty())
            file.padding = whole("Padding");
        const QString normal = text("Normal");
        file.flipsNormals = normal == QLatin1String("-Y");
        if (!normal.isEmpty() && normal != QLatin1String("+Y") && !file.flipsNormals)
            fail(tr("Normal is \"+Y\" or \"-Y\", not \"%1\"").arg(normal));
        while (!m_xml.hasError() && m_xml.readNextStartElement()) {
            if (m_xml.name() == QLatin1String("Channel"))
                readChannel(&file);
            else
                fail(tr("\"%1\" is not known of a File").arg(m_xml.name().toString()));
        }
        if (m_preset->files.size() >= MostFiles)
            fail(tr("more than %1 files").arg(MostFiles));
        m_preset->files.append(file);
    }

    void readChannel(File *file)
    {
        checkNames({QStringLiteral("To"), QStringLiteral("From"), QStringLiteral("Component"),
                    QStringLiteral("Invert"), QStringLiteral("Value"), QStringLiteral("Default")});
        Channel channel;
        channel.isUsed = true;
        channel.from = text("From");
        channel.component = text("Component");
        channel.inverts = flag("Invert");
        const QString value = text(channel.from.isEmpty() ? "Value" : "Default");
        bool isNumber = true;
        channel.value = value.isEmpty() ? 0.0 : value.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(channel.value))
            fail(tr("\"%1\" is no number").arg(value));
        const QString to = text("To");
        if (to.isEmpty())
            fail(tr("To says R, G, B or A, or several of them"));
        for (const QChar letter : to) {
            const int index = Letters.indexOf(letter);
            if (index < 0)
                fail(tr("To says R, G, B or A, or several of them, not \"%1\"").arg(to));
            else if (file->channels[std::size_t(index)].isUsed)
                fail(tr("%1 is said twice").arg(letter));
            else
                file->channels[std::size_t(index)] = channel;
        }
        m_xml.skipCurrentElement();
    }

    QXmlStreamReader m_xml;
    OssExportPreset *m_preset;
};

QString faultOfName(const File &file)
{
    const QStringList parts = file.name.split(QLatin1Char('/'));
    if (file.name.isEmpty() || file.name.startsWith(QLatin1Char('/'))
        || parts.contains(QStringLiteral("..")) || parts.contains(QString()))
        return tr("\"%1\" is no name of a file below a folder").arg(file.name);
    int depth = 0;
    for (const QChar letter : file.name) {
        depth += letter == QLatin1Char('[') ? 1 : letter == QLatin1Char(']') ? -1 : 0;
        if (depth < 0 || depth > 1 || letter.unicode() < 0x20)
            return tr("\"%1\": brackets do not match").arg(file.name);
    }
    if (depth != 0)
        return tr("\"%1\": brackets do not match").arg(file.name);
    static const QRegularExpression token(QStringLiteral("\\$[a-z]*"));
    auto found = token.globalMatch(file.name);
    while (found.hasNext()) {
        const QString name = found.next().captured();
        if (!OssExportPreset::tokens().contains(name))
            return tr("\"%1\" is no token; there are %2")
                .arg(name, OssExportPreset::tokens().join(QStringLiteral(", ")));
        if (name == QLatin1String("$channel") && !file.isEach)
            return tr("\"%1\": $channel is for files of each channel").arg(file.name);
    }
    if (file.isEach && !file.name.contains(QLatin1String("$channel")))
        return tr("\"%1\": files of each channel need $channel in their names").arg(file.name);
    return {};
}

QString faultOfForm(const File &file)
{
    const OssEvImageFormat *format = OssEvImageFormat::ofFile("a." + file.format.toStdString());
    if (!format || !format->writer)
        return tr("\"%1\": images are written as %2")
            .arg(file.format, QString::fromStdString(OssEvImageFormat::writtenInWords({})));
    const OssEvResult possible = format->check(file.form);
    if (!possible)
        return QString::fromStdString(possible.error());
    std::string way;
    if (!file.form.space.empty()
        && !OssColorManagement::spaces()->tellConversion(file.form.space, &way)
        && !OssEvColorSpaces::builtIn()->tellConversion(file.form.space, &way))
        return tr("there is no color space \"%1\"").arg(QString::fromStdString(file.form.space));
    if (file.resolution < 0 || file.resolution > LargestResolution)
        return tr("no image has %1 texels a side").arg(file.resolution);
    const int padding = file.padding.value_or(0);
    if (padding < Endless || padding > LargestPadding)
        return tr("no padding has %1 texels").arg(padding);
    return {};
}

QString faultOfChannels(const File &file)
{
    const auto used = [&file](std::size_t index) {
        return file.channels[index].isUsed;
    };
    const bool any = used(0) || used(1) || used(2) || used(3);
    if (file.isEach)
        return any ? tr("\"%1\" is each channel, and has channels of its own").arg(file.name)
                   : QString();
    const bool isGray = used(0) && !used(1) && !used(2) && !used(3);
    if (!isGray && !(used(0) && used(1) && used(2)))
        return tr("\"%1\" needs R, or R, G and B, or all four").arg(file.name);
    for (const Channel &channel : file.channels) {
        if (!channel.component.isEmpty()
            && !OssExportPreset::components().contains(channel.component))
            return tr("there is no component \"%1\"").arg(channel.component);
    }
    return {};
}

void writeChannel(QXmlStreamWriter *xml, const QString &to, const Channel &channel)
{
    xml->writeStartElement(QStringLiteral("Channel"));
    xml->writeAttribute(QStringLiteral("To"), to);
    if (!channel.from.isEmpty())
        xml->writeAttribute(QStringLiteral("From"), channel.from);
    if (!channel.component.isEmpty())
        xml->writeAttribute(QStringLiteral("Component"), channel.component);
    if (channel.inverts)
        xml->writeAttribute(QStringLiteral("Invert"), QStringLiteral("true"));
    if (channel.from.isEmpty() || channel.value != 0.0)
        xml->writeAttribute(channel.from.isEmpty() ? QStringLiteral("Value")
                                                   : QStringLiteral("Default"),
                            QString::number(channel.value, 'g', 9));
    xml->writeEndElement();
}

/// Equal ones as one.
void writeChannels(QXmlStreamWriter *xml, const File &file)
{
    for (std::size_t first = 0; first < file.channels.size(); ++first) {
        const Channel &channel = file.channels[first];
        const auto begin = file.channels.begin();
        const auto here = begin + std::ptrdiff_t(first);
        if (!channel.isUsed || std::find(begin, here, channel) != here)
            continue;
        QString to;
        for (std::size_t i = first; i < file.channels.size(); ++i) {
            if (file.channels[i] == channel)
                to.append(Letters.at(int(i)));
        }
        writeChannel(xml, to, channel);
    }
}

void writeFile(QXmlStreamWriter *xml, const File &file)
{
    xml->writeStartElement(QStringLiteral("File"));
    const auto put = [xml](const char *name, const QString &value) {
        if (!value.isEmpty())
            xml->writeAttribute(QLatin1String(name), value);
    };
    const auto yes = [](bool is) {
        return is ? QStringLiteral("true") : QString();
    };
    const auto number = [](int value) {
        return value ? QString::number(value) : QString();
    };
    put("Name", file.name);
    put("Format", file.format);
    put("Depth", file.form.depth ? depthName(*file.form.depth) : QString());
    put("Space", QString::fromStdString(file.form.space));
    put("Compression", QString::fromStdString(file.form.compression));
    put("Quality", number(file.form.quality));
    put("Dither", yes(file.form.dithers));
    put("Resolution", number(file.resolution));
    if (file.padding)
        put("Padding", *file.padding == Endless ? EndlessWord : QString::number(*file.padding));
    put("Normal", file.flipsNormals ? QStringLiteral("-Y") : QString());
    put("Each", yes(file.isEach));
    writeChannels(xml, file);
    xml->writeEndElement();
}

/// Without what is written only where it tells files apart.
QString shortestName(const OssExportPreset::File &file)
{
    static const QRegularExpression optional(QStringLiteral("\\[[^\\]]*\\]"));
    return QString(file.name).remove(optional) + QLatin1Char('.') + file.format;
}

} // namespace

bool OssExportPreset::Channel::operator==(const Channel &other) const
{
    return isUsed == other.isUsed && from == other.from && component == other.component
           && inverts == other.inverts && value == other.value;
}

bool OssExportPreset::File::operator==(const File &other) const
{
    const auto all = [](const OssEvImageForm &f) {
        return std::tie(f.depth, f.space, f.isStraight, f.dithers, f.compression, f.quality);
    };
    return name == other.name && format == other.format && all(form) == all(other.form)
           && resolution == other.resolution && padding == other.padding
           && flipsNormals == other.flipsNormals && isEach == other.isEach
           && channels == other.channels;
}

QStringList OssExportPreset::tokens()
{
    return {QStringLiteral("$project"), QStringLiteral("$object"), QStringLiteral("$material"),
            QStringLiteral("$channel"), QStringLiteral("$udim"),   QStringLiteral("$version")};
}

QStringList OssExportPreset::components()
{
    return {QStringLiteral("Red"), QStringLiteral("Green"), QStringLiteral("Blue"),
            QStringLiteral("Alpha"), QStringLiteral("Luminance")};
}

OssResult OssExportPreset::read(const QByteArray &xml, const QString &fileName,
                                OssExportPreset *preset)
{
    OssExportPreset made;
    QString fault = xml.size() > LargestFile ? tr("it is too large") : Reader(xml, &made).run();
    if (fault.isEmpty())
        fault = made.check().error();
    if (!fault.isEmpty())
        return OssResult::failure(tr("Cannot read \"%1\": %2").arg(fileName, fault));
    *preset = made;
    return {};
}

QByteArray OssExportPreset::write() const
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("ExportPreset"));
    xml.writeAttribute(QStringLiteral("Name"), name);
    if (!description.isEmpty())
        xml.writeTextElement(QStringLiteral("Description"), description);
    for (const File &file : files)
        writeFile(&xml, file);
    xml.writeEndDocument();
    return bytes;
}

OssResult OssExportPreset::check() const
{
    if (name.trimmed().isEmpty())
        return OssResult::failure(tr("it has no name"));
    if (files.isEmpty())
        return OssResult::failure(tr("it has no files"));
    for (const File &file : files) {
        for (const QString &fault : {faultOfName(file), faultOfForm(file), faultOfChannels(file)}) {
            if (!fault.isEmpty())
                return OssResult::failure(fault);
        }
    }
    QStringList names;
    for (const File &file : files) {
        const QString shortest = shortestName(file);
        if (names.contains(shortest, Qt::CaseInsensitive))
            return OssResult::failure(
                tr("two files are called \"%1\": put something else into one of the names")
                    .arg(file.name + QLatin1Char('.') + file.format));
        names.append(shortest);
    }
    return {};
}
