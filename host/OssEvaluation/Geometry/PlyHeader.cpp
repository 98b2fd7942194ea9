#include "OssEvaluation/Geometry/PlyHeader.h"

#include "OssEvaluation/Geometry/ObjLines.h"

#include <fstream>
#include <optional>
#include <string_view>

namespace {

constexpr std::size_t LongestHeader = std::size_t(1) << 16;

std::optional<PlyHeader::Type> typeOf(std::string_view word)
{
    using Type = PlyHeader::Type;

    struct Name
    {
        std::string_view word;
        Type type;
    };

    static constexpr Name Names[] = {
        {"char", Type::Int8},      {"int8", Type::Int8},     {"uchar", Type::UInt8},
        {"uint8", Type::UInt8},    {"short", Type::Int16},   {"int16", Type::Int16},
        {"ushort", Type::UInt16},  {"uint16", Type::UInt16}, {"int", Type::Int32},
        {"int32", Type::Int32},    {"uint", Type::UInt32},   {"uint32", Type::UInt32},
        {"float", Type::Float},    {"float32", Type::Float}, {"double", Type::Double},
        {"float64", Type::Double},
    };
    for (const Name &name : Names) {
        if (name.word == word)
            return name.type;
    }
    return {};
}

bool takeProperty(ObjWords *words, PlyHeader *header)
{
    if (header->elements.empty())
        return false;
    PlyHeader::Property property;
    std::string_view word = words->next();
    if (word == "list") {
        const auto count = typeOf(words->next());
        if (!count)
            return false;
        property.isList = true;
        property.countType = *count;
        word = words->next();
    }
    const auto type = typeOf(word);
    property.name = words->next();
    if (!type || property.name.empty())
        return false;
    property.type = *type;
    header->elements.back().properties.push_back(property);
    return true;
}

bool takeElement(ObjWords *words, PlyHeader *header)
{
    PlyHeader::Element element;
    element.name = words->next();
    std::string_view number = words->next();
    long long count = 0;
    if (element.name.empty() || !ObjWords::index(&number, &count) || count < 0 || !number.empty())
        return false;
    element.count = std::size_t(count);
    header->elements.push_back(element);
    return true;
}

bool takeForm(ObjWords *words, PlyHeader *header)
{
    const std::string_view form = words->next();
    if (form == "ascii")
        header->form = PlyHeader::Form::Text;
    else if (form == "binary_little_endian")
        header->form = PlyHeader::Form::LittleEndian;
    else if (form == "binary_big_endian")
        header->form = PlyHeader::Form::BigEndian;
    else
        return false;
    return words->next() == "1.0";
}

} // namespace

std::size_t PlyHeader::sizeOf(Type type)
{
    switch (type) {
    case Type::Int8:
    case Type::UInt8:
        return 1;
    case Type::Int16:
    case Type::UInt16:
        return 2;
    case Type::Double:
        return 8;
    default:
        return 4;
    }
}

bool PlyHeader::read(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::string text(LongestHeader, '\0');
    file.read(text.data(), std::streamsize(text.size()));
    text.resize(std::size_t(file.gcount()));
    std::string_view rest = text;
    bool hasForm = false;
    for (;;) {
        const std::size_t end = rest.find('\n');
        if (end == std::string_view::npos)
            return false;
        ObjWords words(rest.substr(0, end));
        rest.remove_prefix(end + 1);
        ++lines;
        const std::string_view key = words.next();
        if (key == "end_header")
            break;
        bool isGood = false;
        if (lines == 1)
            isGood = key == "ply" && words.next().empty();
        else if (key == "comment" || key == "obj_info" || key.empty())
            isGood = true;
        else if (key == "format")
            isGood = hasForm = takeForm(&words, this);
        else if (key == "element")
            isGood = takeElement(&words, this);
        else if (key == "property")
            isGood = takeProperty(&words, this);
        if (!isGood)
            return false;
    }
    size = text.size() - rest.size();
    return hasForm;
}
