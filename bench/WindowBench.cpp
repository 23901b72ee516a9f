#include "bench/Benches.h"
#include "bench/Desk.h"
#include "stage/BrindleProcess.h"
#include "stage/XConnection.h"

#include <QThread>

namespace {

constexpr int rounds = 15;

/// Opens the preferences in programs that have just started.
class Openings {
public:
    /// The milliseconds from the call until the window can be seen.
    double untilSeen(const QString &program) {
        require(waitFor([this] { return !isSeen(); }), "a window stays");
        BrindleProcess process(m_desk.desktop(), {}, program);
        require(process.isUp(), "no answer from " + program);
        const double begun = now();
        require(process.activate("preferences"), "no answer from " + program);
        while (!isSeen()) {
            require(now() < begun + 15000, "no window of " + program);
            QThread::usleep(200);
        }
        return now() - begun;
    }

private:
    /// Whether the screen shows the accent colour, a strong blue, where the selected tab is.
    bool isSeen() const {
        constexpr int16_t x = 470;
        constexpr int16_t y = 200;
        const XOwned<xcb_get_image_reply_t> reply(xcb_get_image_reply(
            m_x.get(),
            xcb_get_image(m_x.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_x.root(), x, y, 1, 1, ~0U),
            nullptr));
        require(reply != nullptr, "no picture of the screen");
        const uint8_t *pixel = xcb_get_image_data(reply.get()); // blue, green, red
        return pixel[0] > pixel[2] + 100;
    }

    Desk m_desk;
    XConnection m_x{m_desk.desktop().display()};
};

} // namespace

QList<Row> benchWindow() {
    Openings openings;
    QList<double> brindleTimes, floorTimes;
    for (int round = -1; round < rounds; ++round) {
        const double brindle = openings.untilSeen(BRINDLE_PROGRAM);
        const double floor = openings.untilSeen(BARE_WINDOW_PROGRAM);
        if (round < 0) // read from the disk, perhaps
            continue;
        brindleTimes.append(brindle);
        floorTimes.append(floor);
    }
    return {ratioRow("Preferences opened for the first time", median(brindleTimes),
                     median(floorTimes), "ms", "3 at most")};
}
