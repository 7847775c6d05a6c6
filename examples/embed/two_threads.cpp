// Two loops one after the other and in two threads at once: the same bits, in how much of the time?

#include <torvane/core/model.h>
#include <torvane/core/text.h>
#include <torvane/models/catalogue.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <thread>
#include <vector>

#include "reports.h"

namespace {

/// Every signal of the loop after twenty simulated seconds.
std::vector<double> Run() {
  const Reports reports;  // of this thread
  const auto model = torvane::Catalogue().Load("6-1 PID Controller");
  model->KeepOwnMemory();
  model->Solver().RunUntil(20.0);
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
  constexpr int Rounds = 5;  // of which the quickest counts: others may be at work on the machine
  const std::vector<double> expected = Run();
  bool same = true;
  const auto run = [&] { same = Run() == expected && same; };
  double after = std::numeric_limits<double>::infinity();
  double atOnce = after;
  for (int round = 0; round < Rounds; ++round) {
    after = std::min(after, SecondsOf([&] {
                       run();
                       run();
                     }));
    std::vector<double> there;
    atOnce = std::min(atOnce, SecondsOf([&] {
                        std::thread other([&] { there = Run(); });
                        run();
                        other.join();
                      }));
    same = there == expected && same;
  }
  std::cout << "One after the other " << torvane::FormatShortest(after) << " s, at once "
            << torvane::FormatShortest(atOnce) << " s: " << torvane::FormatShortest(atOnce / after)
            << " times\n";
  return same ? EXIT_SUCCESS : EXIT_FAILURE;
}
