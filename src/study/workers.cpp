#include "study/workers.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <map>
#include <memory>
#include <optional>

#include "core/files/file_fault.h"
#include "study/study_fault.h"

namespace torvane {
namespace {

constexpr int IdlePeriod = 100;  // milliseconds
// Results that wait for an earlier one, for each process: no job starts beyond them, so that
// one long job does not let memory grow.
constexpr std::size_t Ahead = 64;

StudyFault Stopped(const std::string& text) {
  return {StudyFault::Kind::Stopped, text};
}

// All of the bytes or nothing; false when the other side is gone.
bool SendAll(int socket, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

bool ReceiveAll(int socket, char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = recv(socket, bytes, size, 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

bool SendNumber(int socket, std::size_t number) {
  return SendAll(socket, reinterpret_cast<const char*>(&number), sizeof number);
}

std::optional<std::size_t> ReceiveNumber(int socket) {
  std::size_t number = 0;
  if (!ReceiveAll(socket, reinterpret_cast<char*>(&number), sizeof number)) return {};
  return number;
}

// Job after job until there are no more, or the process that gives them is gone.
[[noreturn]] void WorkOff(int socket, const Work& work) {
  signal(SIGINT, SIG_DFL);
  signal(SIGTERM, SIG_DFL);
  signal(SIGHUP, SIG_DFL);
  while (const auto job = ReceiveNumber(socket)) {
    const std::optional<std::string> result = work(*job);
    if (!result || !SendNumber(socket, result->size()) ||
        !SendAll(socket, result->data(), result->size())) {
      break;
    }
  }
  _exit(0);
}

/// A process that does one job at a time.
class Worker {
 public:
  explicit Worker(const Work& work) {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
      throw Stopped("no process could be started: " + SystemReason(errno));
    }
    process_ = fork();
    if (process_ == 0) {
      close(ends[0]);
      WorkOff(ends[1], work);
    }
    const int fault = errno;
    close(ends[1]);
    socket_ = ends[0];
    if (process_ > 0) return;
    close(socket_);
    throw Stopped("no process could be started: " + SystemReason(fault));
  }
  ~Worker() {
    close(socket_);
    kill(process_, SIGKILL);
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  int Socket() const { return socket_; }
  bool Busy() const { return job_.has_value(); }
  std::size_t Job() const { return *job_; }

  void Give(std::size_t position, std::size_t job) {
    job_ = position;
    SendNumber(socket_, job);
  }
  /// Nothing when the process is gone.
  std::optional<std::string> TakeResult() {
    const auto size = ReceiveNumber(socket_);
    if (!size) return {};
    std::string result(*size, '\0');
    if (!ReceiveAll(socket_, result.data(), result.size())) return {};
    job_.reset();
    return result;
  }

 private:
  pid_t process_ = -1;
  int socket_ = -1;
  std::optional<std::size_t> job_;  ///< by its position among the jobs
};

/// Hands out the jobs and puts the results in order.
class Foreman {
 public:
  Foreman(const std::vector<std::size_t>& jobs, const TakeResult& take)
      : jobs_(jobs), take_(take) {}

  bool Done() const { return taken_ == jobs_.size(); }

  void GiveTo(Worker& worker, std::size_t workers) {
    if (worker.Busy() || given_ == jobs_.size() || given_ >= taken_ + Ahead * workers) return;
    worker.Give(given_, jobs_[given_]);
    ++given_;
  }

  void TakeFrom(Worker& worker, const std::function<bool()>& goOn) {
    const std::size_t position = worker.Job();
    std::optional<std::string> result = worker.TakeResult();
    // An interrupt may have reached the process first.
    if (!goOn()) throw Stopped("interrupted");
    if (!result) {
      throw Stopped("the process of run " + std::to_string(jobs_[position] + 1) + " died");
    }
    waiting_.emplace(position, std::move(*result));
    for (auto next = waiting_.find(taken_); next != waiting_.end(); next = waiting_.find(taken_)) {
      take_(jobs_[taken_], next->second);
      waiting_.erase(next);
      ++taken_;
    }
  }

 private:
  const std::vector<std::size_t>& jobs_;
  const TakeResult& take_;
  std::size_t given_ = 0;
  std::size_t taken_ = 0;
  std::map<std::size_t, std::string> waiting_;
};

}  // namespace

void DoInWorkers(const std::vector<std::size_t>& jobs, int processes, const Work& work,
                 const TakeResult& take, const std::function<bool()>& goOn) {
  std::vector<std::unique_ptr<Worker>> workers;
  const std::size_t count = std::min(jobs.size(), static_cast<std::size_t>(processes));
  for (std::size_t k = 0; k < count; ++k) workers.push_back(std::make_unique<Worker>(work));
  Foreman foreman(jobs, take);
  std::vector<pollfd> sockets;
  while (!foreman.Done()) {
    sockets.clear();
    for (const auto& worker : workers) {
      foreman.GiveTo(*worker, workers.size());
      sockets.push_back({worker->Socket(), static_cast<short>(worker->Busy() ? POLLIN : 0), 0});
    }
    const int ready = poll(sockets.data(), sockets.size(), IdlePeriod);
    if (!goOn()) throw Stopped("interrupted");
    for (std::size_t k = 0; ready > 0 && k < workers.size(); ++k) {
      if (sockets[k].revents != 0 && workers[k]->Busy()) foreman.TakeFrom(*workers[k], goOn);
    }
  }
}

}  // namespace torvane
