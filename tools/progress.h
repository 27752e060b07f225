// A line on the terminal while something takes long. Nothing shows in the first second, and nothing where the
// messages go to a file.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace tools {

/// Shows "movload: <doing>, <n> s" for as long as it lives, and clears the line at its end.
class T_PROGRESS {
 public:
  explicit T_PROGRESS(std::string doing);
  ~T_PROGRESS();
  T_PROGRESS(const T_PROGRESS&) = delete;
  T_PROGRESS& operator=(const T_PROGRESS&) = delete;

 private:
  void show_until_done();

  std::string doing_;
  std::mutex mutex_;
  std::condition_variable end_;
  bool done_ = false;
  std::thread clock_;
};

}  // namespace tools
