#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/filter_program.h"
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

}  // namespace

T_FILTERED RUN_FILTER(const std::string& program, const std::string& argument, const std::string& input,
                      const std::string& advice) {
  NAMELESS_FILE text;
  NAMELESS_FILE output;
  NAMELESS_FILE messages;
  text.WRITE(input);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, text.DESCRIPTOR(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.DESCRIPTOR(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, messages.DESCRIPTOR(), STDERR_FILENO);
  std::string name = program;
  std::string word = argument;
  const std::array<char*, 3> arguments{name.data(), word.data(), nullptr};
  pid_t process = 0;
  const int error = posix_spawnp(&process, name.data(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == ENOENT) throw T_TOOL_FAILURE(fmt::format("{} isn't installed", program), advice);
  if (error != 0) {
    throw T_TOOL_FAILURE(fmt::format("{} can't be run: {}", program, std::strerror(error)),
                         fmt::format("check it with `{} --version`", program));
  }

  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return {WIFEXITED(status) && WEXITSTATUS(status) == 0, output.CONTENTS(), messages.CONTENTS()};
}

}  // namespace tools
