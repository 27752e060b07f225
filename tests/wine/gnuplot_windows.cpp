// Stands for gnuplot.exe under wine and runs the gnuplot of Linux. Wine starts programs of Linux with our
// standard files but gives nothing to wait for: the shell leaves gnuplot's exit code in the file GNUPLOT_DONE,
// which is Z:GNUPLOT_DONE here.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdlib>
#include <fstream>
#include <string>

int main() {
  const char* done = std::getenv("GNUPLOT_DONE");
  if (done == nullptr) return 1;
  std::string command =
      "sh -c \"gnuplot --default-settings; echo $? >$GNUPLOT_DONE.new; mv $GNUPLOT_DONE.new $GNUPLOT_DONE\"";
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = ::GetStdHandle(STD_INPUT_HANDLE);
  start.hStdOutput = ::GetStdHandle(STD_OUTPUT_HANDLE);
  start.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION process{};
  if (::CreateProcessA("Z:\\bin\\sh", command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                       &process) == 0) {
    return 1;
  }
  for (int tenths = 0; tenths < 600; ++tenths) {
    ::Sleep(100);
    std::ifstream file(std::string("Z:") + done);
    if (int code = 1; file >> code) return code;
  }
  return 1;
}
