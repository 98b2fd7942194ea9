#pragma once

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

/// The lines of a text file of any size, of which a piece at a time is in memory.
class ObjLines
{
public:
    explicit ObjLines(const std::string &path);

    /// Without what ends it; what goes on after a backslash at the end belongs to it. Good until the
    /// next. False when there is none left.
    bool next(std::string_view *line);

    /// Of the line that came last, from 1 on.
    std::size_t number() const { return m_number; }

    /// Of the file, 0 to 1.
    double share() const;

private:
    bool piece(std::string_view *line);
    bool fill();

    std::ifstream m_file;
    double m_size = 1.0;
    double m_read = 0.0;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    std::size_t m_number = 0;
    std::string m_joined;
};

/// Words and numbers of a line.
class ObjWords
{
public:
    explicit ObjWords(std::string_view line)
        : m_rest(line)
    {
    }

    /// Up to the next blank; empty at the end, which a comment is too.
    std::string_view next();
    /// What is left, without blanks around it.
    std::string_view rest() const;

    /// False where the next word is no number, and there is one.
    bool number(float *value, bool *isThere);
    static bool index(std::string_view *text, long long *value);

private:
    std::string_view m_rest;
};
