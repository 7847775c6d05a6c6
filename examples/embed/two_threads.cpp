// Two loops one after the other and in two threads at once: the same bits, in how much of the time?

#include <torvane/core/model.h>
#include <torvane/core/text.h>
#include <torvane/models/catalogue.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>
#include <vector>

#include "reports.h"

namespace {

/// Every signal of the loop after ten simulated seconds.
std::vector<double> RunTenSeconds() {
  const Reports reports;  // of this thread
  const auto model = torvane::Catalogue().Load("6-1 PID Controller");
  model->KeepOwnMemory();
  model->Solver().RunUntil(10.0);
  std::vector<double> values;
  for (const torvane::Variable* signal : model->Bench().Variables()) {
    values.push_back(signal->Value);
  }
  return values;
}

template <class Work>
double SecondsOf(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main() {
  std::vector<double> first, second, here, there;
  const double after = SecondsOf([&] {
    first = RunTenSeconds();
    second = RunTenSeconds();
  });
  const double atOnce = SecondsOf([&] {
    std::thread other([&] { there = RunTenSeconds(); });
    here = RunTenSeconds();
    other.join();
  });
  std::cout << "One after the other " << torvane::FormatShortest(after) << " s, at once "
            << torvane::FormatShortest(atOnce) << " s: " << torvane::FormatShortest(atOnce / after)
            << " times\n";
  return first == second && first == here && first == there ? EXIT_SUCCESS : EXIT_FAILURE;
}
