#include "tools/gnuplot.h"

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/tool_failure.h"

namespace tools {
namespace {

/// A file without a name, gone when it is closed. A process that reads and writes nothing but files never
/// waits for us.
class NAMELESS_FILE {
 public:
  NAMELESS_FILE() : file_(std::tmpfile()) {
    if (!file_) {
      throw T_TOOL_FAILURE(fmt::format("a temporary file can't be made: {}", std::strerror(errno)),
                           "make room in the folder for temporary files");
    }
  }
  [[nodiscard]] int DESCRIPTOR() const { return fileno(file_.get()); }

  void WRITE(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size() ||
        std::fflush(file_.get()) != 0) {
      throw T_TOOL_FAILURE(fmt::format("a temporary file can't be written: {}", std::strerror(errno)),
                           "make room in the folder for temporary files");
    }
    std::rewind(file_.get());
  }
  [[nodiscard]] std::string CONTENTS() {
    std::rewind(file_.get());
    std::string text;
    std::array<char, 4096> piece{};
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file_.get()))
      text.append(piece.data(), count);
    return text;
  }

 private:
  struct CLOSE {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, CLOSE> file_;
};

/// The first of gnuplot's messages that tells something; its own echo of the line stands around it.
std::string first_message(const std::string& messages) {
  std::size_t start = 0;
  std::string last;
  while (start < messages.size()) {
    const std::size_t end = std::min(messages.find('\n', start), messages.size());
    const std::string line = messages.substr(start, end - start);
    const std::size_t text = line.find_first_not_of(" \t^");
    if (text != std::string::npos) last = line.substr(text);
    if (last.starts_with("line ")) return last;
    start = end + 1;
  }
  return last.empty() ? "no reason given" : last;
}

}  // namespace

std::string RUN_GNUPLOT(const std::string& script) {
  NAMELESS_FILE input;
  NAMELESS_FILE output;
  NAMELESS_FILE messages;
  input.WRITE(script);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.DESCRIPTOR(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.DESCRIPTOR(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, messages.DESCRIPTOR(), STDERR_FILENO);
  // Without the user's own settings, which would change the picture.
  std::array<char, 8> name{"gnuplot"};
  std::array<char, 19> plain{"--default-settings"};
  const std::array<char*, 3> arguments{name.data(), plain.data(), nullptr};
  pid_t process = 0;
  const int error = posix_spawnp(&process, name.data(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == ENOENT) {
    throw T_TOOL_FAILURE("gnuplot, which draws the pictures, isn't installed",
                         "install it, on Debian with `apt-get install gnuplot-nox`");
  }
  if (error != 0) {
    throw T_TOOL_FAILURE(fmt::format("gnuplot can't be run: {}", std::strerror(error)),
                         "check the installed gnuplot with `gnuplot --version`");
  }

  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  std::string picture = output.CONTENTS();
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || picture.empty()) {
    throw T_TOOL_FAILURE(
        fmt::format("gnuplot can't draw the picture: {}", first_message(messages.CONTENTS())),
        "movload needs gnuplot 5 with the terminals svg and pngcairo, on Debian from gnuplot-nox; keep the "
        "script "
        "with --script to see what it stumbles over");
  }
  return picture;
}

}  // namespace tools
