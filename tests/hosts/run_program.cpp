#include "tests/hosts/run_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/hosts/temporary_folder.h"

namespace tof::testing {

ProgramResult RunTofcal(const std::vector<std::string>& arguments) {
  const TemporaryFolder folder;
  const std::string out = folder / "out";
  const std::string err = folder / "err";

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), kWrite, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), kWrite, 0600);

  std::vector<std::string> texts = arguments;
  texts.insert(texts.begin(), TOF_PROGRAM);
  std::vector<char*> argv;
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);

  pid_t child = 0;
  const int error = posix_spawn(&child, TOF_PROGRAM, &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot run " TOF_PROGRAM);

  int status = 0;
  if (waitpid(child, &status, 0) != child) throw std::runtime_error("lost " TOF_PROGRAM);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, BytesOf(out), BytesOf(err)};
}

}  // namespace tof::testing
