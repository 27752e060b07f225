#include "tools/progress.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdio>

#include "tools/terminal.h"

namespace tools {

T_PROGRESS::T_PROGRESS(std::string doing) : doing_(std::move(doing)) {
  if (STDERR_IS_TERMINAL()) clock_ = std::thread([this] { show_until_done(); });
}

T_PROGRESS::~T_PROGRESS() {
  if (!clock_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    done_ = true;
  }
  end_.notify_one();
  clock_.join();
}

void T_PROGRESS::show_until_done() {
  std::unique_lock lock(mutex_);
  for (int seconds = 1;; ++seconds) {
    const bool ended = end_.wait_for(lock, std::chrono::seconds(1), [this] { return done_; });
    if (ended) {
      const std::string blanks(doing_.size() + 24, ' ');
      if (seconds > 1) fmt::print(stderr, "\r{}\r", blanks);
    } else {
      fmt::print(stderr, "\rmovload: {}, {} s", doing_, seconds);
    }
    std::fflush(stderr);
    if (ended) return;
  }
}

}  // namespace tools
