#pragma once

#include <string_view>

/// The words after `brindle`. Plain C++, so that they are answered before the toolkit is loaded.
namespace CommandLine {

/// What a word asks the running instance to do.
struct Verb {
    std::string_view word;
    const char *action;    ///< its name on the bus
    bool startsBrindle;    ///< where none is running
    std::string_view help; ///< one line
};

/// The verb with that name, or null.
const Verb *findVerb(std::string_view word);

/// Writes the answer to --help to the standard output.
void printHelp();

/// Writes the one line that tells how to call Brindle to the standard error.
void printUsage();

} // namespace CommandLine
