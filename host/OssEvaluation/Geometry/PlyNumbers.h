#pragma once

#include "OssEvaluation/Geometry/FileBytes.h"
#include "OssEvaluation/Geometry/ObjLines.h"
#include "OssEvaluation/Geometry/PlyHeader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

/// Numbers of the file, one after the other.
class PlyNumbers
{
public:
    virtual ~PlyNumbers() = default;
    /// False where there is none. Whole numbers of 32 bits are kept as they are.
    virtual bool next(PlyHeader::Type type, double *value) = 0;

    /// A line, or nothing, ends here: false where more comes on it.
    virtual bool endElement() { return true; }
};

class PlyBinaryNumbers : public PlyNumbers
{
public:
    PlyBinaryNumbers(const std::string &path, const PlyHeader &header)
        : m_bytes(path)
        , m_isSwapped(header.form == PlyHeader::Form::BigEndian)
    {
        m_bytes.next(header.size);
    }

    bool next(PlyHeader::Type type, double *value) override
    {
        const std::size_t size = PlyHeader::sizeOf(type);
        const char *raw = m_bytes.next(size);
        if (raw == nullptr)
            return false;
        std::array<char, 8> own{};
        std::memcpy(own.data(), raw, size);
        if (m_isSwapped)
            std::reverse(own.begin(), own.begin() + std::ptrdiff_t(size));
        *value = valueOf(type, own.data());
        return true;
    }

private:
    template <class Number>
    static double as(const char *raw)
    {
        Number number{};
        std::memcpy(&number, raw, sizeof(number));
        return double(number);
    }

    static double valueOf(PlyHeader::Type type, const char *raw)
    {
        switch (type) {
        case PlyHeader::Type::Int8:
            return as<std::int8_t>(raw);
        case PlyHeader::Type::UInt8:
            return as<std::uint8_t>(raw);
        case PlyHeader::Type::Int16:
            return as<std::int16_t>(raw);
        case PlyHeader::Type::UInt16:
            return as<std::uint16_t>(raw);
        case PlyHeader::Type::Int32:
            return as<std::int32_t>(raw);
        case PlyHeader::Type::UInt32:
            return as<std::uint32_t>(raw);
        case PlyHeader::Type::Float:
            return as<float>(raw);
        case PlyHeader::Type::Double:
            return as<double>(raw);
        }
        return 0.0;
    }

    FileBytes m_bytes;
    bool m_isSwapped;
};

/// A line for each vertex and face.
class PlyTextNumbers : public PlyNumbers
{
public:
    PlyTextNumbers(const std::string &path, const PlyHeader &header)
        : m_lines(path)
    {
        std::string_view line;
        for (std::size_t i = 0; i < header.lines; ++i)
            m_lines.next(&line);
    }

    bool next(PlyHeader::Type type, double *value) override
    {
        std::string_view line;
        while (m_isAtEnd) {
            if (!m_lines.next(&line))
                return false;
            m_words = ObjWords(line);
            m_isAtEnd = m_words.rest().empty();
        }
        if (type != PlyHeader::Type::Float && type != PlyHeader::Type::Double) {
            std::string_view word = m_words.next();
            long long number = 0;
            if (!ObjWords::index(&word, &number) || !word.empty())
                return false;
            *value = double(number);
            return true;
        }
        float number = 0.0F;
        bool isThere = true;
        if (!m_words.number(&number, &isThere) || !isThere)
            return false;
        *value = double(number);
        return true;
    }

    bool endElement() override
    {
        m_isAtEnd = true;
        return m_words.rest().empty();
    }

private:
    ObjLines m_lines;
    ObjWords m_words{{}};
    bool m_isAtEnd = true;
};
