#include "app/CommandLine.h"
#include "app/RunningInstance.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include <dlfcn.h>

// Nothing of the toolkit is linked here: a compositor's key binding calls `brindle paste` for each
// press, and loading the windows takes longer than the rest of it.

namespace {

constexpr int failed = 1;
constexpr int misused = 2;

int fail(const std::string &reason) {
    std::cerr << "brindle: " << reason << '\n';
    return failed;
}

bool hasDisplay() {
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (const char *value = std::getenv(name); value && *value)
            return true;
    }
    return false;
}

int runGui(const char *function, int argc, char *argv[]) {
    using Run = int (*)(int, char *[]);
    void *gui = dlopen("brindle-gui.so", RTLD_NOW);
    const auto run = gui ? reinterpret_cast<Run>(dlsym(gui, function)) : nullptr;
    return run ? run(argc, argv) : fail(dlerror());
}

/// The running one knows best; without one this process looks for itself.
int runDoctor(int argc, char *argv[]) {
    using Answer = RunningInstance::Answer;
    RunningInstance running;
    std::string report;
    bool isGood = false;
    const Answer answer = running.examine(argc > 2, report, isGood);
    if (answer == Answer::Silent)
        return fail("the running Brindle does not answer");
    if (answer != Answer::Done)
        return runGui("runBrindleDoctor", argc, argv);
    std::cout << report;
    return isGood ? EXIT_SUCCESS : failed;
}

int carryOut(const CommandLine::Verb &verb) {
    using Answer = RunningInstance::Answer;
    RunningInstance running;
    Answer answer = running.activate(verb.action);
    const bool starts = answer == Answer::NotRunning && verb.startsBrindle;
    if (starts) {
        if (!hasDisplay())
            return fail("no display");
        answer =
            running.startAndActivate(std::filesystem::read_symlink("/proc/self/exe"), verb.action);
    }
    switch (answer) {
    case Answer::Done:
        return EXIT_SUCCESS;
    case Answer::NotRunning:
        return fail(starts ? "could not be started" : "not running");
    case Answer::Silent:
        return fail("the running Brindle does not answer");
    case Answer::Failed:
        break;
    }
    return fail(running.problem());
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc < 2)
        return hasDisplay() ? runGui("runBrindleGui", argc, argv) : fail("no display");
    const std::string_view word = argv[1];
    const bool asksNetwork = argc == 3 && std::string_view(argv[2]) == "--network";
    if (word == "doctor" && (argc == 2 || asksNetwork))
        return runDoctor(argc, argv);
    const auto *verb = CommandLine::findVerb(word);
    if (argc > 2 || !(verb || word == "--help" || word == "--version")) {
        CommandLine::printUsage();
        return misused;
    }
    if (verb)
        return carryOut(*verb);
    if (word == "--help")
        CommandLine::printHelp();
    else
        std::cout << "brindle " BRINDLE_VERSION "\n";
    return EXIT_SUCCESS;
}
