#include "instruments/analyser/response_csv.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "core/files/model_file_lines.h"
#include "core/files/text_file.h"
#include "core/table_lines.h"
#include "core/text.h"
#include "instruments/analyser/complex_text.h"
#include "instruments/analyser/response_units.h"

namespace torvane {

namespace {

constexpr std::size_t MaxFields = 100;
constexpr int MostTitles = 50;  // lines that may stand above the captions
// Beyond these a value is no measurement.
constexpr double MaxHz = 1e12;
constexpr double MinHz = 1e-12;
constexpr double MaxPhase = 1e6;  // degrees

/// A response by its columns, and where they stand.
struct Pair : ResponseColumns {
  std::size_t FirstAt = 0;
  std::size_t SecondAt = 0;
  bool OneField = false;  ///< both stand in the first column
};

/// Takes the lines of a file one by one, and makes responses of them at the end.
class ResponseReader {
 public:
  explicit ResponseReader(const ResponseHints& hints) : hints_(hints) {}

  /// What is wrong with the line; empty when nothing is.
  std::string Take(std::string_view line, int number) {
    const std::string_view text = TrimmedField(line);
    if (text.empty() || std::string_view("#%!").find(text.front()) != std::string_view::npos) {
      return {};
    }
    if (!begun_) return TakeHead(line, number);
    const TableFields fields = SplitTableLine(line, separator_, MaxFields);
    if (raw_.front().empty() && TakeUnits(fields)) return {};
    return TakePoint(fields, number);
  }

  ResponseText Finish() {
    ResponseText text;
    if (!begun_ && !head_.empty()) {
      text.Fault = head_;
      return text;
    }
    if (!begun_ || raw_.front().empty()) {
      text.Fault = "no points";
      return text;
    }
    if (noted_) text.Note = "no captions: read as frequency in Hz, gain in dB and phase in degrees";
    for (std::size_t i = 0; i < pairs_.size(); ++i) {
      if (raw_[i].empty()) continue;
      ResponseColumns& columns = pairs_[i];
      columns.Frequency = columns_[frequency_].Unit;
      text.Fault = TellUnits(columns, raw_[i], hints_);
      text.UnitsMissing = !text.Fault.empty();
      text.GainUnitMissing = text.UnitsMissing && columns.First.Unit == ResponseUnit::Unknown;
      text.PhaseUnitMissing = text.UnitsMissing && columns.Second.Unit == ResponseUnit::Unknown;
      NamedResponse response{columns.First.Name, {}};
      if (text.Fault.empty()) text.Fault = MakeCurve(columns, raw_[i], response.Curve);
      if (falling_) std::reverse(response.Curve.begin(), response.Curve.end());
      if (!text.Fault.empty()) {
        text.Responses.clear();
        return text;
      }
      if (!response.Curve.empty()) text.Responses.push_back(std::move(response));
    }
    if (text.Responses.empty()) text.Fault = "no points";
    return text;
  }

 private:
  static constexpr std::size_t None = std::string_view::npos;

  bool IsNumber(std::string_view field) const { return TableNumber(field, separator_).has_value(); }

  // The captions, or the first point of a file without them. Lines above them are titles.
  std::string TakeHead(std::string_view line, int number) {
    separator_ = TableSeparator(line);
    const TableFields fields = SplitTableLine(line, separator_, MaxFields);
    const bool captions = !IsNumber(fields.front());
    if (!captions && knownInHead_ > 0) return head_;
    columns_.clear();
    for (const std::string_view field : fields) {
      columns_.push_back(captions ? ReadResponseCaption(field) : ResponseColumn());
    }
    std::string fault = captions ? ChooseByCaptions(fields, number) : ChooseByPlace(number);
    if (fault.empty()) {
      begun_ = true;
      raw_.resize(pairs_.size());
      return captions ? std::string() : TakePoint(fields, number);
    }
    if (!captions || ++titles_ > MostTitles) return fault;
    // The line that comes closest to captions tells best what is missing.
    const auto known = std::count_if(columns_.begin(), columns_.end(), [](const auto& column) {
      return column.Role != ResponseRole::None;
    });
    if (head_.empty() || known > knownInHead_) head_ = std::move(fault);
    knownInHead_ = std::max<std::ptrdiff_t>(knownInHead_, known);
    return {};
  }

  std::string ChooseByCaptions(const TableFields& fields, int number) {
    if (!hints_.Columns.empty()) return ChooseByHints(fields, number);
    frequency_ = Find(ResponseRole::Frequency);
    pairs_.clear();
    AddPairs(ResponseRole::Gain, ResponseRole::Phase);
    if (pairs_.empty()) AddPairs(ResponseRole::Real, ResponseRole::Imaginary);
    if (frequency_ != None && pairs_.empty() && fields.size() == 2) {
      const std::size_t other = 1 - frequency_;
      const ResponseColumn& column = columns_[other];
      if (column.Role == ResponseRole::None) pairs_ = {PairOf(other, other, true)};
    }
    if (frequency_ != None && !pairs_.empty()) return {};
    return LineFault(number, "the columns must be Frequency, Gain and Phase");
  }

  std::string ChooseByPlace(int number) {
    if (!hints_.Columns.empty()) return ChooseByHints({}, number);
    // Numbers between commas may be halves of numbers.
    if (columns_.size() != 3 && columns_.size() != 2) {
      return LineFault(number, "without captions the columns must be Frequency, Gain and Phase");
    }
    frequency_ = 0;
    noted_ = columns_.size() == 3;
    columns_[0].Unit = ResponseUnit::Hz;
    if (noted_) {
      columns_[1] = {ResponseRole::Gain, ResponseUnit::Decibel, true, {}};
      columns_[2] = {ResponseRole::Phase, ResponseUnit::Degrees, true, {}};
    }
    const std::size_t last = columns_.size() - 1;
    pairs_ = {PairOf(1, last, !noted_)};
    return {};
  }

  std::string ChooseByHints(const TableFields& captions, int number) {
    std::array<std::size_t, 3> at{};
    for (std::size_t i = 0; i < at.size(); ++i) {
      const std::string& wanted = hints_.Columns[i];
      const auto found = std::find(captions.begin(), captions.end(), std::string_view(wanted));
      const auto place = ParseInteger(wanted);
      at[i] = found != captions.end() ? static_cast<std::size_t>(found - captions.begin())
              : place && *place > 0   ? static_cast<std::size_t>(*place - 1)
                                      : columns_.size();
      if (at[i] >= columns_.size())
        return LineFault(number, "there is no column \"" + wanted + "\"");
    }
    if (at[0] == at[1] || at[0] == at[2] || at[1] == at[2]) {
      return LineFault(number, "frequency, gain and phase must be three columns");
    }
    frequency_ = at[0];
    columns_[at[0]].Role = ResponseRole::Frequency;
    if (columns_[at[0]].Unit == ResponseUnit::Unknown) columns_[at[0]].Unit = ResponseUnit::Hz;
    Pair pair = PairOf(at[1], at[2]);
    if (pair.First.Role != ResponseRole::Real) pair.First.Role = ResponseRole::Gain;
    pairs_ = {pair};
    return {};
  }

  Pair PairOf(std::size_t first, std::size_t second, bool oneField = false) const {
    return {{ResponseUnit::Hz, columns_[first], columns_[second]}, first, second, oneField};
  }

  std::size_t Find(ResponseRole role) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [&](const auto& column) { return column.Role == role; });
    return found == columns_.end() ? None : static_cast<std::size_t>(found - columns_.begin());
  }

  // Each first column with the nearest second one that is not taken: behind it, else before it.
  void AddPairs(ResponseRole first, ResponseRole second) {
    std::vector<bool> taken(columns_.size());
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (columns_[i].Role != first) continue;
      const auto free = [&](std::size_t k) { return columns_[k].Role == second && !taken[k]; };
      std::size_t at = i + 1;
      while (at < columns_.size() && !free(at)) ++at;
      if (at == columns_.size()) {
        at = 0;
        while (at < i && !free(at)) ++at;
        if (at == i) continue;
      }
      taken[at] = true;
      pairs_.push_back(PairOf(i, at));
    }
  }

  // A line of units, or of nothing, below the captions.
  bool TakeUnits(const TableFields& fields) {
    if (fields.size() > columns_.size() || IsNumber(fields[0])) return false;
    std::vector<ResponseUnit> units;
    for (const std::string_view field : fields) {
      const ResponseUnit unit = ReadResponseCaption(field).Unit;
      const bool blank = field.empty() || field == "-" || field == "1";
      if (unit == ResponseUnit::Unknown && !blank) return false;
      units.push_back(unit);
    }
    const auto put = [&](ResponseColumn& column, std::size_t at) {
      if (at < units.size() && units[at] != ResponseUnit::Unknown) column.Unit = units[at];
    };
    put(columns_[frequency_], frequency_);
    for (Pair& pair : pairs_) {
      put(pair.First, pair.FirstAt);
      put(pair.Second, pair.SecondAt);
    }
    return true;
  }

  std::string TakePoint(const TableFields& fields, int number) {
    while (columns_.size() < fields.size() && fields.size() < MaxFields) {
      if (!fields[columns_.size()].empty()) {
        return LineFault(number,
                         "more fields than columns; with decimal commas the fields need "
                         "semicolons or tabs between them");
      }
      columns_.emplace_back();
    }
    const auto text = [&](std::size_t column) {
      return column < fields.size() ? fields[column] : std::string_view();
    };
    const auto value = [&](std::size_t column) { return TableNumber(text(column), separator_); };
    const auto hz = value(frequency_);
    for (std::size_t i = 0; i < pairs_.size(); ++i) {
      Pair& pair = pairs_[i];
      // Of the responses beyond the first one a file may have fewer points.
      if (i > 0 && text(pair.FirstAt).empty() && text(pair.SecondAt).empty()) continue;
      RawPoint point;
      if (!hz || !TakeValues(pair, fields, point)) {
        return LineFault(number, "frequency, gain and phase must be numbers");
      }
      if (*hz == 0.0) return {};
      point.Frequency = *hz;
      std::string fault = AddPoint(i, point, number);
      if (!fault.empty()) return fault;
    }
    RawPoint& point = raw_.front().back();
    point.Coherence = std::clamp(ValueOf(ResponseRole::Coherence, fields), 0.0, 1.0);
    point.Excited = ValueOf(ResponseRole::Excited, fields) != 0.0;
    return {};
  }

  bool TakeValues(Pair& pair, const TableFields& fields, RawPoint& point) const {
    if (std::max(pair.FirstAt, pair.SecondAt) >= fields.size()) return false;
    if (pair.OneField) {
      const auto both = ParseComplexText(fields[pair.FirstAt]);
      if (!both) return false;
      point.First = both->First;
      point.Second = both->Second;
      pair.First.Role = both->Polar ? ResponseRole::Gain : ResponseRole::Real;
      pair.First.Unit = both->Polar ? ResponseUnit::Decibel : ResponseUnit::Unknown;
      pair.Second.Unit = ResponseUnit::Degrees;
      return true;
    }
    const auto first = TableNumber(fields[pair.FirstAt], separator_);
    const auto second = TableNumber(fields[pair.SecondAt], separator_);
    if (!first || !second) return false;
    point.First = *first;
    point.Second = *second;
    return true;
  }

  double ValueOf(ResponseRole role, const TableFields& fields) const {
    const std::size_t column = Find(role);
    return column < fields.size() ? TableNumber(fields[column], separator_).value_or(1.0) : 1.0;
  }

  std::string AddPoint(std::size_t pair, const RawPoint& point, int number) {
    std::vector<RawPoint>& points = raw_[pair];
    if (!points.empty()) {
      const double before = points.back().Frequency;
      if (points.size() == 1 && pair == 0) falling_ = point.Frequency < before;
      if (!(falling_ ? point.Frequency < before : point.Frequency > before)) {
        return LineFault(number, falling_ ? "the frequency is not below the one before it"
                                          : "the frequency is not above the one before it");
      }
    }
    if (!(point.Frequency >= MinHz && point.Frequency <= MaxHz)) {
      return LineFault(number, "no frequency in Hz");
    }
    if (points.size() == MaxResponsePoints) {
      return LineFault(number, "more than " + std::to_string(MaxResponsePoints) + " points");
    }
    const bool polar = pairs_[pair].First.Role != ResponseRole::Real;
    if (std::abs(point.First) > (polar ? MaxResponseGain : 1e100) &&
        (!polar || pairs_[pair].First.Unit == ResponseUnit::Decibel)) {
      return LineFault(number, "no gain in dB");
    }
    if (std::abs(point.Second) > (polar ? MaxPhase : 1e100)) {
      return LineFault(number, "no phase in degrees");
    }
    points.push_back(point);
    return {};
  }

  const ResponseHints& hints_;
  bool begun_ = false;
  bool noted_ = false;
  bool falling_ = false;
  int titles_ = 0;
  std::ptrdiff_t knownInHead_ = 0;
  std::string head_;  // what is wrong with the line that comes closest to captions
  char separator_ = ',';
  std::vector<ResponseColumn> columns_;
  std::size_t frequency_ = None;
  std::vector<Pair> pairs_;
  std::vector<std::vector<RawPoint>> raw_;  // by pair
};

}  // namespace

ResponseText ParseResponse(std::string_view text, const ResponseHints& hints) {
  ResponseReader reader(hints);
  const std::string plain = TableText(text);
  LineReader lines(plain);
  for (std::string line; lines.Next(line);) {
    ResponseText faulty;
    faulty.Fault = reader.Take(line, lines.Number());
    if (!faulty.Fault.empty()) return faulty;
  }
  return reader.Finish();
}

ResponseText ReadResponseFile(const std::string& path, const ResponseHints& hints) {
  ResponseText response;
  std::string text;
  response.Fault = ReadTextFile(path, MaxBenchTable, text, BenchPatience);
  if (!response.Fault.empty()) return response;
  response = ParseResponse(text, hints);
  if (!response.Fault.empty()) response.Fault = "\"" + path + "\": " + response.Fault;
  return response;
}

}  // namespace torvane
