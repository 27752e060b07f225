#include "tools/filter_program.h"

#include <fmt/format.h>

#include <array>
#include <system_error>

#include "tools/tool_failure.h"

// Behind our own headers: its macros take some of their names.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tools {
namespace {

std::string last_error() {
  return std::system_category().message(static_cast<int>(::GetLastError()));
}

/// A file that a started program inherits, gone when it is closed. A process that reads and writes nothing but
/// files never waits for us.
class TEMPORARY_FILE {
 public:
  TEMPORARY_FILE() {
    std::array<char, MAX_PATH + 1> folder{};
    std::array<char, MAX_PATH + 1> name{};
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    if (::GetTempPathA(static_cast<DWORD>(folder.size()), folder.data()) != 0 &&
        ::GetTempFileNameA(folder.data(), "mov", 0, name.data()) != 0) {
      file_ = ::CreateFileA(name.data(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE,
                            nullptr);
    }
    if (file_ == INVALID_HANDLE_VALUE) fail("made");
  }
  ~TEMPORARY_FILE() {
    if (file_ != INVALID_HANDLE_VALUE) ::CloseHandle(file_);
  }
  TEMPORARY_FILE(const TEMPORARY_FILE&) = delete;
  TEMPORARY_FILE& operator=(const TEMPORARY_FILE&) = delete;

  [[nodiscard]] HANDLE FILE_HANDLE() const { return file_; }

  void WRITE(const std::string& text) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(text.size());
    if (::WriteFile(file_, text.data(), size, &written, nullptr) == 0 || written != size) fail("written");
    rewind();
  }
  [[nodiscard]] std::string CONTENTS() {
    rewind();
    std::string text;
    std::array<char, 4096> piece{};
    DWORD count = 0;
    while (::ReadFile(file_, piece.data(), static_cast<DWORD>(piece.size()), &count, nullptr) != 0 &&
           count > 0)
      text.append(piece.data(), count);
    return text;
  }

 private:
  [[noreturn]] static void fail(const char* what) {
    throw T_TOOL_FAILURE(fmt::format("a temporary file can't be {}: {}", what, last_error()),
                         "make room in the folder for temporary files");
  }
  void rewind() { ::SetFilePointer(file_, 0, nullptr, FILE_BEGIN); }

  HANDLE file_ = INVALID_HANDLE_VALUE;
};

}  // namespace

T_FILTERED RUN_FILTER(const std::string& program, const std::string& argument, const std::string& input,
                      const std::string& advice) {
  TEMPORARY_FILE text;
  TEMPORARY_FILE output;
  TEMPORARY_FILE messages;
  text.WRITE(input);

  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = text.FILE_HANDLE();
  start.hStdOutput = output.FILE_HANDLE();
  start.hStdError = messages.FILE_HANDLE();
  PROCESS_INFORMATION process{};
  std::string command = program + " " + argument;
  if (::CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                       &start, &process) == 0) {
    const DWORD error = ::GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)
      throw T_TOOL_FAILURE(fmt::format("{} isn't installed, or not on the search path", program), advice);
    throw T_TOOL_FAILURE(fmt::format("{} can't be run: {}", program, last_error()),
                         fmt::format("check it with `{} --version`", program));
  }
  ::WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 1;
  ::GetExitCodeProcess(process.hProcess, &code);
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
  return {code == 0, output.CONTENTS(), messages.CONTENTS()};
}

}  // namespace tools
