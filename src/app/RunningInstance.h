#pragma once

#include <memory>
#include <string>

struct _GVariant;

/// The Brindle that runs in this session, as another process reaches it over the bus, without the
/// toolkit. One thread.
class RunningInstance {
public:
    enum class Answer {
        Done,
        NotRunning,
        Silent, ///< it has not answered in time
        Failed, ///< as problem() says
    };

    /// Connects to the session bus; problem() says if that fails.
    RunningInstance();
    ~RunningInstance();
    RunningInstance(const RunningInstance &) = delete;
    RunningInstance &operator=(const RunningInstance &) = delete;

    /// Why the bus or the last call has failed; empty if not.
    const std::string &problem() const { return m_problem; }

    /// Has it do a named action, which is accepted within two seconds.
    Answer activate(const char *action);

    /// Starts `program` in the background, as the leader of a session of its own, and has it do the
    /// action as soon as it is up.
    Answer startAndActivate(const std::string &program, const char *action);

    /// Has it look at its desktop: its report and whether links can be pasted there.
    Answer examine(bool network, std::string &report, bool &isGood);

private:
    _GVariant *ask(const char *interface, const char *method, _GVariant *arguments,
                   int milliseconds, Answer &answer);
    Answer call(const char *action, int milliseconds);
    void awaitStart(int processId);

    struct Bus;
    std::unique_ptr<Bus> m_bus;
    std::string m_problem;
};
