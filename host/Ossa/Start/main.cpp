#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Start/Session.h"

#include <cstdio>

int main(int argc, char **argv)
{
    const CommandLine line = CommandLine::parse(argc, argv);
    if (line.command == CommandLine::Answered) {
        std::fprintf(line.exitCode == ExitCode::Success ? stdout : stderr, "%s\n",
                     qPrintable(line.message.trimmed()));
        return line.exitCode;
    }
    return Session::run(line, argc, argv);
}
