#pragma once

// How the fuzzers cut one input into the pieces of a call. Seeds are plain text files, so the
// pieces are separated by lines a person can write and read.

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace fuzz {

inline std::string text(const std::uint8_t* data, std::size_t size)
{
    return std::string(reinterpret_cast<const char*>(data), size);
}

// What stands before and after the first "\n" + separator + "\n"; all of it and nothing when
// the separator line is missing.
inline std::pair<std::string, std::string> splitAtLine(const std::string& input, const std::string& separator)
{
    const std::string line = "\n" + separator + "\n";
    const std::size_t at = input.find(line);
    if (at == std::string::npos)
        return {input, std::string()};
    return {input.substr(0, at), input.substr(at + line.size())};
}

// Every piece between "\n" + separator + "\n" lines.
inline std::vector<std::string> splitAtLines(const std::string& input, const std::string& separator)
{
    std::vector<std::string> pieces;
    std::pair<std::string, std::string> rest{std::string(), input};
    do {
        rest = splitAtLine(rest.second, separator);
        pieces.push_back(std::move(rest.first));
    } while (!rest.second.empty());
    return pieces;
}

// The first line and what follows it.
inline std::pair<std::string, std::string> firstLine(const std::string& input)
{
    const std::size_t end = input.find('\n');
    if (end == std::string::npos)
        return {input, std::string()};
    return {input.substr(0, end), input.substr(end + 1)};
}

// An HTTP status as the transport hands it over: the leading digits of the text (at most three,
// as on the wire), 0 when there are none.
inline int statusCode(const std::string& line)
{
    int status = 0;
    for (std::size_t i = 0; i < line.size() && i < 3 && line[i] >= '0' && line[i] <= '9'; ++i)
        status = status * 10 + (line[i] - '0');
    return status;
}

} // namespace fuzz
