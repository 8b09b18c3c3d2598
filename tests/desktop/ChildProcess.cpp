#include "desktop/ChildProcess.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace orvel {
namespace {

constexpr std::size_t outputLimit = std::size_t{1} << 20;
constexpr int cannotStart = 127;
constexpr int killedBase = 128;

struct Pipe {
  Descriptor reader;
  Descriptor writer;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

/// NAME=value for everything that the child shall see.
std::vector<std::string> environmentOf(const ChildProcess::Environment& changes) {
  std::vector<std::string> lines;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view line(*entry);
    if (!changes.contains(std::string(line.substr(0, line.find('='))))) lines.emplace_back(line);
  }
  for (const auto& [name, value] : changes) {
    if (value) lines.push_back(name + "=" + *value);
  }
  return lines;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// What happens in the child between fork and exec: system calls only, for other threads may have held locks.
[[noreturn]] void become(char* const* command, char* const* environment, const std::vector<int>& kept, int input,
                         int output, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(cannotStart);
  ::signal(SIGPIPE, SIG_DFL);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  for (const int number : kept) fcntl(number, F_SETFD, 0);
  execvpe(command[0], command, environment);
  _exit(cannotStart);
}

}  // namespace

ChildProcess::ChildProcess(const Program& program) {
  auto command = program.command;
  auto environment = environmentOf(program.environment);
  const auto commandPointers = pointersTo(command);
  const auto environmentPointers = pointersTo(environment);
  Pipe input = makePipe();
  Pipe output = makePipe();
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no process");
  if (pid_ == 0) {
    become(commandPointers.data(), environmentPointers.data(), program.keptDescriptors, input.reader.get(),
           output.writer.get(), parent);
  }
  ended_ = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)));
  input_ = std::move(input.writer);
  outputPipe_ = std::move(output.reader);
  fcntl(outputPipe_.get(), F_SETFL, O_NONBLOCK);
}

ChildProcess::~ChildProcess() {
  if (exit_) return;
  signal(SIGKILL);
  reap(0);
}

const std::string& ChildProcess::output() {
  pump(Milliseconds(0));
  return output_;
}

bool ChildProcess::waitForOutput(const std::string& text, Milliseconds limit) {
  const Deadline deadline(limit);
  while (output().find(text) == std::string::npos) {
    if (exit_ || !outputPipe_.isOpen() || deadline.left() == Milliseconds(0)) return false;
    if (!reap(WNOHANG)) pump(deadline.left());
  }
  return true;
}

void ChildProcess::write(const std::string& text) {
  if (::write(input_.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("the child does not take its input");
  }
}

void ChildProcess::closeInput() {
  input_.close();
}

void ChildProcess::signal(int number) {
  if (!exit_) kill(pid_, number);
}

std::optional<int> ChildProcess::waitForExit(Milliseconds limit) {
  const Deadline deadline(limit);
  while (!exit_ && !reap(WNOHANG) && deadline.left() > Milliseconds(0)) pump(deadline.left());
  output();
  return exit_;
}

/// Takes what the child has written, after waiting for it, or for the child's end, if there is nothing yet.
void ChildProcess::pump(Milliseconds limit) {
  std::array<pollfd, 2> awaited{pollfd{outputPipe_.get(), POLLIN, 0}, pollfd{ended_.get(), POLLIN, 0}};
  poll(awaited.data(), awaited.size(), static_cast<int>(limit.count()));
  std::array<char, 4096> part{};
  while (outputPipe_.isOpen()) {
    const ssize_t length = read(outputPipe_.get(), part.data(), part.size());
    if (length < 0) return;
    if (length == 0) outputPipe_.close();
    if (output_.size() < outputLimit) output_.append(part.data(), static_cast<std::size_t>(length));
  }
}

bool ChildProcess::reap(int options) {
  int status = 0;
  if (waitpid(pid_, &status, options) != pid_) return false;
  exit_ = WIFSIGNALED(status) ? killedBase + WTERMSIG(status) : WEXITSTATUS(status);
  return true;
}

}  // namespace orvel
