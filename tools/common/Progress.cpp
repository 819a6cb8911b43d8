#include "tools/common/Progress.hpp"

#include "text/VisibleText.hpp"

#include <algorithm>
#include <ostream>
#include <utility>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr std::chrono::milliseconds kFirstDraw{500};
constexpr std::chrono::milliseconds kBetweenDraws{100};
constexpr std::uint64_t kBarWidth = 30;
constexpr std::uint64_t kPercent = 100;

}  // namespace

Progress::Progress(const Console& console, const std::string& label, std::uint64_t total)
    : console_(console),
      label_(Texts::toVisible(label)),
      total_(std::max<std::uint64_t>(total, 1)),
      nextDraw_(std::chrono::steady_clock::now() + kFirstDraw) {}

void Progress::draw(std::uint64_t done) {
    const auto now = std::chrono::steady_clock::now();
    if (now < nextDraw_) return;
    nextDraw_ = now + kBetweenDraws;
    const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
    const auto filled = static_cast<std::size_t>(share * static_cast<double>(kBarWidth));
    console_.errors << fmt::format("\r{} [{:<{}}] {:3.0f} %\x1b[K", label_,
                                   std::string(filled, '#'), kBarWidth,
                                   share * static_cast<double>(kPercent))
                    << std::flush;
    isDrawn_ = true;
}

void Progress::clear() {
    if (isDrawn_) console_.errors << "\r\x1b[K" << std::flush;
    isDrawn_ = false;
}

}  // namespace SensorFileTool
