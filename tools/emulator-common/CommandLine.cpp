#include "CommandLine.h"

#include <cstdlib>
#include <iostream>
#include <utility>

namespace emulator {

CommandLine::CommandLine(int argc, char** argv, std::string program, std::string usage)
    : m_argc(argc), m_argv(argv), m_program(std::move(program)), m_usage(std::move(usage))
{
}

bool CommandLine::next()
{
    if (++m_index >= m_argc)
        return false;
    m_option = m_argv[m_index];
    if (m_option == "--help" || m_option == "-h") {
        std::cout << m_usage;
        std::exit(0);
    }
    return true;
}

std::string CommandLine::value()
{
    if (m_index + 1 >= m_argc)
        fail(m_option + " needs a value");
    return m_argv[++m_index];
}

long CommandLine::number(long min, long max)
{
    const std::string text = value();
    return number(m_option, text, min, max);
}

long CommandLine::number(const std::string& what, const std::string& text, long min, long max) const
{
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || value < min || value > max)
        fail(what + " takes a whole number from " + std::to_string(min) + " to " + std::to_string(max) + ", not \""
             + text + "\"");
    return value;
}

void CommandLine::fail(const std::string& message) const
{
    std::cerr << m_program << ": " << message << "\n\n" << m_usage;
    std::exit(2);
}

} // namespace emulator
