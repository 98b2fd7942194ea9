#include "OssNodeGraph/Drawing/OssNgStyle.h"

namespace {

struct CategoryColor
{
    const char *category;
    QRgb color;
};

constexpr QRgb Neutral = 0xff6b7280;

constexpr CategoryColor Categories[] = {
    {"Paint", 0xff3f8f9b},
    {"Image", 0xff3f8f9b},
    {"TeleportBroadcast", 0xff4d8f5b},
    {"TeleportReceiver", 0xff4d8f5b},
    {"Layer", 0xffb08a3c},
    {"Merge", 0xffb08a3c},
    {"Procedural", 0xff4f8a8b},
    {"Noise", 0xff4f8a8b},
    {"Pattern", 0xff4f8a8b},
    {"Filter", 0xff6a6fb5},
    {"Color", 0xff6a6fb5},
    {"Adjust", 0xff6a6fb5},
    {"Space", 0xff6f78c0},
    {"Height", 0xff5f8f6a},
    {"Transform", 0xff6f78c0},
    {"Math", 0xffc8704a},
    {"Channel", 0xffc8704a},
    {"Logic", 0xffc8704a},
    {"Environment", 0xff5f8f6a},
    {"Geometry", 0xff5f8f6a},
    {"Geo-Channel", 0xff5f8f6a},
    {"Bake", 0xffb08a3c},
    {"Viewer", 0xff5b7d9a},
    {"_System", 0xff5b7d9a},
    {"Group", 0xff6b7280},
    {"Misc", 0xff6b7280},
    {"Custom", 0xff8a6fae},
    {"Material", 0xffa0588f},
    {"Materials", 0xffa0588f},
    {"Shaders", 0xffa0588f},
    {"Shader", 0xffa0588f},
    {"MultiChannelMaterial", 0xffa0588f},
    {"MultiChannelMerge", 0xff8c5a9f},
    {"MultiChannelBakePoint", 0xff9a7a4a},
    {"MultiChannelBottomTransparency", 0xff7b6a93},
    {"MultiChannelInvalid", 0xffa04a4a},
};

QFont font(int pixelSize, QFont::Weight weight)
{
    QFont result;
    result.setFamilies({QStringLiteral("Inter"), QStringLiteral("DejaVu Sans")});
    result.setPixelSize(pixelSize);
    result.setWeight(weight);
    // Advance widths must not depend on the zoom, or labels would creep while zooming.
    result.setHintingPreference(QFont::PreferNoHinting);
    return result;
}

} // namespace

OssNgStyle *OssNgStyle::instance()
{
    // Never destroyed: fonts must not be taken apart after QApplication.
    static auto *style = new OssNgStyle;
    return style;
}

OssNgStyle::OssNgStyle()
    : m_titleFont(font(12, QFont::DemiBold))
    , m_labelFont(font(11, QFont::Normal))
    , m_noteFont(font(12, QFont::Normal))
    , m_backdropFont(font(13, QFont::DemiBold))
{
    setObjectName(QStringLiteral("OssNgStyle"));
    const auto set = [this](Role role, QRgb rgba) {
        m_colors[std::size_t(role)] = QColor::fromRgba(rgba);
    };
    set(Role::Canvas, 0xff1b1d20);
    set(Role::GridDot, 0xff2b2e34);
    set(Role::Body, 0xff2b2e34);
    set(Role::BodyHovered, 0xff31353c);
    set(Role::Outline, 0xff3b3f47);
    set(Role::OutlineHovered, 0xff7d8590);
    set(Role::Title, 0xffffffff);
    set(Role::Label, 0xffb6bcc6);
    set(Role::PortOutline, 0xff1b1d20);
    set(Role::Accent, 0xff5aa9ff);
    set(Role::Inviting, 0xffffd23f);
    set(Role::Error, 0xffe5484d);
    set(Role::ErrorText, 0xffe5868a);
    set(Role::Stale, 0xffe0b34a);
    set(Role::Baked, 0xff3fae5a);
    set(Role::Highlight, 0xffe8c670);
    set(Role::Strike, 0xffe5484d);
    set(Role::Note, 0xff5b5230);
    set(Role::NoteOutline, 0xff85773f);
    set(Role::NoteText, 0xfff0e6bf);
    set(Role::MapCanvas, 0xff15161a);
    set(Role::MapOutline, 0xff2c2f35);
    set(Role::MapNode, 0xff7d8590);
    m_portColors = {QColor::fromRgba(0xffe0b34a), QColor::fromRgba(0xff9aa3af),
                    QColor::fromRgba(0xff7aa2f7), QColor::fromRgba(0xffd079b8),
                    QColor::fromRgba(0xff73c2a0)};
    for (const CategoryColor &entry : Categories)
        m_categoryColors.insert(QString::fromLatin1(entry.category), QColor::fromRgba(entry.color));
}

OssNgStyle::~OssNgStyle() = default;

void OssNgStyle::setColor(Role role, const QColor &color)
{
    if (m_colors[std::size_t(role)] == color)
        return;
    m_colors[std::size_t(role)] = color;
    Q_EMIT colorsUpdated();
}

QColor OssNgStyle::categoryColor(const QString &category) const
{
    return m_categoryColors.value(category, QColor::fromRgba(Neutral));
}
