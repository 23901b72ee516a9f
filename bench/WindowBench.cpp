#include "bench/Benches.h"
#include "bench/Desk.h"
#include "stage/XConnection.h"

#include <QCoreApplication>
#include <QDBusPendingCall>
#include <QThread>

namespace {

constexpr int rounds = 15;

/// Opens the preferences in programs that have just started.
class Openings {
public:
    /// The milliseconds from the call until the window can be seen.
    double untilSeen(const QString &program, const QStringList &arguments = {}) {
        require(waitFor([this] { return !isSeen(); }), "a window stays");
        BrindleProcess process(m_desk.desktop, {}, program, arguments);
        // Without blocking: the program may in turn be calling the status area, which is here.
        const auto isUp = [&] {
            const QDBusPendingCall none = process.call("none");
            return waitFor([&] { return none.isFinished(); }) && !none.isError();
        };
        require(waitFor(isUp), "no answer from " + program);
        const double begun = now();
        const QDBusPendingCall opening = process.call("preferences");
        while (!isSeen()) {
            require(now() < begun + 15000, "no window of " + program);
            QCoreApplication::processEvents();
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
    XConnection m_x{m_desk.desktop.display()};
};

} // namespace

QList<Row> benchWindow() {
    Openings openings;
    QList<double> brindleTimes, floorTimes, textTimes;
    for (int round = -1; round < rounds; ++round) {
        const double brindle = openings.untilSeen(BRINDLE_PROGRAM);
        const double floor = openings.untilSeen(BARE_WINDOW_PROGRAM);
        const double text = openings.untilSeen(BARE_WINDOW_PROGRAM, {"Text"});
        if (round < 0) // read from the disk, perhaps
            continue;
        brindleTimes.append(brindle);
        floorTimes.append(floor);
        textTimes.append(text);
    }
    const double brindle = median(brindleTimes);
    return {ratioRow("Preferences opened for the first time, against an empty window", brindle,
                     median(floorTimes), "ms", "3 at most"),
            ratioRow("the same against a window with a word", brindle, median(textTimes), "ms",
                     "3 at most")};
}
