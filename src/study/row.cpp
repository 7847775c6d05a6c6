#include "study/row.h"

#include <algorithm>
#include <cstring>

#include "core/csv.h"
#include "core/text.h"

namespace torvane {
namespace {

// Sizes and numbers go as they stand in memory: both processes are one program.
class Packer {
 public:
  template <class Number>
  void Put(const Number& number) {
    bytes_.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  template <class Number>
  void Put(const std::vector<Number>& numbers) {
    Put(numbers.size());
    for (const Number& number : numbers) Put(number);
  }
  void Put(const std::string& text) {
    Put(text.size());
    bytes_ += text;
  }
  std::string Take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

class Unpacker {
 public:
  explicit Unpacker(const std::string& bytes) : bytes_(bytes) {}

  template <class Number>
  void Get(Number& number) {
    std::memcpy(&number, bytes_.data() + at_, sizeof number);
    at_ += sizeof number;
  }
  template <class Number>
  void Get(std::vector<Number>& numbers) {
    std::size_t size = 0;
    Get(size);
    numbers.resize(size);
    for (Number& number : numbers) Get(number);
  }
  void Get(std::string& text) {
    std::size_t size = 0;
    Get(size);
    text = bytes_.substr(at_, size);
    at_ += size;
  }

 private:
  const std::string& bytes_;
  std::size_t at_ = 0;
};

}  // namespace

bool StudyRow::HasMeasures() const {
  return std::any_of(Measures.begin(), Measures.end(),
                     [](const auto& measure) { return measure.has_value(); });
}

std::string RunResult::Packed() const {
  Packer packer;
  packer.Put(Row.Run);
  packer.Put(Row.Settings);
  packer.Put(Row.Measures);
  packer.Put(Row.Reason);
  packer.Put(Trace.Times);
  packer.Put(Trace.Values);
  return packer.Take();
}

RunResult RunResult::Unpacked(const std::string& packed) {
  Unpacker unpacker(packed);
  RunResult result;
  unpacker.Get(result.Row.Run);
  unpacker.Get(result.Row.Settings);
  unpacker.Get(result.Row.Measures);
  unpacker.Get(result.Row.Reason);
  unpacker.Get(result.Trace.Times);
  unpacker.Get(result.Trace.Values);
  return result;
}

std::vector<std::string> MeasureFields(const std::vector<std::optional<double>>& measures) {
  std::vector<std::string> fields;
  fields.reserve(measures.size());
  for (const auto& measure : measures) {
    fields.push_back(measure ? FormatShortest(*measure) : "");
  }
  return fields;
}

std::string Joined(const std::vector<std::string>& remarks) {
  std::string all;
  for (const std::string& remark : remarks) all += (all.empty() ? "" : "; ") + remark;
  std::replace(all.begin(), all.end(), '\n', ' ');
  return all;
}

std::string HeadLine(const std::vector<std::string>& settings,
                     const std::vector<std::string>& measures) {
  std::vector<std::string> captions{RunCaption};
  Append(captions, settings);
  captions.emplace_back(MeasuresCaption);
  Append(captions, measures);
  captions.emplace_back(ReasonCaption);
  return CsvLine(captions);
}

std::string RowLine(const StudyRow& row) {
  std::vector<std::string> fields{std::to_string(row.Run + 1)};
  Append(fields, row.Settings);
  const auto there = std::count_if(row.Measures.begin(), row.Measures.end(),
                                   [](const auto& measure) { return measure.has_value(); });
  fields.push_back(std::to_string(there));
  Append(fields, MeasureFields(row.Measures));
  fields.push_back(row.Reason);
  return CsvLine(fields);
}

}  // namespace torvane
