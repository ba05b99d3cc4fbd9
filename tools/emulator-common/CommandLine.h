#pragma once

#include <string>

namespace emulator {

// The emulator programs' command line: options one after another, some with a value. A mistake
// prints the message and the usage and ends the program with status 2; --help prints the usage
// and ends it with status 0.
class CommandLine
{
public:
    CommandLine(int argc, char** argv, std::string program, std::string usage);

    // Steps to the next option; false after the last one.
    bool next();
    const std::string& option() const { return m_option; }
    // The current option's value, the next argument.
    std::string value();
    // The current option's value as a whole number from min to max.
    long number(long min, long max);
    // A whole number from min to max, named by what in the complaint.
    long number(const std::string& what, const std::string& text, long min, long max) const;

    [[noreturn]] void fail(const std::string& message) const;

private:
    int m_argc;
    char** m_argv;
    int m_index = 0;
    std::string m_option;
    std::string m_program;
    std::string m_usage;
};

} // namespace emulator
