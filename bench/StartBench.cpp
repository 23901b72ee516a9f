#include "bench/Benches.h"
#include "bench/Desk.h"
#include "bench/Hotkey.h"

namespace {

constexpr int rounds = 30;

class Starts {
public:
    /// The milliseconds until `program` has its icon docked.
    double untilDocked(const QString &program) {
        return start(program, [this] { return m_desk.waitForIcon(); });
    }

    /// The same, and until it has the hotkey if that comes later.
    double untilReady(const QString &program) {
        return start(program, [this] {
            const double docked = m_desk.waitForIcon();
            if (Hotkey::isTaken(m_x))
                return docked;
            while (!Hotkey::isTaken(m_x))
                require(now() < docked + 15000, "no hotkey is registered");
            return now();
        });
    }

private:
    template <typename Wait>
    double start(const QString &program, Wait untilThere) {
        require(waitFor([this] { return !Hotkey::isTaken(m_x); }), "the hotkey stays taken");
        StageProcess process(m_desk.desktop.environment());
        const double begun = now();
        require(process.launch(program, {}), process.errorString());
        return untilThere() - begun;
    }

    Desk m_desk;
    XConnection m_x{m_desk.desktop.display()};
};

} // namespace

QList<Row> benchStart() {
    Starts starts;
    QList<double> brindleTimes, floorTimes;
    for (int round = -1; round < rounds; ++round) {
        const double brindle = starts.untilReady(BRINDLE_PROGRAM);
        const double floor = starts.untilDocked(BARE_TRAY_PROGRAM);
        if (round < 0) // read from the disk, perhaps
            continue;
        brindleTimes.append(brindle);
        floorTimes.append(floor);
    }
    return {ratioRow("Start to hotkey registered and icon docked", median(brindleTimes),
                     median(floorTimes), "ms", "1.25 at most")};
}
