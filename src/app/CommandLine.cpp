#include "app/CommandLine.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace {

constexpr CommandLine::Verb verbs[] = {
    {"paste", "enrich", true, "turn what is copied into a titled link and paste it"},
    {"copy", "enrich-only", true, "the same without pasting"},
    {"preferences", "preferences", true, "open the preferences"},
    {"log", "logs", true, "open the activity log"},
    {"quit", "quit", false, "end the running Brindle"},
};

void printLine(std::string_view word, std::string_view help) {
    constexpr int column = 14;
    std::cout << "  " << std::left << std::setw(column) << word << help << '\n';
}

} // namespace

const CommandLine::Verb *CommandLine::findVerb(std::string_view word) {
    const auto *found = std::find_if(std::begin(verbs), std::end(verbs),
                                     [&](const Verb &verb) { return verb.word == word; });
    return found == std::end(verbs) ? nullptr : found;
}

void CommandLine::printHelp() {
    std::cout
        << "Usage: brindle [COMMAND]\n\n"
           "Turns the copied address of a Jira issue or a Confluence page into a titled link.\n"
           "Without a command it starts, or opens the preferences of the running Brindle.\n\n";
    for (const Verb &verb : verbs)
        printLine(verb.word, verb.help);
    printLine("doctor", "say what works on this desktop, and what to do where something doesn't");
    printLine("  --network", "and whether the two hosts that titles come from can be reached");
    printLine("--help", "show this text");
    printLine("--version", "show the version");
}

void CommandLine::printUsage() {
    std::cerr << "Usage: brindle [";
    for (const Verb &verb : verbs)
        std::cerr << verb.word << '|';
    std::cerr << "doctor [--network]|--help|--version]\n";
}
