#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "loops/own_loops.h"

namespace torvane::loops {

/// The text of a loop that is installed.
inline std::string ShippedText(const std::string& name) {
  std::ifstream file(TORVANE_SHARE "/loops/" + name + ".mo");
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// Its model. There is nothing to say about it.
inline std::unique_ptr<ZelModel> ShippedLoop(const std::string& name) {
  const LoopReading reading = ReadLoop(ShippedText(name));
  for (const Problem& problem : reading.Problems) {
    ADD_FAILURE() << name << ".mo:" << problem.Where.Line << ":" << problem.Where.Column << ": "
                  << problem.Text;
  }
  return reading.Plan ? MakeLoop(name, reading.Plan) : nullptr;
}

}  // namespace torvane::loops
