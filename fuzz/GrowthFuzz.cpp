#include "clipboard/Clipboard.h"
#include "enrichment/ReferenceDetection.h"
#include "enrichment/TemplateRendering.h"
#include "fakes/FakePlatform.h"
#include "fuzz/Fuzz.h"
#include "storage/Settings.h"

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

using Work = std::function<void(const QString &)>;

/// The processor time in seconds that `work` takes with `text` on this thread.
double timeOf(const Work &work, const QString &text) {
    timespec start{};
    timespec end{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &start);
    work(text);
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &end);
    return static_cast<double>(end.tv_sec - start.tv_sec) +
           static_cast<double>(end.tv_nsec - start.tv_nsec) * 1e-9;
}

/// What came from outside: a start, a piece that is repeated, an end.
struct Text {
    QString start;
    QString piece;
    QString end;

    QString ofLength(qsizetype units) const {
        return start + piece.repeated(units / std::max<qsizetype>(1, piece.size())) + end;
    }
};

/// Requires that a text 16 times as long takes `work` about 16 times as long; growth by the square
/// would be 256 times. Short times say nothing, and one measurement may be disturbed.
void requireLinear(const Work &work, const Text &text, const char *property) {
    constexpr qsizetype units = 8192;
    constexpr double worthMeasuring = 0.05;
    constexpr double mostGrowth = 40;
    for (int attempt = 0; attempt < 3; ++attempt) {
        const double time = timeOf(work, text.ofLength(units * 16));
        if (time < worthMeasuring || time < mostGrowth * timeOf(work, text.ofLength(units)))
            return;
    }
    Fuzz::require(false, property);
}

void detect(const QString &text) {
    Enrichment::detectRef({0, text, text, {}}, u"https://h.example"_s, {});
}

void render(const QString &text) {
    const Enrichment::TemplateValues values{
        .summary = text, .isComment = true, .commentText = text, .commentAuthor = text};
    const QString marked = Enrichment::renderTemplate(
        u"{summary} <c>{commenter-name} {commenttext}</c>"_s, values, {}, {});
    Clipboard::write(marked, u"https://h.example"_s, PasteFormat::RichLink, std::nullopt,
                     [](const auto &) {});
    Enrichment::renderConfluenceTemplate(u"{title}"_s, text, {}, {}, {});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    [[maybe_unused]] static FakePlatform &platform = *new FakePlatform; // outlives every static
    Settings::shared().accountBaseURL = u"https://r.example/records/"_s;
    Fuzz::Fields fields(data, size);
    const QByteArray kind = fields.next();
    const Text text{fields.nextText(), fields.nextText(), fields.nextText()};
    if (kind == "template")
        requireLinear([](const QString &all) { Enrichment::renderTemplate(all, {}, {}, {}); }, text,
                      "a template takes time in proportion to its length");
    else if (kind == "value")
        requireLinear(render, text, "rendering takes time in proportion to the values");
    else
        requireLinear(detect, text, "detection takes time in proportion to what was copied");
    return 0;
}
