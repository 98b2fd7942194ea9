#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What a PLY file says that it holds.
struct PlyHeader
{
    enum class Form { Text, LittleEndian, BigEndian };
    enum class Type { Int8, UInt8, Int16, UInt16, Int32, UInt32, Float, Double };

    struct Property
    {
        std::string name;
        Type type = Type::Float;
        bool isList = false;
        Type countType = Type::UInt8; ///< of lists
    };

    struct Element
    {
        std::string name;
        std::size_t count = 0;
        std::vector<Property> properties;
    };

    Form form = Form::Text;
    std::vector<Element> elements;
    std::size_t size = 0;  ///< bytes up to where the data begins
    std::size_t lines = 0; ///< the same in lines

    /// False for a file that has no such header, or one that is not as it should be.
    bool read(const std::string &path);

    static std::size_t sizeOf(Type type);
};
